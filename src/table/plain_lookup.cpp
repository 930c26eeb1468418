// "Linear", "Cubic", "Spline4" and "Spline6" by their definitions: read the block, reduce it axis by axis.
#include "table/plain_lookup.h"

#include "table/kernels.h"
#include "table/plain_block.h"
#include "table/scratch.h"
#include "table/stopwatch.h"

namespace kzb {

namespace {

int finish(double value, int status, double& result) {
    result = value;
    return value > 1e100 ? lookup_beyond_limit : status;
}

// The 2^N corners, axis 0 in the highest bit of the corner number.
void gather_corners(const KZB_TABLE& table, const PlainPoint& point, bool straight, double* corners,
                    std::size_t count) {
    const auto axes = static_cast<std::size_t>(table.dim);
    const Bracket last = point.brackets[axes - 1];
    // Pairs are read in the straight path of four axes only, and with them goes the rule for the full turn.
    const bool pairs = straight && table.dim == 4 && last.hi == last.lo + 1;
    PerAxis<int> indices(axes);
    for (std::size_t corner = 0; corner < count; corner += pairs ? 2 : 1) {
        for (std::size_t a = 0; a < axes; ++a) {
            const bool upper = (corner >> (axes - 1 - a) & 1U) != 0;
            indices[a] = upper ? point.brackets[a].hi : point.brackets[a].lo;
        }
        if (pairs) {
            table_pair_at(table, indices.data(), corners + corner);
        } else {
            corners[corner] = table_value_at(table, indices.data());
        }
    }
}

double reduce_corners(const KZB_TABLE& table, const PlainPoint& point, double* corners, std::size_t count,
                      double* timing) {
    for (int a = 0; a < table.dim; ++a) {
        const double* nodes = grid_of(table, a);
        if (nodes == nullptr) {
            return KZB_NO_VALUE;
        }
        const auto axis = static_cast<std::size_t>(a);
        const Bracket bracket = point.brackets[axis];
        // Without a bracket the corners hold no value, and any two equal nodes hand that on.
        const double x0 = bracket.lo >= 0 ? nodes[bracket.lo] : 0.0;
        const double x1 = bracket.hi >= 0 ? nodes[bracket.hi] : 0.0;
        count /= 2;
        for (std::size_t k = 0; k < count; ++k) {
            corners[k] = linear_segment(x0, x1, corners[k], corners[k + count], point.x[axis], timing);
        }
    }
    return corners[0];
}

}  // namespace

int plain_linear(const KZB_TABLE& table, const double* coordinates, double& result, double* timing,
                 const LookupSwitches& switches) {
    result = KZB_NO_VALUE;
    if (table.dim < 1) {
        return 0;
    }
    PlainPoint point(table);
    if (!point.locate(table, coordinates, true)) {
        return 0;
    }
    if (!PlainPoint::block_fits(table.dim, 2)) {
        return lookup_no_memory;
    }
    const ProcessWatch gather_watch(switches.measure_time);
    const std::size_t count = std::size_t{1} << table.dim;
    Scratch<std::size_t{1} << common_axes> scratch;
    double* const corners = scratch.take(count);
    if (corners == nullptr) {
        return lookup_no_memory;
    }
    gather_corners(table, point, !switches.generic_path, corners, count);
    gather_watch.add_to(timing[slot_linear_gather]);
    result = reduce_corners(table, point, corners, count, timing);
    return point.status;
}

int plain_cubic(const KZB_TABLE& table, const double* coordinates, double& result, double* timing,
                const LookupSwitches& switches) {
    result = KZB_NO_VALUE;
    PlainPoint point(table);
    if (!point.locate(table, coordinates, true) || !has_all_grids(table)) {
        return lookup_beyond_limit;
    }
    if (!PlainPoint::block_fits(table.dim, 4)) {
        return lookup_no_memory;
    }
    const ProcessWatch gather_watch(switches.measure_time);
    PerAxis<Stencil> stencils(point.x.size());
    bool placed = true;
    for (std::size_t a = 0; a < stencils.size(); ++a) {
        cubic_stencil(table.axes[a].data(), table.sizes[a], table.cyclic[a] >= 1, point.brackets[a], stencils[a]);
        placed = placed && point.brackets[a].lo >= 0;
    }
    gather_watch.add_to(timing[slot_cubic_gather]);
    // Values are read while they are reduced.
    const MillisecondWatch core_watch(switches.measure_time);
    const double value = reduce_block(table, stencils, [&](std::size_t a, const double* line) {
        return hermite_segment(line, stencils[a].node, point.x[a], timing);
    });
    core_watch.add_to(timing[slot_cubic_core]);
    // What the kernel makes of the missing corners of an axis without a bracket means nothing.
    return finish(placed ? value : KZB_NO_VALUE, point.status, result);
}

int plain_local_spline(const KZB_TABLE& table, const double* coordinates, int width, double& result, double* timing,
                       const LookupSwitches& switches) {
    result = KZB_NO_VALUE;
    PlainPoint point(table);
    if (!point.locate(table, coordinates, true) || !has_all_grids(table)) {
        return lookup_beyond_limit;
    }
    if (!PlainPoint::block_fits(table.dim, width)) {
        return lookup_no_memory;
    }
    const ProcessWatch gather_watch(switches.measure_time);
    PerAxis<Stencil> stencils(point.x.size());
    for (std::size_t a = 0; a < stencils.size(); ++a) {
        const bool cyclic = table.cyclic[a] >= 1;
        spline_stencil(table.axes[a].data(), table.sizes[a], cyclic, point.brackets[a], width, stencils[a]);
    }
    gather_watch.add_to(timing[slot_spline_gather]);
    // Values are read while they are reduced.
    const MillisecondWatch core_watch(switches.measure_time);
    // "Spline4" has no generic path up to five axes.
    const bool core = table.dim > 5 || (width == 6 && switches.generic_path);
    const double value = reduce_block(table, stencils, [&](std::size_t a, const double* line) {
        const int m = stencils[a].count;
        // An axis of one node hands over to the next; the last one has no next.
        if (m == 1 && a + 1 < stencils.size()) {
            return line[0];
        }
        return core ? spline_core(m, stencils[a].node, line, point.x[a], timing)
                    : local_spline(m, stencils[a].node, line, point.x[a], timing);
    });
    core_watch.add_to(timing[slot_spline_core]);
    return finish(value, point.status, result);
}

}  // namespace kzb
