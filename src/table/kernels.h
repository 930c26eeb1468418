// One-dimensional kernels of the interpolation schemes.
//
// Each takes the nodes, the values on them and the query `q`. Nodes are expected in ascending order; on other grids the
// kernels stay defined and finish. `timing` receives the call counters (lookup.h names the entries).
#pragma once

namespace kzb {

// Linear interpolation with node snap and edge clamp; KZB_NO_VALUE between two values on one node.
double linear_segment(double x0, double x1, double y0, double y1, double q, double* timing);

// Cubic Hermite on the segment x[1] .. x[2] of four nodes, end slopes weighted by the neighbouring spans.
double hermite_segment(const double* y, const double* x, double q, double* timing);

// Natural cubic spline through n + 1 nodes, clamped to the end values outside. KZB_NO_VALUE for want of memory.
double natural_spline_eval(int n, const double* x, const double* y, double q);

// Periodic cubic spline through n + 1 nodes, the last standing for the first one period later.
double periodic_spline_eval(int n, const double* x, const double* y, double q);

// Spline through the m nodes of a stencil, 1 to 6.
double local_spline(int m, const double* x, const double* y, double q, double* timing);

// The stencil spline of the generic path: counts every entry and tests every node.
double spline_core(int m, const double* x, const double* y, double q, double* timing);

// Spline along a whole axis of `rows` nodes; status 0, 80001 or 80002.
double global_spline(const double* x, const double* y, int rows, double q, int& status, int cyclic, double* timing);

}  // namespace kzb
