// Spline through the nodes of a stencil, by their number: value, straight line, natural spline.
#include "table/kernels.h"
#include "table/lookup.h"
#include "table/node_search.h"

namespace kzb {

double local_spline(int m, const double* x, const double* y, double q, double* timing) {
    if (m == 1) {
        return y[0];
    }
    if (m == 2) {
        return linear_segment(x[0], x[1], y[0], y[1], q, timing);
    }
    timing[slot_spline_calls] += 1.0;
    // Inside the middle segment of six nodes no node can be hit.
    if (m < 6 || q < x[2] + KZB_AXIS_TOL || q > x[3] - KZB_AXIS_TOL) {
        const int hit = node_hit(m, x, q);
        if (hit >= 0) {
            return y[hit];
        }
    }
    return natural_spline_eval(m - 1, x, y, q);
}

double spline_core(int m, const double* x, const double* y, double q, double* timing) {
    timing[slot_spline_calls] += 1.0;
    const int hit = node_hit(m, x, q);
    if (hit >= 0) {
        return y[hit];
    }
    if (m == 1) {
        return y[0];
    }
    if (m == 2) {
        return linear_segment(x[0], x[1], y[0], y[1], q, timing);
    }
    return natural_spline_eval(m - 1, x, y, q);
}

double global_spline(const double* x, const double* y, int rows, double q, int& status, int cyclic, double* timing) {
    status = 0;
    const int hit = node_hit(rows, x, q);
    if (hit >= 0) {
        return y[hit];
    }
    const int last = rows - 1;
    if (q > x[0] - KZB_AXIS_TOL && x[last] + KZB_AXIS_TOL > q) {
        if (rows >= 3) {
            // Any flag but 0 is cyclic here, also a negative one.
            return cyclic != 0 ? periodic_spline_eval(last, x, y, q) : natural_spline_eval(last, x, y, q);
        }
        return linear_segment(x[0], x[last], y[0], y[last], q, timing);
    }
    if (x[0] > q) {
        status = lookup_below_range;
        return y[0];
    }
    if (q > x[last]) {
        status = lookup_above_range;
        return y[last];
    }
    return KZB_NO_VALUE;
}

}  // namespace kzb
