// What the file itself shows: parts that could not be read, tables written without their values, names that stand
// twice.
#include <map>
#include <set>
#include <tuple>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/file_entries.h"
#include "kzb/validate.h"
#include "store/messages.h"

namespace kzb::tool {

namespace {

// How often an entry of one kind stands in a category.
void find_repeated(const std::vector<FileEntry>& entries, Findings& findings) {
    std::map<std::tuple<std::string, std::string, std::string>, int> counted;
    for (const FileEntry& entry : entries) {
        // Told at the second, so that findings keep the order of the file.
        ++counted[{entry.category, entry.key, entry.kind}];
    }
    for (const FileEntry& entry : entries) {
        int& count = counted[{entry.category, entry.key, entry.kind}];
        if (count > 1) {
            findings.warning(
                "duplicate-key", {entry.category, entry.key, ""},
                fmt::format("stands {} times as {}, the last one acts; expected it once", count, entry.kind));
            count = 0;
        }
    }
}

// Names that several kinds of one category share: which one acts depends on who asks.
void find_shared(const KZB_CATEGORY& category, Findings& findings) {
    std::map<std::string_view, std::vector<std::string_view>> kinds;
    for (const auto& entry : category.ints) {
        kinds[entry.keyword].push_back("int");
    }
    for (const auto& entry : category.doubles) {
        kinds[entry.keyword].push_back("double");
    }
    for (const auto& entry : category.strings) {
        kinds[entry.keyword].push_back("string");
    }
    for (const KZB_TABLE& table : category.tables) {
        kinds[table.keyword].push_back("table");
    }
    for (const auto& [key, of_key] : kinds) {
        if (of_key.size() > 1) {
            findings.warning("duplicate-key", {category.name, std::string(key), ""},
                             fmt::format("stands as {}, expected one kind", fmt::join(of_key, " and as ")));
        }
    }
}

}  // namespace

bool is_placeholder(const KZB_TABLE& table) {
    return table.dim == 1 && table.sizes.size() == 1 && table.sizes[0] == 1 && table.axes.size() == 1 &&
           !table.axes[0] && table.values.size() == 1 && table.values[0] == 0.0;
}

std::vector<std::string> placeholders_of_file(const std::string& path) {
    std::vector<std::string> names;
    for (const FileEntry& entry : entries_of_file(path, false)) {
        if (entry.placeholder) {
            names.push_back(fmt::format("{}/{}", entry.category, entry.key));
        }
    }
    return names;
}

void check_damage(const Examined& model, Findings& findings) {
    for (const std::string& line : model.file.damage) {
        findings.error("damage", {}, fmt::format("{}, expected a whole file", line));
    }
    if (const int warning = model.store.warning; warning != 0) {
        findings.warning("incomplete", {"control", "incomplete", ""}, warning_text(warning));
    }
}

void check_entries(const Examined& model, Findings& findings) {
    std::vector<FileEntry> entries;
    if (model.file.has_head) {
        entries = entries_of_file(model.path, model.store.input_type == "ascii");
    }
    std::set<std::pair<std::string, std::string>> told;
    for (const FileEntry& entry : entries) {
        if (entry.placeholder && told.emplace(entry.category, entry.key).second) {
            findings.error("placeholder", {entry.category, entry.key, ""}, placeholder_text);
        }
    }
    for (const KZB_CATEGORY& category : model.store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            const bool unread = table.file_position != 0 && table.loaded != 1;
            if (!unread && is_placeholder(table) && told.emplace(category.name, table.keyword).second) {
                findings.error("placeholder", {category.name, table.keyword, ""}, placeholder_text);
            }
        }
    }
    find_repeated(entries, findings);
    if (model.file.has_head) {  // the older layout holds d_flux as a table and a double by its nature
        for (const KZB_CATEGORY& category : model.store.categories) {
            find_shared(category, findings);
        }
    }
}

}  // namespace kzb::tool
