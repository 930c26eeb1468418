// The straight-line paths: up to five axes, no heap, factors of an axis formed once for all its lines.
//
// Each returns false, with nothing written or printed, when the table or the point is not an ordinary one; the plain
// lookup then answers. Call counters are added as if every line of the block had gone through its kernel.
#pragma once

#include "table/lookup.h"

namespace kzb {

struct StraightResult {
    double value = 0.0;
    int status = 0;
};

bool straight_linear(const KZB_TABLE& table, const double* coordinates, StraightResult& out, double* timing,
                     const LookupSwitches& switches);
bool straight_cubic(const KZB_TABLE& table, const double* coordinates, StraightResult& out, double* timing,
                    const LookupSwitches& switches);
bool straight_local_spline(const KZB_TABLE& table, const double* coordinates, int width, StraightResult& out,
                           double* timing, const LookupSwitches& switches);
// Any number of axes. The status is 0 where none of the lines set one.
bool straight_spline(const KZB_TABLE& table, const double* coordinates, StraightResult& out, double* timing);

// The components of a range along the last axis; `status` becomes the last one above 0 and is else left.
bool straight_linear_components(const KZB_TABLE& table, const double* coordinates, const ComponentRange& range,
                                double* results, int& status, double* timing, const LookupSwitches& switches);
bool straight_cubic_components(const KZB_TABLE& table, const double* coordinates, const ComponentRange& range,
                               double* results, int& status, double* timing, const LookupSwitches& switches);
bool straight_local_spline_components(const KZB_TABLE& table, const double* coordinates, int width,
                                      const ComponentRange& range, double* results, int& status, double* timing,
                                      const LookupSwitches& switches);

// One point in `count` tables over the same nodes: the axes are searched in the first for all. `status` is that of the
// point.
bool straight_linear_siblings(const KZB_TABLE* const* tables, int count, const double* coordinates, double* results,
                              int& status, double* timing, const LookupSwitches& switches);
// `width` 0: "Cubic".
bool straight_block_siblings(const KZB_TABLE* const* tables, int count, const double* coordinates, int width,
                             double* results, int& status, double* timing, const LookupSwitches& switches);

inline bool is_whole(const KZB_TABLE& table) {
    return table.dim >= 1 && table.values && table.axes.size() == static_cast<std::size_t>(table.dim);
}

}  // namespace kzb
