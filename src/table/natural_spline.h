// The whole-axis splines with the caller's working memory, and the two halves of the natural one: coefficients of a
// line, and the value in a segment.
#pragma once

#include <cstddef>

namespace kzb {

// Working memory of both for n + 1 nodes.
inline std::size_t spline_work(int n) {
    return 4 * (static_cast<std::size_t>(n) + 1);
}
double natural_spline_eval(int n, const double* x, const double* y, double q, double* work);
double periodic_spline_eval(int n, const double* x, const double* y, double q, double* work);

// Coefficients c[from] .. c[n] of n + 1 nodes, and c[0]; `work` takes 2 n doubles.
void natural_spline_coefficients(int n, const double* x, const double* y, int from, double* work, double* c);

// Value at `q` in segment `s`.
double natural_spline_value(const double* x, const double* y, const double* c, int s, double q);

}  // namespace kzb
