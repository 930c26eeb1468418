// One axis of the whole-table spline: factors that all its lines share, and the spline of a strip of lines.
#pragma once

#include <cstddef>

namespace kzb {

inline constexpr int strip_width = 8;

struct SplineAxis {
    std::size_t number;  // of the axis, from 0
    const double* nodes;
    int rows;
    int stride;
    int cyclic;
    double x;

    // By prepare_spline_axis:
    double* strip;  // [rows * strip_width], row by row
    double* work;   // [rows * strip_width]
    double* h;      // [rows] each
    double* pivot;
    double* factor;  // natural: u; periodic: h / d on the way down
    double* back;    // periodic: h / d on the way up
    double* seam;    // periodic: column of the unknown at the seam
    int held;        // entry that a query just outside is held to, else -1
    int segment;
    double e;  // the query behind the node of its segment
};

inline std::size_t spline_axis_scratch(int rows) {
    return static_cast<std::size_t>(rows) * (2 * strip_width + 5);
}

// Takes spline_axis_scratch(rows) doubles of `memory` and forms the factors.
void prepare_spline_axis(SplineAxis& axis, double* memory);

// Values at the query of the `strip_width` lines in the strip.
void spline_strip(const SplineAxis& axis, double* out);

}  // namespace kzb
