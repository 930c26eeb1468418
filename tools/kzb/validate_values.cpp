// Numbers of every table and parameter: that they are there and are usable.
#include "fmt/format.h"
#include "kzb/sound_table.h"
#include "kzb/validate.h"

namespace kzb::tool {

namespace {

void check_table(const KZB_TABLE& table, const std::string& category, Findings& findings) {
    if (!has_values(table)) {
        findings.error("values-missing", {category, table.keyword, ""},
                       fmt::format("{} axes and {} values, expected at least one axis and as many values as nodes span",
                                   table.dim, table.values ? table.values.size() : 0));
        return;
    }
    std::size_t bad = 0;
    std::size_t first = 0;
    for (std::size_t i = table.values.size(); i-- > 0;) {
        if (is_unusable(table.values[i])) {
            ++bad;
            first = i;
        }
    }
    if (bad > 0) {
        findings.error("value-not-finite", {category, table.keyword, value_place(table, first)},
                       fmt::format("{} of {} values are no usable numbers, the first is {:g}; expected finite numbers "
                                   "up to 1e100",
                                   bad, table.values.size(), table.values[first]));
    }
}

}  // namespace

void check_values(const Examined& model, Findings& findings) {
    for (const KZB_CATEGORY& category : model.store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            check_table(table, category.name, findings);
        }
    }
}

void check_scalars(const Examined& model, Findings& findings) {
    for (const KZB_CATEGORY& category : model.store.categories) {
        for (const auto& entry : category.doubles) {
            if (is_unusable(entry.value)) {
                findings.error("parameter-not-finite", {category.name, entry.keyword, ""},
                               fmt::format("{:g}, expected a finite number up to 1e100", entry.value));
            }
        }
    }
}

}  // namespace kzb::tool
