// "Cubic", "Spline4" and "Spline6" over one to five axes: plan per axis, then one block reduction.
//
// The block of these schemes counts in full: 4^N values make (4^N - 1) / 3 Hermite segments, and the stencil of an axis
// is entered once per line, however few of the lines the value needs.
#include <algorithm>
#include <cmath>

#include "table/axis_search.h"
#include "table/block_plan.h"
#include "table/node_search.h"
#include "table/stopwatch.h"
#include "table/straight_lookup.h"

namespace kzb {

namespace {

// Scheme of a block: adds the axes to a plan and tells the calls of one lookup.
struct BlockScheme {
    const KZB_TABLE& table;
    int width = 4;       // of the spline stencil; 0: cubic
    bool core = false;   // every entry of the spline counts, and every node is tested
    double lines = 1.0;  // of the axis to come
    double spline_calls = 0.0;
    double linear_calls = 0.0;
    double cubic_calls = 0.0;

    bool add_axis(std::size_t a, double x, BlockPlan& plan);
    bool add_cubic(const double* node, const int* offset, double x, BlockPlan& plan);
    bool add_spline(const Stencil& stencil, double x, int stride, bool last, BlockPlan& plan);
    void add_calls(const BlockScheme& other);
    void count_calls(double* timing) const;
};

// A step over the entries of the stencil.
LineStep& add_step(const Stencil& stencil, LineKind kind, int stride, BlockPlan& plan) {
    LineStep& step = plan.step[plan.steps++];
    step.kind = kind;
    step.count = stencil.count;
    for (int i = 0; i < stencil.count; ++i) {
        step.offset[i] = stencil.index[i] * stride;
    }
    return step;
}

bool BlockScheme::add_axis(std::size_t a, double x, BlockPlan& plan) {
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
    const Bracket bracket{lo, rows == 1 ? 0 : lo + 1};
    Stencil stencil;
    if (width == 0) {
        if (rows == 1) {
            plan.doubled |= 1U << plan.steps;
            cubic_calls += lines;
            lines *= 4.0;
            // Four reads of one node; on a cyclic axis two of them miss and say so.
            return cyclic < 1;
        }
        const int stride = table.strides[a];
        if (lo >= 1 && lo + 2 < rows) {
            // Inside the grid the stencil is a run of it.
            const int first = (lo - 1) * stride;
            const int offset[4] = {first, first + stride, first + 2 * stride, first + 3 * stride};
            return add_cubic(nodes + lo - 1, offset, x, plan);
        }
        cubic_stencil(nodes, rows, cyclic >= 1, bracket, stencil);
        int offset[4];
        for (int i = 0; i < 4; ++i) {
            offset[i] = stencil.index[i] * stride;
        }
        return add_cubic(stencil.node, offset, x, plan);
    }
    spline_stencil(nodes, rows, cyclic >= 1, bracket, width, stencil);
    return add_spline(stencil, x, table.strides[a], a + 1 == table.axes.size(), plan);
}

bool BlockScheme::add_cubic(const double* node, const int* offset, double x, BlockPlan& plan) {
    constexpr double tol = KZB_AXIS_TOL;
    cubic_calls += lines;
    lines *= 4.0;
    const double h = node[2] - node[1];
    if (std::fabs(h) < tol) {
        return false;
    }
    if (node[1] + tol >= x) {
        plan.base += offset[1];
        return true;
    }
    if (x >= node[2] - tol) {
        plan.base += offset[2];
        return true;
    }
    LineStep& step = plan.step[plan.steps++];
    step.count = 4;
    std::copy(offset, offset + 4, step.offset);
    HermiteFactors& f = step.hermite;
    const double a = (node[0] - node[1]) / h;
    const double b = (node[3] - node[1]) / h;
    f.t = (x - node[1]) / h;
    f.before = 0.0 - a;
    f.before_end = 1.0 - a;
    f.after = b - 1.0;
    f.end = b;
    f.has_before = std::fabs(f.before) > tol;
    f.has_after = std::fabs(f.after) > tol;
    const bool inner = f.has_before && f.has_after;
    const bool exact = inner && is_power_of_two(f.before) && is_power_of_two(f.before_end) &&
                       is_power_of_two(f.after) && is_power_of_two(f.end);
    if (exact) {
        step.kind = LineKind::hermite_exact;
        f.divide_before = 1.0 / f.before;
        f.divide_before_end = 1.0 / f.before_end;
        f.divide_after = 1.0 / f.after;
        f.divide_end = 1.0 / f.end;
    } else {
        step.kind = inner ? LineKind::hermite_inner : LineKind::hermite_edge;
        f.divide_before = f.before;
        f.divide_before_end = f.before_end;
        f.divide_after = f.after;
        f.divide_end = f.end;
    }
    return true;
}

// Factors of the natural spline through all nodes of the stencil, x strictly inside.
void set_spline(const Stencil& stencil, double x, SplineFactors& f) {
    const int n = stencil.count - 1;
    const double* node = stencil.node;
    for (int i = 0; i < n; ++i) {
        f.h[i] = node[i + 1] - node[i];
    }
    f.s = natural_segment(n, node, x);
    f.pivot[1] = 2.0 * (f.h[1] + f.h[0]);
    f.u[1] = f.h[1] / f.pivot[1];
    for (int i = 2; i < n; ++i) {
        f.pivot[i] = 2.0 * (f.h[i] + f.h[i - 1]) - f.h[i - 1] * f.u[i - 1];
        f.u[i] = f.h[i] / f.pivot[i];
    }
    f.e = x - node[f.s];
    f.three_h = 3.0 * f.h[f.s];
}

bool BlockScheme::add_spline(const Stencil& stencil, double x, int stride, bool last, BlockPlan& plan) {
    const int m = stencil.count;
    const double* node = stencil.node;
    const double axis_lines = lines;
    lines *= m;
    const auto select = [&](int entry) {
        plan.base += std::ptrdiff_t{stencil.index[entry]} * stride;
        return true;
    };
    // An axis of one node hands over to the next; in the generic path the last one still counts.
    if (m >= 3 || (core && (m == 2 || last))) {
        spline_calls += axis_lines;
    }
    if (m == 1) {
        return select(0);
    }
    const bool test_nodes = m == 2 ? core : m < 6 || core || x < node[2] + KZB_AXIS_TOL || x > node[3] - KZB_AXIS_TOL;
    const int hit = test_nodes ? node_hit(m, node, x) : -1;
    if (hit >= 0) {
        return select(hit);
    }
    if (m > 2) {
        if (node[0] > x) {
            return select(0);
        }
        if (x > node[m - 1]) {
            return select(m - 1);
        }
        set_spline(stencil, x, add_step(stencil, LineKind::spline, stride, plan).spline);
        return true;
    }
    linear_calls += axis_lines;
    const double dx = node[1] - node[0];
    if (dx < KZB_AXIS_TOL) {
        return false;
    }
    if (std::fabs(node[0] - x) < KZB_AXIS_TOL) {
        return select(0);
    }
    if (std::fabs(node[1] - x) < KZB_AXIS_TOL) {
        return select(1);
    }
    if (x > node[0] - KZB_AXIS_TOL && node[1] + KZB_AXIS_TOL > x) {
        add_step(stencil, LineKind::lerp, stride, plan).t = (x - node[0]) / dx;
        return true;
    }
    if (node[0] > x) {
        return select(0);
    }
    return x > node[1] && select(1);
}

void BlockScheme::add_calls(const BlockScheme& other) {
    spline_calls += other.spline_calls;
    linear_calls += other.linear_calls;
    cubic_calls += other.cubic_calls;
}

void BlockScheme::count_calls(double* timing) const {
    timing[slot_spline_calls] += spline_calls;
    timing[slot_linear_calls] += linear_calls;
    timing[slot_cubic_calls] += cubic_calls;
}

bool is_straight(const KZB_TABLE& table) {
    return is_whole(table) && table.dim <= 5;
}

bool look_up(BlockScheme scheme, const double* coordinates, StraightResult& out, double* timing, bool measure_time) {
    const ProcessWatch gather_watch(measure_time);
    BlockPlan plan;
    plan.base = scheme.table.values.data();
    for (std::size_t a = 0; a < scheme.table.axes.size(); ++a) {
        if (!scheme.add_axis(a, coordinates[a], plan)) {
            return false;
        }
    }
    gather_watch.add_to(timing[scheme.width == 0 ? slot_cubic_gather : slot_spline_gather]);
    // Values are read while they are reduced.
    const MillisecondWatch core_watch(measure_time);
    out.value = evaluate(plan);
    out.status = plan.status;
    core_watch.add_to(timing[scheme.width == 0 ? slot_cubic_core : slot_spline_core]);
    scheme.count_calls(timing);
    return true;
}

bool look_up_components(BlockScheme scheme, const double* coordinates, const ComponentRange& range, double* results,
                        int& status, double* timing, bool measure_time) {
    const ProcessWatch gather_watch(measure_time);
    const MillisecondWatch core_watch(measure_time);
    const std::size_t last = scheme.table.axes.size() - 1;
    BlockPlan plan;
    plan.base = scheme.table.values.data();
    for (std::size_t a = 0; a < last; ++a) {
        if (!scheme.add_axis(a, coordinates[a], plan)) {
            return false;
        }
    }
    BlockScheme calls{scheme.table};
    for (int k = 0; k < range.count; ++k) {
        // The last axis alone differs: all else is put back before it is added.
        const double* const base = plan.base;
        const int steps = plan.steps;
        const int leading_status = plan.status;
        const unsigned doubled = plan.doubled;
        BlockScheme single = scheme;
        if (!single.add_axis(last, static_cast<double>(range.at(k)), plan)) {
            return false;
        }
        results[k] = evaluate(plan);
        const int single_status = results[k] > 1e100 ? lookup_beyond_limit : plan.status;
        status = single_status > 0 ? single_status : status;
        calls.add_calls(single);
        plan.base = base;
        plan.steps = steps;
        plan.status = leading_status;
        plan.doubled = doubled;
    }
    gather_watch.add_to(timing[scheme.width == 0 ? slot_cubic_gather : slot_spline_gather]);
    core_watch.add_to(timing[scheme.width == 0 ? slot_cubic_core : slot_spline_core]);
    calls.count_calls(timing);
    return true;
}

bool look_up_siblings(BlockScheme scheme, const KZB_TABLE* const* tables, int count, const double* coordinates,
                      double* results, int& status, double* timing) {
    const double* const values = scheme.table.values.data();
    BlockPlan plan;
    plan.base = values;
    for (std::size_t a = 0; a < scheme.table.axes.size(); ++a) {
        if (!scheme.add_axis(a, coordinates[a], plan)) {
            return false;
        }
    }
    const std::ptrdiff_t corner = plan.base - values;
    for (int k = 0; k < count; ++k) {
        plan.base = tables[k]->values.data() + corner;
        results[k] = evaluate(plan);
        scheme.count_calls(timing);
    }
    status = plan.status;
    return true;
}

// "Spline4" has no generic path up to five axes.
BlockScheme scheme_of_width(const KZB_TABLE& table, int width, const LookupSwitches& switches) {
    return BlockScheme{table, width, width == 6 && switches.generic_path};
}

}  // namespace

bool straight_cubic(const KZB_TABLE& table, const double* coordinates, StraightResult& out, double* timing,
                    const LookupSwitches& switches) {
    return is_straight(table) &&
           look_up(scheme_of_width(table, 0, switches), coordinates, out, timing, switches.measure_time);
}

bool straight_local_spline(const KZB_TABLE& table, const double* coordinates, int width, StraightResult& out,
                           double* timing, const LookupSwitches& switches) {
    return is_straight(table) &&
           look_up(scheme_of_width(table, width, switches), coordinates, out, timing, switches.measure_time);
}

bool straight_block_siblings(const KZB_TABLE* const* tables, int count, const double* coordinates, int width,
                             double* results, int& status, double* timing, const LookupSwitches& switches) {
    return is_straight(*tables[0]) && look_up_siblings(scheme_of_width(*tables[0], width, switches), tables, count,
                                                       coordinates, results, status, timing);
}

bool straight_cubic_components(const KZB_TABLE& table, const double* coordinates, const ComponentRange& range,
                               double* results, int& status, double* timing, const LookupSwitches& switches) {
    return is_straight(table) && look_up_components(scheme_of_width(table, 0, switches), coordinates, range, results,
                                                    status, timing, switches.measure_time);
}

bool straight_local_spline_components(const KZB_TABLE& table, const double* coordinates, int width,
                                      const ComponentRange& range, double* results, int& status, double* timing,
                                      const LookupSwitches& switches) {
    return is_straight(table) && look_up_components(scheme_of_width(table, width, switches), coordinates, range,
                                                    results, status, timing, switches.measure_time);
}

}  // namespace kzb
