// Cubic Hermite on the segment x1 .. x2, mapped to 0 .. 1 (x0 to a <= 0, x3 to b >= 1):
//
//   (((2 y1 - 2 y2 + m1 + m2) t + (-3 y1 + 3 y2 - 2 m1 - m2)) t + m1) t + y1
//
// The end tangents m1, m2 are the slopes of the spans on both sides, each weighted by the other span's width.
#include <cmath>

#include "table/kernels.h"
#include "table/lookup.h"

namespace kzb {

double hermite_segment(const double* y, const double* x, double q, double* timing) {
    timing[slot_cubic_calls] += 1.0;
    constexpr double tol = KZB_AXIS_TOL;
    if (std::fabs(x[2] - x[1]) < tol) {
        return (y[2] + y[1]) * 0.5;
    }
    if (x[1] + tol >= q) {
        return y[1];
    }
    if (q >= x[2] - tol) {
        return y[2];
    }
    const double h = x[2] - x[1];
    const double a = (x[0] - x[1]) / h;
    const double b = (x[3] - x[1]) / h;
    const double t = (q - x[1]) / h;
    const double s0 = std::fabs(0.0 - a) > tol ? (y[1] - y[0]) / (0.0 - a) : 0.0;
    const double s1 = y[2] - y[1];
    const double s2 = std::fabs(b - 1.0) > tol ? (y[3] - y[2]) / (b - 1.0) : 0.0;
    const double m1 = (s0 + s1 * (0.0 - a)) / (1.0 - a);
    const double m2 = (s1 * (b - 1.0) + s2) / b;
    const double cubic = 2.0 * y[1] - 2.0 * y[2] + m1 + m2;
    const double square = -3.0 * y[1] + 3.0 * y[2] - 2.0 * m1 - m2;
    return ((cubic * t + square) * t + m1) * t + y[1];
}

}  // namespace kzb
