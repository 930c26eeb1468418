// The one-dimensional kernels of the five schemes, written as their formulas stand.
//
// linear   y0 + (q - x0) / (x1 - x0) * (y1 - y0), snapped to nodes, clamped outside
// hermite  cubic on the middle of three spans, end slopes weighted by the neighbouring span
// natural  cubic spline with second derivative 0 at both ends
// periodic cubic spline over one period
#pragma once

#include "bench/reference/table.h"

namespace kzb_reference {

inline double linear_segment(double x0, double x1, double y0, double y1, double q, double* timing) {
    timing[3] += 1.0;
    const double dx = x1 - x0;
    if (dx < 1e-10) {
        return std::fabs(y1 - y0) < 1e-10 ? y0 : no_value;
    }
    if (std::fabs(x0 - q) < 1e-10) {
        return y0;
    }
    if (std::fabs(x1 - q) < 1e-10) {
        return y1;
    }
    if (q > x0 - 1e-10 && x1 + 1e-10 > q) {
        return y0 + ((q - x0) / dx) * (y1 - y0);
    }
    if (x0 > q) {
        return y0;
    }
    return q > x1 ? y1 : no_value;
}

// y and x hold four entries each.
inline double hermite_segment(const double* y, const double* x, double q, double* timing) {
    timing[5] += 1.0;
    const double tol = 1e-10;
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
    const double s1 = (y[2] - y[1]) / 1.0;
    const double s2 = std::fabs(b - 1.0) > tol ? (y[3] - y[2]) / (b - 1.0) : 0.0;
    const double m1 = (s0 * 1.0 + s1 * (0.0 - a)) / (1.0 - a);
    const double m2 = (s1 * (b - 1.0) + s2 * 1.0) / (b - 0.0);
    return (((2.0 * y[1] - 2.0 * y[2] + m1 + m2) * t + (-3.0 * y[1] + 3.0 * y[2] - 2.0 * m1 - m2)) * t + m1) * t + y[1];
}

// n segments over x[0..n]; scratch of 6 n + 1 doubles.
double natural_spline_eval(int n, const double* x, const double* y, double q, double* scratch);
double periodic_spline_eval(int n, const double* x, const double* y, double q);
// m of 1 to 6 nodes.
double local_spline(int m, const double* x, const double* y, double q, double* timing);
// The one-dimensional step of the generic path.
double spline_core(int m, const double* x, const double* y, double q, double* timing);
// A whole axis: node snap, range test, then natural, periodic or linear. Writes 0, 80001 or 80002 to `status`.
double global_spline(const double* x, const double* y, int rows, double q, int& status, int cyclic, double* timing);

}  // namespace kzb_reference
