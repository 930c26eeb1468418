// Natural cubic spline:  y_s + e (slope + e (c_s + (c_(s+1) - c_s) / (3 h_s) e)),  e = q - x_s,
// with the tri-diagonal system  h_(i-1) c_(i-1) + 2 (h_(i-1) + h_i) c_i + h_i c_(i+1) = r_i,  c_0 = c_n = 0.
//
// The back sweep stops at the segment of the query.
#include <algorithm>

#include "table/kernels.h"
#include "table/node_search.h"
#include "table/scratch.h"

namespace kzb {

double natural_spline_eval(int n, const double* x, const double* y, double q) {
    if (x[0] > q) {
        return y[0];
    }
    if (q > x[n]) {
        return y[n];
    }
    Scratch<2048> scratch;
    const auto size = static_cast<std::size_t>(n);
    double* h = scratch.take(4 * size + 1);
    if (h == nullptr) {
        return KZB_NO_VALUE;
    }
    double* u = h + size;
    double* w = u + size;
    double* c = w + size;

    const int s = natural_segment(n, x, q);
    for (int i = 0; i < n; ++i) {
        h[i] = x[i + 1] - x[i];
    }
    c[0] = 0.0;
    c[n] = 0.0;
    for (int i = 1; i < n; ++i) {
        const double d = 2.0 * (h[i] + h[i - 1]);
        const double r = 3.0 * (((y[i + 1] - y[i]) / h[i]) - ((y[i] - y[i - 1]) / h[i - 1]));
        if (i == 1) {
            u[1] = h[1] / d;
            w[1] = r / d;
        } else {
            const double pivot = d - h[i - 1] * u[i - 1];
            u[i] = h[i] / pivot;
            w[i] = (r - h[i - 1] * w[i - 1]) / pivot;
        }
    }
    if (n > 1) {
        c[n - 1] = w[n - 1];
    }
    for (int i = n - 2; i >= std::max(s, 1); --i) {
        c[i] = w[i] - u[i] * c[i + 1];
    }
    const double e = q - x[s];
    const double slope = (y[s + 1] - y[s]) / h[s] - h[s] * (c[s + 1] + 2.0 * c[s]) / 3.0;
    return y[s] + e * (slope + e * (c[s] + ((c[s + 1] - c[s]) / (3.0 * h[s])) * e));
}

}  // namespace kzb
