#include "kzb/generic_reader.h"

#include <algorithm>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

constexpr std::size_t longest_name = 100;

}  // namespace

std::vector<Section> tables_of(Section& parent, std::string_view key) {
    std::vector<Section> sections;
    const toml::array* array = parent.array(key);
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
        const toml::table* table = (*array)[i].as_table();
        if (table == nullptr) {
            parent.fail(key, fmt::format("expected tables, [[{}]]", key));
        }
        sections.emplace_back(*table, fmt::format("{} {}", key, i + 1), parent.file());
    }
    return sections;
}

std::string new_name(Section& section, const std::vector<std::string>& known, std::string_view what) {
    std::string name = section.required("name", section.text("name"));
    if (name.empty() || name.size() > longest_name || name != printable_line(name)) {
        section.fail("name", fmt::format("expected 1 to {} printable bytes", longest_name));
    }
    if (std::find(known.begin(), known.end(), name) != known.end()) {
        section.fail("name", fmt::format("\"{}\" a second time, expected a name of its own for each {}", name, what));
    }
    return name;
}

std::size_t place_of_name(const Section& section, std::string_view key, const std::string& name,
                          const std::vector<std::string>& names, std::string_view what) {
    const auto at = std::find(names.begin(), names.end(), name);
    if (at == names.end()) {
        section.fail(key, fmt::format("\"{}\" names no {}, expected {}", printable_line(name), what,
                                      names.empty() ? fmt::format("a {}, of which there is none", what)
                                                    : fmt::format("one of \"{}\"", fmt::join(names, "\", \""))));
    }
    return static_cast<std::size_t>(at - names.begin());
}

GroupList coil_list(const GenericDescription& description) {
    GroupList list;
    for (const std::size_t place : description.coils()) {
        list.emplace_back(description.parts[place].name, description.parts[place].id);
    }
    return list;
}

int reference_of(const Section& section, std::string_view key, const toml::node& node, const GroupList& list,
                 std::string_view what) {
    if (!node.is_string()) {
        section.fail(key, fmt::format("expected the name of a {} in quotes", what));
    }
    std::vector<std::string> names;
    for (const auto& [name, ignored] : list) {
        names.push_back(name);
    }
    return list[place_of_name(section, key, *node.value<std::string>(), names, what)].second;
}

void throw_at(const std::string& place, const std::string& text) {
    throw Failure(exit_file, place + ": " + text);
}

CorrectionText read_correction(Section& section) {
    CorrectionText correction{section.text("correction").value_or(""),
                              section.text("correction_variable").value_or("x")};
    if (section.has("correction") && correction.expression.empty()) {
        section.fail("correction", "empty, expected an expression such as \"1.02 * x\"");
    }
    return correction;
}

}  // namespace kzb::tool
