// Periodic cubic spline. The cyclic tri-diagonal system for z (second derivatives / 6) is swept once down and once up
// with w as the column of the unknown at the seam; that unknown, z_0 = z_n, follows last.
//
// The system takes the values as they stand, the evaluation takes the first value for the last node. So a table whose
// ends differ does not get the spline through these ends: established behaviour.
#include "table/kernels.h"
#include "table/natural_spline.h"
#include "table/node_search.h"
#include "table/scratch.h"

namespace kzb {

namespace {

void solve_coefficients(int n, const double* x, const double* y, double* z, double* h, double* d, double* w) {
    for (int i = 0; i < n; ++i) {
        h[i] = x[i + 1] - x[i];
        w[i] = (y[i + 1] - y[i]) / h[i];
    }
    w[n] = w[0];
    for (int i = 1; i < n; ++i) {
        d[i] = 2.0 * (x[i + 1] - x[i - 1]);
    }
    d[n] = 2.0 * (h[n - 1] + h[0]);
    for (int i = 1; i <= n; ++i) {
        z[i] = w[i] - w[i - 1];
    }
    for (int i = 2; i <= n - 2; ++i) {
        w[i] = 0.0;
    }
    w[1] = h[0];
    w[n - 1] = h[n - 1];
    w[n] = d[n];
    for (int i = 1; i < n; ++i) {
        const double t = h[i] / d[i];
        z[i + 1] -= z[i] * t;
        d[i + 1] -= h[i] * t;
        w[i + 1] -= w[i] * t;
    }
    w[0] = w[n];
    z[0] = z[n];
    for (int i = n - 2; i >= 0; --i) {
        const double t = h[i] / d[i + 1];
        z[i] -= z[i + 1] * t;
        w[i] -= w[i + 1] * t;
    }
    const double t = z[0] / w[0];
    z[0] = t;
    z[n] = t;
    for (int i = 1; i < n; ++i) {
        z[i] = (z[i] - w[i] * t) / d[i];
    }
}

}  // namespace

double periodic_spline_eval(int n, const double* x, const double* y, double q, double* work) {
    const auto size = static_cast<std::size_t>(n) + 1;
    double* const z = work;
    solve_coefficients(n, x, y, z, z + size, z + 2 * size, z + 3 * size);
    q = into_period(n, x, q);
    const int i = periodic_segment(n, x, q);
    const double y0 = y[i];
    const double y1 = i + 1 == n ? y[0] : y[i + 1];
    const double hh = x[i + 1] - x[i];
    const double e = q - x[i];
    return y0 + e * (((z[i + 1] - z[i]) * e / hh + 3.0 * z[i]) * e + (y1 - y0) / hh - (2.0 * z[i] + z[i + 1]) * hh);
}

double periodic_spline_eval(int n, const double* x, const double* y, double q) {
    Scratch<2048> scratch;
    double* const work = scratch.take(spline_work(n));
    return work == nullptr ? KZB_NO_VALUE : periodic_spline_eval(n, x, y, q, work);
}

}  // namespace kzb
