#include "kzb/measured_file.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/findings.h"
#include "kzb/regular_file.h"
#include "kzb/sound_table.h"

namespace kzb::tool {

namespace {

// The file is sound and the model is not the one for it: what was corrected before, the machine, missing references.
constexpr std::array<int, 6> unsuited = {90021, 90022, 90025, 90026, 90027, 90028};
constexpr int points_missing = 90024;

bool ends_without_line_feed(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file || file.tellg() <= 0) {
        return false;
    }
    file.seekg(-1, std::ios::end);
    return file.get() != '\n';
}

}  // namespace

void take_in(KZB_STORE& store, const std::string& path, std::string_view expected,
             const std::function<int(const char*, KZB_STORE*)>& call) {
    require_regular_file(path, expected);
    const LibraryAnswer answer = ask_library(store, [&](KZB_STORE* handle) { return call(path.c_str(), handle); });
    if (answer.result == 0 && answer.said.empty()) {
        return;
    }
    const bool suited = std::find(unsuited.begin(), unsuited.end(), answer.error) == unsuited.end();
    const std::string_view hint = answer.error == points_missing && ends_without_line_feed(path)
                                      ? "; the last line has no line end and is not read"
                                      : "";
    throw Failure(suited ? exit_file : exit_run_failed, fmt::format("{}: {}{}", path, cause_of(answer), hint));
}

void require_usable_table(const KZB_STORE& store, const char* category, const char* key, const std::string& path) {
    const KZB_TABLE* table = find_table(store, category, key);
    if (table == nullptr || is_sound(*table)) {
        return;
    }
    const auto refuse = [&](const std::string& place, std::string_view what) {
        throw Failure(exit_file, fmt::format("{}: table {}/{}: {}: {}", path, category, key, place, what));
    };
    for (std::size_t i = 0; i < table->values.size(); ++i) {
        if (is_unusable(table->values[i])) {
            refuse(value_place(*table, i), fmt::format("{:g}, expected a finite number", table->values[i]));
        }
    }
    for (std::size_t axis = 0; axis < table->axes.size(); ++axis) {
        const ZeroedArray& nodes = table->axes[axis];
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (is_unusable(nodes[i])) {
                refuse(node_place(axis, i), fmt::format("{:g}, expected a finite number", nodes[i]));
            }
            if (i > 0 && nodes[i] <= nodes[i - 1]) {
                refuse(node_place(axis, i),
                       fmt::format("{:g} behind {:g}, expected nodes that rise", nodes[i], nodes[i - 1]));
            }
        }
    }
    refuse("values", "missing");
}

}  // namespace kzb::tool
