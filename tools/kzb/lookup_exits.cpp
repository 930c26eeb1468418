#include "kzb/lookup_exits.h"

#include <algorithm>
#include <cmath>

namespace kzb::tool {

LookupExits::LookupExits(KZB_STORE& store) : store_(store) {
    store_.watch = this;
}

LookupExits::~LookupExits() {
    store_.watch = nullptr;
}

void LookupExits::left_table(const KZB_TABLE& table, const double* coordinates, int count) {
    for (int axis = 1; axis <= std::min(table.dim, count); ++axis) {
        const auto place = static_cast<std::size_t>(axis) - 1;
        const int nodes = table.sizes[place];
        if (nodes < 1 || table.cyclic[place] >= 1) {
            continue;
        }
        const double first = table_get_axis_value(&table, axis, 0);
        const double last = table_get_axis_value(&table, axis, nodes - 1);
        const double x = coordinates[place];
        const bool above = x > last + KZB_AXIS_TOL;
        if (!above && !(x < first - KZB_AXIS_TOL)) {
            continue;
        }
        Count& counted = counts_[{&table, above ? axis : -axis}];
        counted.farthest = counted.lookups == 0 ? x
                           : above              ? std::max(counted.farthest, x)
                                                : std::min(counted.farthest, x);
        ++counted.lookups;
    }
}

std::vector<AxisExit> LookupExits::exits() const {
    std::vector<AxisExit> result;
    for (const KZB_CATEGORY& category : store_.categories) {
        for (const KZB_TABLE& table : category.tables) {
            for (int axis = 1; axis <= table.dim; ++axis) {
                for (const bool above : {false, true}) {
                    const auto at = counts_.find({&table, above ? axis : -axis});
                    if (at == counts_.end()) {
                        continue;
                    }
                    const int node = above ? table.sizes[static_cast<std::size_t>(axis) - 1] - 1 : 0;
                    result.push_back({category.name, table.keyword, axis, above, at->second.lookups,
                                      table_get_axis_value(&table, axis, node), at->second.farthest});
                }
            }
        }
    }
    return result;
}

}  // namespace kzb::tool
