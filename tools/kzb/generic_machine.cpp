#include "kzb/generic_machine.h"

#include <algorithm>
#include <cctype>

#include "kzb/csv_table.h"
#include "kzb/text.h"
#include "store/record_list.h"

namespace kzb::tool {

namespace {

constexpr int rotation_type = 1;

Record with_id(const std::vector<Record>& records, int id) {
    const auto at =
        std::find_if(records.begin(), records.end(), [id](const Record& record) { return record.integer("id") == id; });
    return at == records.end() ? Record(nullptr) : *at;
}

// Every name once; another or an empty one gives way to the group's word and the number.
PortNames made_unique(std::vector<std::string> names, const char* group) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool repeated = std::count(names.begin(), names.end(), names[i]) > 1;
        if (names[i].empty() || repeated) {
            names[i] = group + std::to_string(i + 1);
        }
    }
    return {std::move(names)};
}

// Puts `name` at the place of a port.
void put_name(std::vector<std::string>& names, int port, std::string name) {
    if (port >= 1 && static_cast<std::size_t>(port) <= names.size()) {
        names[static_cast<std::size_t>(port) - 1] = std::move(name);
    }
}

struct Circuit {
    std::vector<Record> types;
    std::vector<Record> elements;

    std::string name_of(int element_id) const {
        const Record element = with_id(elements, element_id);
        return from_store(with_id(types, element.integer("element_type_id")).text("name"));
    }
};

PortNames component_names(const KZB_STORE& store, const Circuit& circuit, const char* path, const char* group) {
    const std::vector<Record> ports = records_of(store, path);
    std::vector<std::string> names(ports.size());
    for (const Record& port : ports) {
        put_name(names, port.integer("id"), circuit.name_of(port.integer("component_id")));
    }
    return made_unique(std::move(names), group);
}

PortNames source_names(const KZB_STORE& store) {
    const std::vector<Record> terminals = records_of(store, "terminal_list;terminal");
    const std::vector<Record> ports = records_of(store, "input_port_list;source");
    std::vector<std::string> names(ports.size());
    for (const Record& port : ports) {
        put_name(names, port.integer("id"), from_store(with_id(terminals, port.integer("terminal_id")).text("name")));
    }
    return made_unique(std::move(names), "source");
}

void read_motions(const KZB_STORE& store, GenericMachine& machine) {
    const std::vector<Record> motions = records_of(store, "motion_condition_list;motion_condition");
    std::vector<std::string> names(motions.size());
    machine.rotation.assign(motions.size(), false);
    for (const Record& motion : motions) {
        const int id = motion.integer("id");
        put_name(names, id, from_store(motion.text("name")));
        if (id >= 1 && static_cast<std::size_t>(id) <= machine.rotation.size()) {
            machine.rotation[static_cast<std::size_t>(id) - 1] = motion.integer("type") == rotation_type;
        }
    }
    machine.motions = made_unique(std::move(names), "motion");
}

PortNames output_names(const KZB_STORE& store) {
    constexpr const char* count_name = "num_user_specified_parameter";
    constexpr int most = 4096;
    const int count = std::clamp(get_int(store, count_name, count_name), 0, most);
    std::vector<std::string> names(static_cast<std::size_t>(count));
    for (int i = 1; i <= count; ++i) {
        const Record record(find_category(store, "user_specified_parameter" + std::to_string(i)));
        put_name(names, record.integer("output_port_id"), from_store(record.text("title")));
    }
    return made_unique(std::move(names), "value");
}

}  // namespace

std::optional<int> PortNames::port(std::string_view name_or_number) const {
    const auto at = std::find(names.begin(), names.end(), name_or_number);
    if (at != names.end()) {
        return static_cast<int>(at - names.begin()) + 1;
    }
    const std::optional<double> number = finite_number(name_or_number);
    if (number && *number >= 1.0 && *number <= static_cast<double>(names.size()) &&
        std::to_string(static_cast<int>(*number)) == name_or_number) {
        return static_cast<int>(*number);
    }
    return std::nullopt;
}

GenericMachine read_generic_machine(const KZB_STORE& store) {
    GenericMachine machine;
    const Circuit circuit{records_of(store, "element_type_list;element_type"),
                          records_of(store, "element_list;element")};
    machine.sources = source_names(store);
    machine.coils = component_names(store, circuit, "output_port_list;coil_fem", "coil");
    machine.resistors = component_names(store, circuit, "output_port_list;resistor", "resistor");
    machine.inductors = component_names(store, circuit, "output_port_list;coil_const", "inductor");
    machine.capacitors = component_names(store, circuit, "output_port_list;capacitor", "capacitor");
    machine.probes = component_names(store, circuit, "output_port_list;voltage_probe", "probe");
    read_motions(store, machine);
    machine.outputs = output_names(store);
    machine.has_force = find_table(store, record_name("torque_force_list;torque_table", 0, 0), "table") != nullptr;
    machine.has_iron_loss = has_parameter(store, "ironloss", "table");
    return machine;
}

std::string column_part(std::string_view name) {
    std::string part(name);
    for (char& c : part) {
        const auto byte = static_cast<unsigned char>(c);
        c = byte >= 0x80 || std::isalnum(byte) != 0 ? c : '_';
    }
    return part;
}

}  // namespace kzb::tool
