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
    if (!place_on_axis(nodes, rows, cyclic, x, lo, plan.status)) {
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

}  // namespace

bool straight_linear(const KZB_TABLE& table, const double* coordinates, StraightResult& out, double* timing,
                     const LookupSwitches& switches) {
    if (!is_whole(table) || table.dim > 5) {
        return false;
    }
    const ProcessWatch gather_watch(switches.measure_time);
    const std::size_t axes = table.axes.size();
    const bool turn_rule = reads_pairs(table, switches);
    LinearPlan plan;
    plan.base = table.values.data();
    for (std::size_t a = 0; a < axes; ++a) {
        if (!add_axis(table, a, coordinates[a], turn_rule, plan)) {
            return false;
        }
    }
    const double value = evaluate(plan);
    if (!value_stands(plan, value)) {
        return false;
    }
    gather_watch.add_to(timing[slot_linear_gather]);
    timing[slot_linear_calls] += static_cast<double>((1 << axes) - 1);
    out.value = value;
    out.status = plan.status;
    return true;
}

bool straight_linear_components(const KZB_TABLE& table, const double* coordinates, int count, double* results,
                                int& status, double* timing, const LookupSwitches& switches) {
    if (!is_whole(table) || table.dim > 5) {
        return false;
    }
    const ProcessWatch gather_watch(switches.measure_time);
    const std::size_t last = table.axes.size() - 1;
    const bool turn_rule = reads_pairs(table, switches);
    LinearPlan leading;
    leading.base = table.values.data();
    for (std::size_t a = 0; a < last; ++a) {
        if (!add_axis(table, a, coordinates[a], turn_rule, leading)) {
            return false;
        }
    }
    for (int k = 0; k < count; ++k) {
        LinearPlan plan = leading;
        if (!add_axis(table, last, static_cast<double>(k), turn_rule, plan)) {
            return false;
        }
        results[k] = evaluate(plan);
        if (!value_stands(plan, results[k])) {
            return false;
        }
        status = plan.status > 0 ? plan.status : status;
    }
    gather_watch.add_to(timing[slot_linear_gather]);
    timing[slot_linear_calls] += static_cast<double>(count) * static_cast<double>((1 << (last + 1)) - 1);
    return true;
}

}  // namespace kzb
