// The two halves of the natural spline: coefficients of a line, and the value in a segment.
#pragma once

namespace kzb {

// Coefficients c[from] .. c[n] of n + 1 nodes, and c[0]; `work` takes 2 n doubles.
void natural_spline_coefficients(int n, const double* x, const double* y, int from, double* work, double* c);

// Value at `q` in segment `s`.
double natural_spline_value(const double* x, const double* y, const double* c, int s, double q);

}  // namespace kzb
