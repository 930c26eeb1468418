// Place of a coordinate on one axis: wrap into the period, segment around it.
//
// Neither prints nor remembers: where the coordinate has no place the functions say so and leave the rest to the
// caller.
#pragma once

#include "table/table.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kzb {

// Ends of the repeated addition of a period.
struct WrapOutcome {
    bool found = false;  // the value now lies strictly between the limits
    bool went_up = false;
    bool went_down = false;
    bool on_limit = false;  // it ended on a limit, or is not a number
};

// Adds or subtracts high - low until `value` lies between the ends, each widened by the tolerance. The value is that of
// one addition at a time, to the last bit; it ends without a place where the additions would never end.
WrapOutcome wrap_into_period(double low, double high, double& value);

// First i from `from` on, below `cells`, with x > nodes[i] - tolerance and nodes[i+1] + tolerance > x, else -1.
inline int scan_cells(const double* nodes, int from, int cells, double x) {
    for (int i = from; i < cells; ++i) {
        if (nodes[i + 1] + KZB_AXIS_TOL > x && x > nodes[i] - KZB_AXIS_TOL) {
            return i;
        }
    }
    return -1;
}

#if defined(__SSE2__)
// Bit i for nodes[i] + tolerance > x, i = 0 .. 3.
inline unsigned nodes_above(const double* nodes, __m128d tolerance, __m128d x) {
    const __m128d a = _mm_cmpgt_pd(_mm_add_pd(_mm_loadu_pd(nodes), tolerance), x);
    const __m128d b = _mm_cmpgt_pd(_mm_add_pd(_mm_loadu_pd(nodes + 2), tolerance), x);
    return static_cast<unsigned>(_mm_movemask_ps(_mm_shuffle_ps(_mm_castpd_ps(a), _mm_castpd_ps(b), 0x88)));
}
#endif

// The same from 0 on. The number of passes depends on the length of the axis and hardly on x, so that they are
// foreseen.
inline int first_cell(const double* nodes, int cells, double x) {
    int start = 0;
#if defined(__SSE2__)
    constexpr int group = 32;
    const __m128d tolerance = _mm_set1_pd(KZB_AXIS_TOL);
    const __m128d query = _mm_set1_pd(x);
    while (cells - start >= 4) {
        const double* const upper = nodes + start + 1;
        const int count = cells - start < group ? cells - start : group;
        // The last four cells overlap those before.
        const int last = count - 4;
        unsigned above = nodes_above(upper + last, tolerance, query) << last;
        for (int i = 0; i < last; i += 4) {
            above |= nodes_above(upper + i, tolerance, query) << i;
        }
        if (above != 0) {
            const int cell = start + __builtin_ctz(above);
            // Only an unordered grid, or a query on the very end of the tolerance, fails here.
            return x > nodes[cell] - KZB_AXIS_TOL ? cell : scan_cells(nodes, cell + 1, cells, x);
        }
        start += count;
    }
#endif
    return scan_cells(nodes, start, cells, x);
}

// Lower node of the segment around x on an axis of `rows` nodes, -1 where there is none. Sets `status` when x lies
// outside; a single-node axis has no outside.
inline int lower_node(const double* nodes, int rows, double x, int& status) {
    if (rows == 1) {
        return 0;
    }
    if (x < nodes[0] - KZB_AXIS_TOL) {
        status = 80001;
        return 0;
    }
    if (x > nodes[rows - 1] + KZB_AXIS_TOL) {
        status = 80002;
        return rows - 2;
    }
    return first_cell(nodes, rows - 1, x);
}

// Whether x lies strictly between the ends, each widened by the tolerance: neither wrapped nor out of range.
inline bool is_inside(const double* nodes, int rows, double x) {
    return x > nodes[0] - KZB_AXIS_TOL && nodes[rows - 1] + KZB_AXIS_TOL > x;
}

// Working coordinate on an axis with a grid; false where only the plain way of table_wrap_cyclic_axes can tell it.
inline bool wrap_quietly(const double* nodes, int rows, int cyclic, double& x) {
    if (cyclic < 1) {
        return true;
    }
    if (rows == 1) {
        x = nodes[0];
        return true;
    }
    const double low = nodes[0];
    const double high = nodes[rows - 1];
    if (!(high > low)) {
        return false;
    }
    return is_inside(nodes, rows, x) || wrap_into_period(low, high, x).found;
}

// Whether `cell` is the first that qualifies for x, on nodes that ascend: then no earlier one does if the lower node of
// this one, widened by the tolerance, is not above x. Such an x is inside the ends, too.
inline bool is_first_cell(const double* nodes, int cell, double x) {
    return nodes[cell + 1] + KZB_AXIS_TOL > x && x > nodes[cell] - KZB_AXIS_TOL &&
           (cell == 0 || !(nodes[cell] + KZB_AXIS_TOL > x));
}

inline AxisMemo::Order order_of(const double* nodes, int rows) {
    for (int i = 0; i + 1 < rows; ++i) {
        if (!(nodes[i + 1] > nodes[i])) {
            return AxisMemo::Order::other;
        }
    }
    return AxisMemo::Order::ascending;
}

// The search behind place_on_axis where its memo does not help.
bool search_axis(const KZB_TABLE& table, std::size_t a, double& x, int& lo, int& status);

// Working coordinate and lower node on axis `a`, which has a grid; false where the axis is not an ordinary one for this
// coordinate. Where the last search ended is looked at first.
inline bool place_on_axis(const KZB_TABLE& table, std::size_t a, double& x, int& lo, int& status) {
    const AxisMemo memo = table.memos[a];
    if (memo.order == AxisMemo::Order::ascending && is_first_cell(table.axes[a].data(), memo.cell, x)) {
        lo = memo.cell;
        return true;
    }
    return search_axis(table, a, x, lo, status);
}

}  // namespace kzb
