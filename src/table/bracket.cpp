// Searches along the grid of an axis.
//
// Bracket search: the pair of nodes around each working coordinate.
//
// A coordinate on an inner node belongs to the segment below it. The last axis outside its range decides the status.
#include "table/axis_search.h"
#include "table/lookup.h"

namespace kzb {

bool search_axis(const KZB_TABLE& table, std::size_t a, double& x, int& lo, int& status) {
    const double* nodes = table.axes[a].data();
    const int rows = table.sizes[a];
    const int cyclic = table.cyclic[a];
    if (rows > 1 && is_inside(nodes, rows, x) && (cyclic < 1 || nodes[rows - 1] > nodes[0])) {
        lo = first_cell(nodes, rows - 1, x);
    } else if (wrap_quietly(nodes, rows, cyclic, x)) {
        lo = lower_node(nodes, rows, x, status);
    } else {
        return false;
    }
    AxisMemo& memo = table.memos[a];
    if (memo.order == AxisMemo::Order::unknown && rows > 1) {
        memo.order = order_of(nodes, rows);
    }
    if (lo >= 0) {
        memo.cell = lo;
    }
    return lo >= 0;
}

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
