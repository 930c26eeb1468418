// "Linear" over one to five axes.
//
//   v <- v0 + ((q - x0) / (x1 - x0)) * (v1 - v0)    for axis 0, then axis 1 .. over the corners of the cell
//
// An axis on which the point lies on a node, or outside, only selects one side of the cell; the others stay "active"
// and share one quotient t each. Two corners along the last active axis travel together as the lanes of a pair.
#include <cmath>

#include "table/axis_search.h"
#include "table/lane_pair.h"
#include "table/stopwatch.h"
#include "table/straight_lookup.h"

namespace kzb {

namespace {

struct LinearPlan {
    const double* base = nullptr;  // corner with the lower side of every active axis
    int active = 0;
    bool single_axis = false;
    int status = 0;
    std::ptrdiff_t offset[5];
    double t[5];
};

// Corners along the last active axis at p, with the axes 0 .. A reduced.
template <int A>
inline LanePair column(const LinearPlan& plan, const double* p, std::ptrdiff_t last) {
    if constexpr (A < 0) {
        return load_pair(p, p + last);
    } else {
        const LanePair y0 = column<A - 1>(plan, p, last);
        const LanePair y1 = column<A - 1>(plan, p + plan.offset[A], last);
        return y0 + plan.t[A] * (y1 - y0);
    }
}

template <int Active>
inline double reduce_cell(const LinearPlan& plan) {
    const LanePair y = column<Active - 2>(plan, plan.base, plan.offset[Active - 1]);
    return y[0] + plan.t[Active - 1] * (y[1] - y[0]);
}

inline double evaluate(const LinearPlan& plan) {
    switch (plan.active) {
        case 0:
            return *plan.base;
        case 1:
            return reduce_cell<1>(plan);
        case 2:
            return reduce_cell<2>(plan);
        case 3:
            return reduce_cell<3>(plan);
        case 4:
            return reduce_cell<4>(plan);
        default:
            return reduce_cell<5>(plan);
    }
}

// The end of a full turn counts as its start when pairs are read, on cyclic axes of a table of four axes.
inline int turned(const double* nodes, int cyclic, int index) {
    return cyclic >= 1 && std::fabs(nodes[index] - 360.0) < KZB_AXIS_TOL ? 0 : index;
}

// Adds one axis to the plan; false when it is not an ordinary one.
inline bool add_axis(const KZB_TABLE& table, std::size_t a, double x, bool turn_rule, LinearPlan& plan) {
    const double* nodes = table.axes[a].data();
    if (nodes == nullptr) {
        return false;
    }
    const int rows = table.sizes[a];
    const int cyclic = table.cyclic[a];
    int lo = 0;
    if (!place_on_axis(table, a, x, lo, plan.status)) {
        return false;
    }
    if (rows == 1) {
        plan.single_axis = true;
        return true;
    }
    const double x0 = nodes[lo];
    const double x1 = nodes[lo + 1];
    int lower = lo;
    int upper = lo + 1;
    if (turn_rule) {
        lower = turned(nodes, cyclic, lo);
        upper = a + 1 == table.axes.size() ? lower + 1 : turned(nodes, cyclic, upper);
    }
    const std::ptrdiff_t stride = table.strides[a];
    // Apart from both nodes, which then lie apart themselves.
    if (x - x0 >= KZB_AXIS_TOL && x1 - x >= KZB_AXIS_TOL) {
        plan.offset[plan.active] = (upper - lower) * stride;
        plan.t[plan.active] = (x - x0) / (x1 - x0);
        ++plan.active;
        plan.base += lower * stride;
        return true;
    }
    if (x1 - x0 < KZB_AXIS_TOL) {
        return false;
    }
    if (std::fabs(x0 - x) < KZB_AXIS_TOL) {
        plan.base += lower * stride;
    } else if (std::fabs(x1 - x) < KZB_AXIS_TOL) {
        plan.base += upper * stride;
    } else if (x > x0 - KZB_AXIS_TOL && x1 + KZB_AXIS_TOL > x) {
        return false;
    } else if (x0 > x) {
        plan.base += lower * stride;
    } else if (x > x1) {
        plan.base += upper * stride;
    } else {
        return false;
    }
    return true;
}

inline bool reads_pairs(const KZB_TABLE& table, const LookupSwitches& switches) {
    return table.dim == 4 && !switches.generic_path && table.sizes[3] > 1;
}

// A single-node axis hands on finite numbers alone. Nothing turns a number that is not finite back into a finite one,
// so a finite value proves that no line on the way was otherwise.
inline bool value_stands(const LinearPlan& plan, double value) {
    return !plan.single_axis || std::isfinite(value);
}

// Value offsets of the two nodes of a cell.
struct CellSides {
    std::ptrdiff_t lower;
    std::ptrdiff_t upper;
};
inline CellSides sides_of(const KZB_TABLE& table, std::size_t a, int cell, bool turn_rule) {
    const std::ptrdiff_t stride = table.strides[a];
    std::ptrdiff_t lower = cell;
    std::ptrdiff_t upper = lower + 1;
    if (turn_rule && table.cyclic[a] >= 1) {
        const double* nodes = table.axes[a].data();
        lower = turned(nodes, 1, cell);
        upper = a + 1 == table.axes.size() ? lower + 1 : turned(nodes, 1, cell + 1);
    }
    return {lower * stride, upper * stride};
}

// The common case of add_axis: the point lies where the last one lay, apart from both nodes of the cell.
inline bool add_inner_axis(const KZB_TABLE& table, std::size_t a, double x, bool turn_rule, LinearPlan& plan) {
    const AxisMemo memo = table.memos[a];
    if (memo.order != AxisMemo::Order::ascending) {
        return false;
    }
    const double* nodes = table.axes[a].data();
    const double x0 = nodes[memo.cell];
    const double x1 = nodes[memo.cell + 1];
    const double beside = x - x0;
    if (!(beside >= KZB_AXIS_TOL && x1 - x >= KZB_AXIS_TOL && x >= x0 + KZB_AXIS_TOL)) {
        return false;
    }
    const CellSides sides = sides_of(table, a, memo.cell, turn_rule);
    plan.offset[a] = sides.upper - sides.lower;
    plan.t[a] = beside / (x1 - x0);
    plan.base += sides.lower;
    return true;
}

// Cell of a point on ascending nodes where it is easily guessed: that of the last point, or the one that ends at the
// node numbered as the coordinate, as on the axis of components. -1 where neither is the first that qualifies.
inline int guessed_cell(const double* nodes, int rows, const AxisMemo& memo, double x) {
    if (memo.order != AxisMemo::Order::ascending) {
        return -1;
    }
    if (is_first_cell(nodes, memo.cell, x)) {
        return memo.cell;
    }
    if (!(x >= 0.0 && x < rows)) {
        return -1;
    }
    const int cell = x < 1.0 ? 0 : static_cast<int>(x) - 1;
    return is_first_cell(nodes, cell, x) ? cell : -1;
}

// The other common case: a point on a node, as a component is.
inline bool add_node(const KZB_TABLE& table, std::size_t a, double x, bool turn_rule, LinearPlan& plan) {
    const double* nodes = table.axes[a].data();
    const int cell = guessed_cell(nodes, table.sizes[a], table.memos[a], x);
    if (cell < 0) {
        return false;
    }
    const double x0 = nodes[cell];
    const double x1 = nodes[cell + 1];
    if (x1 - x0 < KZB_AXIS_TOL) {
        return false;
    }
    const CellSides sides = sides_of(table, a, cell, turn_rule);
    if (std::fabs(x0 - x) < KZB_AXIS_TOL) {
        plan.base += sides.lower;
        return true;
    }
    if (std::fabs(x1 - x) < KZB_AXIS_TOL) {
        plan.base += sides.upper;
        return true;
    }
    return false;
}

// All axes 0 .. N - 1 by the common case.
template <int N>
inline bool plan_inner(const KZB_TABLE& table, const double* x, bool turn_rule, LinearPlan& plan) {
    for (std::size_t a = 0; a < N; ++a) {
        if (!add_inner_axis(table, a, x[a], turn_rule, plan)) {
            return false;
        }
    }
    plan.active = N;
    return true;
}

// Value where all axes but the last are of the common case, and the last is of one of the two.
template <int N>
inline bool value_inside(const KZB_TABLE& table, const double* x, bool turn_rule, double& value) {
    constexpr std::size_t last = N - 1;
    LinearPlan plan;
    plan.base = table.values.data();
    if (!plan_inner<N - 1>(table, x, turn_rule, plan)) {
        return false;
    }
    if (add_inner_axis(table, last, x[last], turn_rule, plan)) {
        value = reduce_cell<N>(plan);
        return true;
    }
    if (!add_node(table, last, x[last], turn_rule, plan)) {
        return false;
    }
    if constexpr (N > 1) {
        value = reduce_cell<N - 1>(plan);
    } else {
        value = *plan.base;
    }
    return true;
}

inline bool value_inside(const KZB_TABLE& table, const double* x, bool turn_rule, double& value) {
    switch (table.dim) {
        case 1:
            return value_inside<1>(table, x, false, value);
        case 2:
            return value_inside<2>(table, x, false, value);
        case 3:
            return value_inside<3>(table, x, false, value);
        case 4:
            return value_inside<4>(table, x, turn_rule, value);
        default:
            return value_inside<5>(table, x, false, value);
    }
}

// The axes 0 .. last - 1 in any case; false when one is not ordinary.
bool plan_leading(const KZB_TABLE& table, const double* x, std::size_t last, bool turn_rule, LinearPlan& plan) {
    const double* const values = table.values.data();
    plan.base = values;
    if (last == 3 && plan_inner<3>(table, x, turn_rule, plan)) {
        return true;
    }
    plan.base = values;
    plan.active = 0;
    for (std::size_t a = 0; a < last; ++a) {
        if (!add_axis(table, a, x[a], turn_rule, plan)) {
            return false;
        }
    }
    return true;
}

// Whether the last axis ascends and the components lie on the nodes of their numbers, at the upper end of a segment of
// width 1: the stored column is the value.
bool counts_components(const KZB_TABLE& table, std::size_t last, const ComponentRange& range) {
    const int rows = table.sizes[last];
    const double* nodes = table.axes[last].data();
    if (nodes == nullptr || table.cyclic[last] >= 1 || rows < 2) {
        return false;
    }
    AxisMemo& memo = table.memos[last];
    if (memo.order == AxisMemo::Order::unknown) {
        memo.order = order_of(nodes, rows);
    }
    if (memo.order != AxisMemo::Order::ascending) {
        return false;
    }
    for (int k = 0; k < range.count; ++k) {
        const int node = range.at(k);
        if (node < 0 || node >= rows || nodes[node] != static_cast<double>(node) ||
            (node > 0 && nodes[node - 1] != static_cast<double>(node - 1))) {
            return false;
        }
    }
    // Component 0 lies on the lower end of a segment that ends at a node of any kind: one of no width is no ordinary
    // one.
    return !(nodes[1] - nodes[0] < KZB_AXIS_TOL);
}

// Two components at a time, as lanes.
template <int Active>
void reduce_components(const LinearPlan& plan, const ComponentRange& range, double* results) {
    const double* base = plan.base + range.first;
    const std::ptrdiff_t apart = range.stride;
    int k = 0;
    for (; k + 1 < range.count; k += 2, base += 2 * apart) {
        const LanePair y = column<Active - 1>(plan, base, apart);
        results[k] = y[0];
        results[k + 1] = y[1];
    }
    if (k < range.count) {
        results[k] = column<Active - 1>(plan, base, 0)[0];
    }
}

void evaluate_components(const LinearPlan& plan, const ComponentRange& range, double* results) {
    switch (plan.active) {
        case 0:
            return reduce_components<0>(plan, range, results);
        case 1:
            return reduce_components<1>(plan, range, results);
        case 2:
            return reduce_components<2>(plan, range, results);
        case 3:
            return reduce_components<3>(plan, range, results);
        default:
            return reduce_components<4>(plan, range, results);
    }
}

// Component after component, the last axis searched for each; false when one is not ordinary.
bool search_components(const KZB_TABLE& table, const LinearPlan& leading, std::size_t last, bool turn_rule,
                       const ComponentRange& range, double* results, int& status) {
    for (int k = 0; k < range.count; ++k) {
        LinearPlan plan = leading;
        if (!add_axis(table, last, static_cast<double>(range.at(k)), turn_rule, plan)) {
            return false;
        }
        results[k] = evaluate(plan);
        if (!value_stands(plan, results[k])) {
            return false;
        }
        status = plan.status > 0 ? plan.status : status;
    }
    return true;
}

}  // namespace

bool straight_linear(const KZB_TABLE& table, const double* coordinates, StraightResult& out, double* timing,
                     const LookupSwitches& switches) {
    if (!is_whole(table) || table.dim > 5) {
        return false;
    }
    const bool turn_rule = reads_pairs(table, switches);
    const auto calls = static_cast<double>((1 << table.dim) - 1);
    if (!switches.measure_time && value_inside(table, coordinates, turn_rule, out.value)) {
        timing[slot_linear_calls] += calls;
        out.status = 0;
        return true;
    }
    const ProcessWatch gather_watch(switches.measure_time);
    LinearPlan plan;
    plan.base = table.values.data();
    for (std::size_t a = 0; a < table.axes.size(); ++a) {
        if (!add_axis(table, a, coordinates[a], turn_rule, plan)) {
            return false;
        }
    }
    const double value = evaluate(plan);
    if (!value_stands(plan, value)) {
        return false;
    }
    gather_watch.add_to(timing[slot_linear_gather]);
    timing[slot_linear_calls] += calls;
    out.value = value;
    out.status = plan.status;
    return true;
}

bool straight_linear_siblings(const KZB_TABLE* const* tables, int count, const double* coordinates, double* results,
                              int& status, double* timing, const LookupSwitches& switches) {
    const KZB_TABLE& first = *tables[0];
    if (!is_whole(first) || first.dim > 5) {
        return false;
    }
    const bool turn_rule = reads_pairs(first, switches);
    LinearPlan plan;
    plan.base = first.values.data();
    for (std::size_t a = 0; a < first.axes.size(); ++a) {
        if (!add_axis(first, a, coordinates[a], turn_rule, plan)) {
            return false;
        }
    }
    const std::ptrdiff_t corner = plan.base - first.values.data();
    for (int k = 0; k < count; ++k) {
        plan.base = tables[k]->values.data() + corner;
        results[k] = evaluate(plan);
        if (!value_stands(plan, results[k])) {
            return false;
        }
    }
    timing[slot_linear_calls] += static_cast<double>(count) * static_cast<double>((1 << first.dim) - 1);
    status = plan.status;
    return true;
}

bool straight_linear_components(const KZB_TABLE& table, const double* coordinates, const ComponentRange& range,
                                double* results, int& status, double* timing, const LookupSwitches& switches) {
    if (!is_whole(table) || table.dim > 5) {
        return false;
    }
    const ProcessWatch gather_watch(switches.measure_time);
    const std::size_t last = table.axes.size() - 1;
    const bool turn_rule = reads_pairs(table, switches);
    LinearPlan leading;
    if (!plan_leading(table, coordinates, last, turn_rule, leading)) {
        return false;
    }
    if (!leading.single_axis && counts_components(table, last, range)) {
        evaluate_components(leading, range, results);
        status = leading.status > 0 ? leading.status : status;
    } else if (!search_components(table, leading, last, turn_rule, range, results, status)) {
        return false;
    }
    gather_watch.add_to(timing[slot_linear_gather]);
    timing[slot_linear_calls] += static_cast<double>(range.count) * static_cast<double>((1 << table.dim) - 1);
    return true;
}

}  // namespace kzb
