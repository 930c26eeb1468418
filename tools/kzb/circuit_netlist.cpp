#include "kzb/circuit_netlist.h"

#include <string_view>
#include <vector>

#include "circuit/generic/generic_circuit.h"
#include "circuit/generic/motion_condition.h"
#include "fmt/format.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct Kind {
    int type;
    const char* letter;
    const char* name;
    const char* key;  // of its value; null: none
    const char* unit;
};
constexpr Kind netlist_kinds[] = {
    {element_type_fem_coil, "W", "FEM coil", "resistance", "Ohm"},
    {element_type_resistor, "R", "resistor", "resistance", "Ohm"},
    {element_type_capacitor, "C", "capacitor", "capacitance", "F"},
    {element_type_inductor, "L", "inductor", "inductance", "H"},
    {element_type_probe, "V", "voltage probe", nullptr, ""},
};
constexpr Kind unknown_kind{element_type_none, "X", "unknown", nullptr, ""};

const Kind& kind_of(const KZLineElementType* type) {
    for (const Kind& kind : netlist_kinds) {
        if (type != nullptr && kind.type == type->type) {
            return kind;
        }
    }
    return unknown_kind;
}

std::string_view terminal_kind(const KZCircuitTerminal& terminal) {
    return terminal.type == terminal_voltage_source ? "source" : terminal.type == terminal_ground ? "ground" : "node";
}

Json describe(const KZCircuitTerminal& terminal) {
    Json result;
    result["id"] = terminal.id;
    result["kind"] = terminal_kind(terminal);
    result["name"] = from_store(terminal.name);
    result["port"] = terminal.port > 0 ? Json(terminal.port) : Json();
    return result;
}

Json describe(const KZLineElement& element) {
    const KZLineElementType* const type = element.element_type.get();
    const Kind& kind = kind_of(type);
    const auto id_of = [](const auto& terminal) { return terminal ? Json(terminal->id) : Json(); };
    Json result;
    result["id"] = element.id;
    result["part"] = kind.letter;
    result["kind"] = kind.name;
    result["name"] = type == nullptr ? "" : from_store(type->name);
    result["from"] = id_of(element.first_terminal);
    result["to"] = id_of(element.second_terminal);
    result["value"] = type == nullptr || kind.key == nullptr ? Json() : Json(type->get_parameter(kind.key));
    result["unit"] = kind.unit;
    return result;
}

Json describe(const KZMotionCondition& motion) {
    Json result;
    result["id"] = motion.id;
    result["kind"] = motion.kind == motion_rotation ? "rotating" : motion.kind == motion_linear ? "linear" : "unknown";
    result["name"] = from_store(motion.name);
    result["periodic"] = motion.periodic;
    return result;
}

std::string named(const Json& record) {
    const auto name = record["name"].get<std::string>();
    return name.empty() ? "" : fmt::format(" \"{}\"", printable_line(name));
}

std::string element_text(const Json& element) {
    const auto end = [](const Json& id) { return id.is_null() ? std::string("?") : id.dump(); };
    std::string text = fmt::format("  {}{} {} {}", element["part"].get<std::string>(), element["id"].dump(),
                                   end(element["from"]), end(element["to"]));
    if (!element["value"].is_null()) {
        text += fmt::format(" {} {}", element["value"].dump(), element["unit"].get<std::string>());
    }
    return text + named(element) + '\n';
}

}  // namespace

Json netlist_of(const KZB_STORE& store) {
    std::vector<std::string> faults;
    KZCircuitForGeneric circuit;
    circuit.read(store, faults);
    Json result;
    result["terminals"] = Json::array();
    for (const auto& terminal : circuit.terminals()) {
        result["terminals"].push_back(describe(*terminal));
    }
    result["elements"] = Json::array();
    for (const auto& element : circuit.branches()) {
        result["elements"].push_back(describe(*element));
    }
    result["motions"] = Json::array();
    for (const auto& motion : read_motions(store, faults)) {
        result["motions"].push_back(describe(*motion));
    }
    result["faults"] = faults;
    return result;
}

std::string netlist_text(const Json& netlist) {
    std::string text = "\nCircuit (part, terminals, value)\n";
    for (const Json& element : netlist["elements"]) {
        text += element_text(element);
    }
    text += "Terminals\n";
    for (const Json& terminal : netlist["terminals"]) {
        const Json& port = terminal["port"];
        text += fmt::format("  {} {}{}{}\n", terminal["id"].dump(), terminal["kind"].get<std::string>(),
                            port.is_null() ? "" : " port " + port.dump(), named(terminal));
    }
    text += netlist["motions"].empty() ? "" : "Motions\n";
    for (const Json& motion : netlist["motions"]) {
        text += fmt::format("  {} {}{}{}\n", motion["id"].dump(), motion["kind"].get<std::string>(),
                            motion["periodic"].get<bool>() ? ", periodic" : "", named(motion));
    }
    for (const Json& fault : netlist["faults"]) {
        text += fmt::format("  fault: {}\n", printable_line(fault.get<std::string>()));
    }
    return text;
}

}  // namespace kzb::tool
