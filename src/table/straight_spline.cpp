// "Spline": every axis is splined along full grid lines, axis 0 first.
//
// Lines are taken eight at a time, side by side along the last axis that is splined: a strip of columns is reduced over
// axis 0, these strips over axis 1, and so on, so that scratch is needed for one strip per axis and not for the table.
// What depends on the nodes and the query alone is formed once per axis. An axis on which the point lies on a node, or
// outside, selects one slab, and the rest of the table is not read.
#include <algorithm>
#include <cstring>

#include "table/axis_search.h"
#include "table/kernels.h"
#include "table/natural_spline.h"
#include "table/node_search.h"
#include "table/spline_axis.h"
#include "table/straight_lookup.h"

namespace kzb {

namespace {

constexpr int most_axes = 31;  // of two rows or more in a table of int size

struct WholePlan {
    const KZB_TABLE* table = nullptr;
    const double* base = nullptr;
    int active = 0;
    SplineAxis axis[most_axes];  // those beyond `active` are not initialised
};

enum class Role { refused, selects, active };

void take_axis(const KZB_TABLE& table, std::size_t a, double x, SplineAxis& axis) {
    axis.number = a;
    axis.nodes = table.axes[a].data();
    axis.rows = table.sizes[a];
    axis.stride = table.strides[a];
    axis.cyclic = table.cyclic[a];
    axis.x = x;
}

// What an axis does to its lines, by the rules of the one-dimensional spline.
Role role_of(const double* nodes, int rows, double x, int& entry, int& status) {
    const int hit = node_hit(rows, nodes, x);
    entry = std::max(hit, 0);
    if (hit >= 0) {
        return Role::selects;
    }
    if (x > nodes[0] - KZB_AXIS_TOL && nodes[rows - 1] + KZB_AXIS_TOL > x) {
        // Two rows that fall together depend on the values.
        const bool ordinary = rows >= 3 || (rows == 2 && !(nodes[1] - nodes[0] < KZB_AXIS_TOL));
        return ordinary ? Role::active : Role::refused;
    }
    if (nodes[0] > x) {
        status = lookup_below_range;
        return Role::selects;
    }
    if (x > nodes[rows - 1]) {
        status = lookup_above_range;
        entry = rows - 1;
        return Role::selects;
    }
    return Role::refused;
}

// Strip of `lanes` columns from p on, with the axes 0 .. level reduced.
void reduce_strip(const WholePlan& plan, int level, const double* p, int column_stride, int lanes, double* out) {
    const SplineAxis& axis = plan.axis[level];
    double* row = axis.strip;
    for (int i = 0; i < axis.rows; ++i, row += strip_width) {
        const double* from = p + std::ptrdiff_t{i} * axis.stride;
        if (level > 0) {
            reduce_strip(plan, level - 1, from, column_stride, lanes, row);
            continue;
        }
        for (int k = 0; k < strip_width; ++k) {
            // Lanes behind the last column repeat it.
            row[k] = from[std::ptrdiff_t{std::min(k, lanes - 1)} * column_stride];
        }
    }
    spline_strip(axis, out);
}

// The line that is left; the point is on none of its nodes and inside its ends, as the tolerance sees them.
double evaluate_last(const WholePlan& plan, const double* line, double* work) {
    const SplineAxis& axis = plan.axis[plan.active - 1];
    const int n = axis.rows - 1;
    if (n == 1) {
        double uncounted[timing_slots] = {};
        return linear_segment(axis.nodes[0], axis.nodes[1], line[0], line[1], axis.x, uncounted);
    }
    if (axis.cyclic != 0) {
        return periodic_spline_eval(n, axis.nodes, line, axis.x, work);
    }
    const bool inside = axis.nodes[0] <= axis.x && axis.x <= axis.nodes[n];
    if (plan.active == 1 && inside) {
        // A line of the table itself.
        const double* const c = plan.table->spline_memo.coefficients(*plan.table, axis.number, plan.base, line);
        if (c != nullptr) {
            return natural_spline_value(axis.nodes, line, c, natural_segment(n, axis.nodes, axis.x), axis.x);
        }
    }
    return natural_spline_eval(n, axis.nodes, line, axis.x, work);
}

double evaluate(WholePlan& plan, double* scratch) {
    const SplineAxis& last = plan.axis[plan.active - 1];
    double* line = scratch;
    if (plan.active == 1) {
        for (int i = 0; i < last.rows; ++i) {
            line[i] = plan.base[std::ptrdiff_t{i} * last.stride];
        }
    } else {
        for (int c = 0; c < last.rows; c += strip_width) {
            const int lanes = std::min(strip_width, last.rows - c);
            double out[strip_width];
            reduce_strip(plan, plan.active - 2, plan.base + std::ptrdiff_t{c} * last.stride, last.stride, lanes, out);
            std::memcpy(line + c, out, static_cast<std::size_t>(lanes) * sizeof(double));
        }
    }
    return evaluate_last(plan, line, line + last.rows);
}

// Of the last axis: its line, and what the spline through that works in.
std::size_t last_axis_scratch(int rows) {
    return static_cast<std::size_t>(rows) + spline_work(rows - 1);
}

std::size_t scratch_size(const WholePlan& plan) {
    std::size_t size = last_axis_scratch(plan.axis[plan.active - 1].rows);
    for (int k = 0; k + 1 < plan.active; ++k) {
        size += spline_axis_scratch(plan.axis[k].rows);
    }
    return size;
}

}  // namespace

bool straight_spline(const KZB_TABLE& table, const double* coordinates, StraightResult& out, double* timing) {
    if (!is_whole(table)) {
        return false;
    }
    WholePlan plan;
    plan.table = &table;
    plan.base = table.values.data();
    double lines = table.total;
    double linear_calls = 0.0;
    for (std::size_t a = 0; a < table.axes.size(); ++a) {
        const double* nodes = table.axes[a].data();
        const int rows = table.sizes[a];
        double x = coordinates[a];
        if (nodes == nullptr || !wrap_quietly(nodes, rows, table.cyclic[a], x)) {
            return false;
        }
        lines /= rows;
        int entry = 0;
        switch (role_of(nodes, rows, x, entry, out.status)) {
            case Role::refused:
                return false;
            case Role::selects:
                plan.base += std::ptrdiff_t{entry} * table.strides[a];
                break;
            case Role::active:
                take_axis(table, a, x, plan.axis[plan.active++]);
                linear_calls += rows == 2 ? lines : 0.0;
                break;
        }
    }
    if (plan.active == 0) {
        out.value = *plan.base;
    } else {
        constexpr std::size_t fixed = 8192;
        double small[fixed];
        const std::size_t size = scratch_size(plan);
        double* memory = size <= fixed ? small : table.spline_memo.work(size);
        if (memory == nullptr) {
            return false;
        }
        double* line = memory;
        memory += last_axis_scratch(plan.axis[plan.active - 1].rows);
        for (int k = 0; k + 1 < plan.active; ++k) {
            prepare_spline_axis(plan.axis[k], memory);
            memory += spline_axis_scratch(plan.axis[k].rows);
        }
        out.value = evaluate(plan, line);
    }
    timing[slot_linear_calls] += linear_calls;
    return true;
}

}  // namespace kzb
