// One axis of the whole-table spline: factors that all its lines share, and the spline of a strip of lines.
#pragma once

#include <cstddef>

namespace kzb {

inline constexpr int strip_width = 8;

struct SplineAxis {
    const double* nodes = nullptr;
    int rows = 0;
    int stride = 0;
    int cyclic = 0;
    double x = 0.0;

    double* strip = nullptr;  // [rows * strip_width], row by row
    double* work = nullptr;   // [rows * strip_width]
    double* h = nullptr;      // [rows] each
    double* pivot = nullptr;
    double* factor = nullptr;  // natural: u; periodic: h / d on the way down
    double* back = nullptr;    // periodic: h / d on the way up
    double* seam = nullptr;    // periodic: column of the unknown at the seam
    int held = -1;             // entry that a query just outside is held to, else -1
    int segment = 0;
    double e = 0.0;  // the query behind the node of its segment
};

inline std::size_t spline_axis_scratch(int rows) {
    return static_cast<std::size_t>(rows) * (2 * strip_width + 5);
}

// Takes spline_axis_scratch(rows) doubles of `memory` and forms the factors.
void prepare_spline_axis(SplineAxis& axis, double* memory);

// Values at the query of the `strip_width` lines in the strip.
void spline_strip(const SplineAxis& axis, double* out);

}  // namespace kzb
