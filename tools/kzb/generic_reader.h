// What the parts of the reader of a generic description share: lists of tables, names, references by name.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kzb/generic_description.h"
#include "kzb/scenario_section.h"

namespace kzb::tool {

// The tables of [[key]], or of key = [{...}]; named "key 1", "key 2" in messages.
std::vector<Section> tables_of(Section& parent, std::string_view key);

// The required key `name`: not empty, printable, not one of `known`.
std::string new_name(Section& section, const std::vector<std::string>& known, std::string_view what);

template <class Item>
std::vector<std::string> names_of(const std::vector<Item>& items) {
    std::vector<std::string> names;
    for (const Item& item : items) {
        names.push_back(item.name);
    }
    return names;
}

// Place of a name in a list, from 0. Failure for a name that is not there.
std::size_t place_of_name(const Section& section, std::string_view key, const std::string& name,
                          const std::vector<std::string>& names, std::string_view what);

// Number of a named item, from 1.
template <class Item>
int required_reference(Section& section, std::string_view key, const std::vector<Item>& items, std::string_view what) {
    const std::string name = section.required(key, section.text(key));
    return static_cast<int>(place_of_name(section, key, name, names_of(items), what)) + 1;
}

// Names of the coils and their groups.
using GroupList = std::vector<std::pair<std::string, int>>;
GroupList coil_list(const GenericDescription& description);
// Group of the coil that a text names.
int reference_of(const Section& section, std::string_view key, const toml::node& node, const GroupList& list,
                 std::string_view what);

// `correction` and `correction_variable`, which is "x" unless told.
CorrectionText read_correction(Section& section);

// Failure(exit_file) at a place that was kept, "file:line: key".
[[noreturn]] void throw_at(const std::string& place, const std::string& text);

// Coil sets, axes, variables, tables, outputs and iron loss; the circuit and the motions stand.
void read_generic_tables(Section& root, GenericDescription& description);

}  // namespace kzb::tool
