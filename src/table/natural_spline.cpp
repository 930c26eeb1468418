// Natural cubic spline:  y_s + e (slope + e (c_s + (c_(s+1) - c_s) / (3 h_s) e)),  e = q - x_s,
// with the tri-diagonal system  h_(i-1) c_(i-1) + 2 (h_(i-1) + h_i) c_i + h_i c_(i+1) = r_i,  c_0 = c_n = 0.
//
// The back sweep stops at the segment of the query.
#include "table/natural_spline.h"

#include <algorithm>

#include "table/kernels.h"
#include "table/node_search.h"
#include "table/scratch.h"

namespace kzb {

void natural_spline_coefficients(int n, const double* x, const double* y, int from, double* work, double* c) {
    double* const u = work;
    double* const w = work + n;
    c[0] = 0.0;
    c[n] = 0.0;
    // What the next row takes from the one before stays in registers: the chain through it is what costs.
    double h_before = x[1] - x[0];
    double slope_before = (y[1] - y[0]) / h_before;
    double u_before = 0.0;
    double w_before = 0.0;
    for (int i = 1; i < n; ++i) {
        const double h = x[i + 1] - x[i];
        const double slope = (y[i + 1] - y[i]) / h;
        const double d = 2.0 * (h + h_before);
        const double r = 3.0 * (slope - slope_before);
        const double pivot = i == 1 ? d : d - h_before * u_before;
        w_before = (i == 1 ? r : r - h_before * w_before) / pivot;
        u_before = h / pivot;
        u[i] = u_before;
        w[i] = w_before;
        h_before = h;
        slope_before = slope;
    }
    if (n > 1) {
        c[n - 1] = w[n - 1];
    }
    for (int i = n - 2; i >= std::max(from, 1); --i) {
        c[i] = w[i] - u[i] * c[i + 1];
    }
}

double natural_spline_value(const double* x, const double* y, const double* c, int s, double q) {
    const double e = q - x[s];
    const double h = x[s + 1] - x[s];
    const double slope = (y[s + 1] - y[s]) / h - h * (c[s + 1] + 2.0 * c[s]) / 3.0;
    return y[s] + e * (slope + e * (c[s] + ((c[s + 1] - c[s]) / (3.0 * h)) * e));
}

double natural_spline_eval(int n, const double* x, const double* y, double q, double* work) {
    if (x[0] > q) {
        return y[0];
    }
    if (q > x[n]) {
        return y[n];
    }
    double* const c = work + 2 * static_cast<std::size_t>(n);
    const int s = natural_segment(n, x, q);
    natural_spline_coefficients(n, x, y, s, work, c);
    return natural_spline_value(x, y, c, s, q);
}

double natural_spline_eval(int n, const double* x, const double* y, double q) {
    Scratch<2048> scratch;
    double* const work = scratch.take(spline_work(n));
    return work == nullptr ? KZB_NO_VALUE : natural_spline_eval(n, x, y, q, work);
}

}  // namespace kzb
