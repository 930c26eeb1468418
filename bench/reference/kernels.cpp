#include "bench/reference/kernels.h"

#include <cstdlib>
#include <cstring>

namespace kzb_reference {

double natural_spline_eval(int n, const double* x, const double* y, double q, double* scratch) {
    if (x[0] > q) {
        return y[0];
    }
    if (q > x[n]) {
        return y[n];
    }
    int s = n - 1;
    for (int i = 1; i < n; ++i) {
        if (x[i] > q) {
            s = i - 1;
            break;
        }
    }
    double* const h = scratch;
    double* const d = h + n;
    double* const r = d + n;
    double* const u = r + n;
    double* const w = u + n;
    double* const c = w + n;
    for (int i = 0; i < n; ++i) {
        h[i] = x[i + 1] - x[i];
    }
    for (int i = 1; i <= n - 1; ++i) {
        d[i] = 2.0 * (h[i] + h[i - 1]);
        r[i] = 3.0 * (((y[i + 1] - y[i]) / h[i]) - ((y[i] - y[i - 1]) / h[i - 1]));
    }
    u[1] = h[1] / d[1];
    for (int i = 2; i <= n - 2; ++i) {
        u[i] = h[i] / (d[i] - h[i - 1] * u[i - 1]);
    }
    w[1] = r[1] / d[1];
    for (int i = 2; i <= n - 1; ++i) {
        w[i] = (r[i] - h[i - 1] * w[i - 1]) / (d[i] - h[i - 1] * u[i - 1]);
    }
    c[0] = 0.0;
    c[n] = 0.0;
    c[n - 1] = w[n - 1];
    for (int i = n - 2; i >= (s > 1 ? s : 1); --i) {
        c[i] = w[i] - u[i] * c[i + 1];
    }
    const double e = q - x[s];
    const double slope = (y[s + 1] - y[s]) / h[s] - h[s] * (c[s + 1] + 2.0 * c[s]) / 3.0;
    return y[s] + e * (slope + e * (c[s] + ((c[s + 1] - c[s]) / (3.0 * h[s])) * e));
}

double periodic_spline_eval(int n, const double* x, const double* y, double q) {
    const std::size_t length = static_cast<std::size_t>(n) + 1;
    double* const scratch = static_cast<double*>(std::malloc(5 * length * sizeof(double)));
    if (scratch == nullptr) {
        return no_value;
    }
    double* const h = scratch;
    double* const d = h + length;
    double* const w = d + length;
    double* const z = w + length;
    double* const v = z + length;  // the evaluator's own values: the last is the first
    std::memcpy(v, y, length * sizeof(double));
    v[n] = y[0];
    for (int i = 0; i <= n - 1; ++i) {
        h[i] = x[i + 1] - x[i];
        w[i] = (y[i + 1] - y[i]) / h[i];
    }
    w[n] = w[0];
    for (int i = 1; i <= n - 1; ++i) {
        d[i] = 2.0 * (x[i + 1] - x[i - 1]);
    }
    d[n] = 2.0 * (h[n - 1] + h[0]);
    for (int i = 1; i <= n; ++i) {
        z[i] = w[i] - w[i - 1];
    }
    w[1] = h[0];
    w[n - 1] = h[n - 1];
    w[n] = d[n];
    for (int i = 2; i <= n - 2; ++i) {
        w[i] = 0.0;
    }
    for (int i = 1; i <= n - 1; ++i) {
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
    for (int i = 1; i <= n - 1; ++i) {
        z[i] = (z[i] - w[i] * t) / d[i];
    }
    const double period = x[n] - x[0];
    if (q - x[n] >= 0.0) {
        q = q - (std::floor((q - x[n]) / period) + 1.0) * period;
    } else if (x[0] - q >= 0.0) {
        q = q + (std::floor((x[0] - q) / period) + 1.0) * period;
    }
    int i = 0;
    int j = n;
    while (i < j) {
        const int k = (i + j) / 2;
        if (q > x[k]) {
            i = k + 1;
        } else {
            j = k;
        }
    }
    if (i > 0) {
        --i;
    }
    const double hh = x[i + 1] - x[i];
    const double e = q - x[i];
    const double result = v[i] + e * (((z[i + 1] - z[i]) * e / hh + 3.0 * z[i]) * e + (v[i + 1] - v[i]) / hh -
                                      (2.0 * z[i] + z[i + 1]) * hh);
    std::free(scratch);
    return result;
}

double local_spline(int m, const double* x, const double* y, double q, double* timing) {
    if (m == 1) {
        return y[0];
    }
    if (m == 2) {
        return linear_segment(x[0], x[1], y[0], y[1], q, timing);
    }
    timing[1] += 1.0;
    if (m < 6 || q < x[2] + 1e-10 || q > x[3] - 1e-10) {
        for (int i = 0; i < m; ++i) {
            if (std::fabs(x[i] - q) < 1e-10) {
                return y[i];
            }
        }
    }
    double scratch[31];
    return natural_spline_eval(m - 1, x, y, q, scratch);
}

double spline_core(int m, const double* x, const double* y, double q, double* timing) {
    timing[1] += 1.0;
    for (int i = 0; i < m; ++i) {
        if (std::fabs(x[i] - q) < 1e-10) {
            return y[i];
        }
    }
    if (m == 1) {
        return y[0];
    }
    if (m == 2) {
        return linear_segment(x[0], x[1], y[0], y[1], q, timing);
    }
    double* const scratch = static_cast<double*>(std::malloc(static_cast<std::size_t>(6 * m) * sizeof(double)));
    if (scratch == nullptr) {
        return no_value;
    }
    const double result = natural_spline_eval(m - 1, x, y, q, scratch);
    std::free(scratch);
    return result;
}

double global_spline(const double* x, const double* y, int rows, double q, int& status, int cyclic, double* timing) {
    status = 0;
    for (int i = 0; i < rows; ++i) {
        if (std::fabs(x[i] - q) < 1e-10) {
            return y[i];
        }
    }
    const int last = rows - 1;
    if (q > x[0] - 1e-10 && x[last] + 1e-10 > q) {
        if (rows < 3) {
            return linear_segment(x[0], x[last], y[0], y[last], q, timing);
        }
        if (cyclic != 0) {
            return periodic_spline_eval(last, x, y, q);
        }
        double* const scratch = static_cast<double*>(std::malloc(static_cast<std::size_t>(6 * rows) * sizeof(double)));
        if (scratch == nullptr) {
            return no_value;
        }
        const double result = natural_spline_eval(last, x, y, q, scratch);
        std::free(scratch);
        return result;
    }
    if (x[0] > q) {
        status = 80001;
        return y[0];
    }
    if (q > x[last]) {
        status = 80002;
        return y[last];
    }
    return no_value;
}

}  // namespace kzb_reference
