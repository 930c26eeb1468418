// The circuit and the motions of a description.
#include "kzb/generic_description.h"

#include <algorithm>
#include <filesystem>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_model.h"
#include "kzb/command.h"
#include "kzb/generic_reader.h"
#include "kzb/text.h"
#include "kzb/toml_document.h"

namespace kzb::tool {

namespace {

constexpr int greatest_group = 1000;

struct KindKeys {
    PartKind kind;
    const char* list;   // as in [[resistor]]
    const char* value;  // null: none
};
constexpr KindKeys kind_keys[part_kinds] = {
    {PartKind::coil, "coil", "resistance"},
    {PartKind::resistor, "resistor", "resistance"},
    {PartKind::inductor, "inductor", "inductance"},
    {PartKind::capacitor, "capacitor", "capacitance"},
    {PartKind::probe, "probe", nullptr},
};

// Ports that the description numbers stand; the others take the free numbers in order.
template <class Item>
void number_ports(const std::vector<Item*>& items) {
    const int count = static_cast<int>(items.size());
    std::vector<const Item*> taken(items.size() + 1, nullptr);
    for (const Item* item : items) {
        if (item->port == 0) {
            continue;
        }
        if (item->port > count) {
            throw Failure(exit_file, fmt::format("{}: port {}, expected 1 to {}", item->place, item->port, count));
        }
        const Item*& holder = taken[static_cast<std::size_t>(item->port)];
        if (holder != nullptr) {
            throw Failure(exit_file, fmt::format("{}: port {} a second time, first of {}", item->place, item->port,
                                                 printable_line(holder->name)));
        }
        holder = item;
    }
    int next = 1;
    for (Item* item : items) {
        if (item->port == 0) {
            while (taken[static_cast<std::size_t>(next)] != nullptr) {
                ++next;
            }
            item->port = next;
            taken[static_cast<std::size_t>(next)] = item;
        }
    }
}

void read_terminals(Section& root, GenericDescription& description) {
    for (Section& section : tables_of(root, "terminal")) {
        TerminalText terminal;
        terminal.name = new_name(section, names_of(description.terminals), "terminal");
        terminal.type = static_cast<int>(section.choice("kind", {"node", "source", "ground"}).value_or(0));
        terminal.port = section.integer("port", 1).value_or(0);
        terminal.place = section.place("name");
        if (terminal.port > 0 && terminal.type != 1) {
            section.fail("port", "the terminal is no source, expected kind = \"source\"");
        }
        section.end();
        description.terminals.push_back(std::move(terminal));
    }
    std::vector<TerminalText*> sources;
    for (TerminalText& terminal : description.terminals) {
        if (terminal.type == 1) {
            sources.push_back(&terminal);
        }
    }
    number_ports(sources);
}

// `port = false`: no output port.
int read_port(Section& section) {
    const toml::node* value = section.node("port");
    if (value != nullptr && value->is_boolean() && !*value->value<bool>()) {
        return -1;
    }
    return section.integer("port", 1).value_or(0);
}

void read_coil(Section& section, const GenericDescription& description, PartText& part) {
    part.turns = section.positive("turns").value_or(1.0);
    part.turns2 = section.positive("turns2");
    part.flux_factor = section.positive("flux_factor").value_or(1.0);
    part.base_temperature = section.positive("base_temperature_K").value_or(part.base_temperature);
    part.temperature_coefficient =
        section.not_negative("temperature_coefficient_ppm_per_K").value_or(part.temperature_coefficient);
    part.correction = read_correction(section);
    part.id = section.integer("group", 1).value_or(static_cast<int>(description.parts.size()) + 1);
    if (part.id > greatest_group) {
        section.fail("group", fmt::format("{}, expected 1 to {}", part.id, greatest_group));
    }
    for (const PartText& other : description.parts) {
        if (other.id == part.id) {
            section.fail("group", fmt::format("{} is the group of coil {} too, expected a group for each coil", part.id,
                                              printable_line(other.name)));
        }
    }
}

void read_parts(Section& root, const KindKeys& keys, GenericDescription& description) {
    for (Section& section : tables_of(root, keys.list)) {
        PartText part;
        part.kind = keys.kind;
        part.name = new_name(section, names_of(description.parts), "component");
        part.place = section.place("name");
        part.from = required_reference(section, "from", description.terminals, "terminal");
        part.to = required_reference(section, "to", description.terminals, "terminal");
        if (keys.kind == PartKind::coil) {
            part.value = section.required(keys.value, section.not_negative(keys.value));
            read_coil(section, description, part);
            part.interacted = -1;
            static_cast<void>(section.array("interacts_with"));  // once all coils are known
        } else if (keys.value != nullptr) {
            part.value = section.required(keys.value, section.positive(keys.value));
        }
        part.port = read_port(section);
        section.end();
        description.parts.push_back(std::move(part));
    }
}

// Coils that a coil's row takes in are the groups from 1 up to a count: that is all that the file can tell.
void read_interactions(Section& root, GenericDescription& description) {
    int greatest = 0;
    for (const std::size_t place : description.coils()) {
        greatest = std::max(greatest, description.parts[place].id);
    }
    std::size_t place = 0;
    for (Section& section : tables_of(root, "coil")) {
        PartText& coil = description.parts[place++];
        coil.interacted = greatest;
        const toml::array* names = section.array("interacts_with");
        if (names == nullptr) {
            continue;
        }
        std::vector<bool> named(static_cast<std::size_t>(greatest) + 1, false);
        coil.interacted = 0;
        for (const toml::node& node : *names) {
            const int group = reference_of(section, "interacts_with", node, coil_list(description), "coil");
            named[static_cast<std::size_t>(group)] = true;
            coil.interacted = std::max(coil.interacted, group);
        }
        if (!named[static_cast<std::size_t>(coil.id)]) {
            section.fail("interacts_with",
                         fmt::format("without {} itself, expected it among them", printable_line(coil.name)));
        }
        for (const std::size_t other : description.coils()) {
            const PartText& part = description.parts[other];
            if (part.id <= coil.interacted && !named[static_cast<std::size_t>(part.id)]) {
                section.fail("interacts_with",
                             fmt::format("coil {} has group {} below {}, expected all coils up to the greatest group",
                                         printable_line(part.name), part.id, coil.interacted));
            }
        }
    }
}

// Ids of the components beside the coils, and the ports of each kind.
void number_parts(GenericDescription& description) {
    int next = 1;
    const auto taken = [&](int id) {
        return std::any_of(description.parts.begin(), description.parts.end(),
                           [id](const PartText& part) { return part.id == id; });
    };
    for (PartText& part : description.parts) {
        if (part.kind != PartKind::coil) {
            while (taken(next)) {
                ++next;
            }
            part.id = next;
        }
    }
    for (const KindKeys& keys : kind_keys) {
        std::vector<PartText*> parts;
        for (PartText& part : description.parts) {
            if (part.kind == keys.kind && part.port >= 0) {
                parts.push_back(&part);
            }
        }
        number_ports(parts);
    }
    for (PartText& part : description.parts) {
        part.port = std::max(part.port, 0);
    }
}

void read_motions(Section& root, GenericDescription& description) {
    for (Section& section : tables_of(root, "motion")) {
        MotionText motion;
        motion.name = new_name(section, names_of(description.motions), "motion");
        motion.place = section.place("name");
        motion.rotation = section.required("kind", section.choice("kind", {"linear", "rotation"})) == 1;
        motion.periodic = section.flag("periodic").value_or(false);
        const char* key = motion.rotation ? "range_deg" : "range";
        const std::optional<double> range = section.positive(key);
        if (motion.periodic && !range) {
            section.missing(key);
        }
        motion.range = range.value_or(0.0);
        motion.force_factor = section.positive("force_factor");
        motion.correction = read_correction(section);
        section.end();
        description.motions.push_back(std::move(motion));
    }
}

void read_head(Section& root, GenericDescription& description) {
    description.title = root.text("title").value_or("");
    description.preparer = root.text("preparer").value_or("");
    if (std::optional<Section> section = root.section("information")) {
        for (const std::string& key : information_keys()) {
            if (const std::optional<double> value = section->number(key)) {
                description.information[key] = *value;
            }
        }
        section->end();
    }
}

void require_base(const GenericDescription& description) {
    if (std::all_of(description.terminals.begin(), description.terminals.end(),
                    [](const TerminalText& terminal) { return terminal.type == 0; })) {
        throw Failure(exit_file,
                      fmt::format("{}: no terminal of kind \"ground\" or \"source\", expected one", description.file));
    }
}

}  // namespace

std::vector<std::size_t> GenericDescription::coils() const {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].kind == PartKind::coil) {
            places.push_back(i);
        }
    }
    return places;
}

std::vector<std::size_t> GenericDescription::coils_by_index() const {
    if (!set_form()) {
        return coils();
    }
    std::vector<std::size_t> places;
    for (const CoilSetText& set : coil_sets) {
        places.insert(places.end(), set.coils.begin(), set.coils.end());
    }
    return places;
}

std::string GenericDescription::path_of(const std::string& name) const {
    return (std::filesystem::path(file).parent_path() / name).string();
}

GenericDescription read_generic_description(const std::string& file) {
    const toml::table document = read_toml(file, "a description in TOML");
    Section root(document, "", file);
    GenericDescription description;
    description.file = file;
    read_head(root, description);
    read_terminals(root, description);
    for (const KindKeys& keys : kind_keys) {
        read_parts(root, keys, description);
    }
    read_interactions(root, description);
    number_parts(description);
    read_motions(root, description);
    read_generic_tables(root, description);
    root.end();
    require_base(description);
    return description;
}

}  // namespace kzb::tool
