// The coil sets of a description.
#include <algorithm>

#include "fmt/format.h"
#include "kzb/generic_table_sections.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

// The parts that the set's coils are; `used` are those of earlier sets.
std::vector<std::size_t> read_coils(Section& section, const GenericDescription& description, const GroupList& coils,
                                    std::vector<bool>& used) {
    const toml::array* names = section.array("coils");
    if (names == nullptr || names->empty()) {
        section.missing("coils");
    }
    std::vector<std::size_t> places;
    for (const toml::node& node : *names) {
        const int group = reference_of(section, "coils", node, coils, "coil");
        const auto at = std::find_if(description.parts.begin(), description.parts.end(),
                                     [group](const PartText& part) { return part.id == group; });
        const auto place = static_cast<std::size_t>(at - description.parts.begin());
        if (used[place]) {
            section.fail("coils",
                         fmt::format("coil {} a second time, expected each coil in one set", printable_line(at->name)));
        }
        used[place] = true;
        places.push_back(place);
    }
    return places;
}

CoilSetText read_coil_set(Section& section, const GenericDescription& description, const GroupList& coils,
                          std::vector<std::string>& set_names, std::vector<bool>& used) {
    CoilSetText set;
    set.name = new_name(section, set_names, "coil set");
    set_names.push_back(set.name);
    set.place = section.place("name");
    set.coils = read_coils(section, description, coils, used);
    if (section.has("motion")) {
        set.motion = required_reference(section, "motion", description.motions, "motion");
    }
    if (section.node("refers_to") != nullptr && set.motion > 0) {
        section.fail("refers_to", "beside motion, expected one of the two");
    }
    set.phases = section.numbers("phases_deg");
    set.poles = section.integer("poles", 0).value_or(0);
    set.phase_initial = section.number("phase_initial_deg").value_or(0.0);
    return set;
}

// What needs the names of all sets, and what follows from it.
void finish_coil_set(Section& section, const std::vector<std::string>& set_names, CoilSetText& set) {
    if (section.has("refers_to")) {
        const std::string name = section.required("refers_to", section.text("refers_to"));
        set.reference = static_cast<int>(place_of_name(section, "refers_to", name, set_names, "coil set")) + 1;
    }
    section.end();
    if (set.phases.empty()) {
        set.phases.assign(set.coils.size(), 0.0);
        if (set.moving() && set.coils.size() > 1) {
            section.missing("phases_deg");
        }
    }
    if (set.phases.size() != set.coils.size()) {
        section.fail("phases_deg",
                     fmt::format("{} angles for {} coils, expected one for each", set.phases.size(), set.coils.size()));
    }
    if (set.moving() && set.coils.size() != 1 && set.coils.size() != 3) {
        section.fail("coils", fmt::format("{} coils in a set with a motion, expected 1 or 3", set.coils.size()));
    }
}

}  // namespace

void read_coil_sets(Section& root, GenericDescription& description) {
    std::vector<Section> sections = tables_of(root, "coil_set");
    const GroupList coils = coil_list(description);
    std::vector<std::string> set_names;
    std::vector<bool> used(description.parts.size(), false);
    for (Section& section : sections) {
        description.coil_sets.push_back(read_coil_set(section, description, coils, set_names, used));
    }
    for (std::size_t i = 0; i < sections.size(); ++i) {
        finish_coil_set(sections[i], set_names, description.coil_sets[i]);
    }
    if (!description.set_form()) {
        return;
    }
    for (const std::size_t place : description.coils()) {
        if (!used[place]) {
            throw_at(description.parts[place].place, "the coil is in no [[coil_set]], expected it in one");
        }
    }
}

}  // namespace kzb::tool
