// Bracket search: the pair of nodes around each working coordinate.
//
// A coordinate on an inner node belongs to the segment below it. The last axis outside its range decides the status.
#include "table/axis_search.h"
#include "table/lookup.h"

namespace kzb {

int table_find_bracket(const KZB_TABLE& table, const double* wrapped, Bracket* brackets) {
    int status = 0;
    for (int a = 0; a < table.dim; ++a) {
        brackets[a] = Bracket{};
        const auto axis = static_cast<std::size_t>(a);
        if (axis >= table.axes.size() || !table.axes[axis]) {
            continue;
        }
        const int rows = table.sizes[axis];
        const int lo = lower_node(table.axes[axis].data(), rows, wrapped[a], status);
        if (lo >= 0) {
            brackets[a] = Bracket{lo, rows == 1 ? 0 : lo + 1};
        }
    }
    return status;
}

}  // namespace kzb
