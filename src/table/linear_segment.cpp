// Linear interpolation on one segment:  y0 + ((q - x0) / (x1 - x0)) * (y1 - y0).
//
// A query within the tolerance of a node gives that node's value; outside, the value of the nearer end.
#include <cmath>

#include "table/kernels.h"
#include "table/lookup.h"

namespace kzb {

double linear_segment(double x0, double x1, double y0, double y1, double q, double* timing) {
    timing[slot_linear_calls] += 1.0;
    const double dx = x1 - x0;
    // Also nodes in descending order.
    if (dx < KZB_AXIS_TOL) {
        return std::fabs(y1 - y0) < KZB_AXIS_TOL ? y0 : KZB_NO_VALUE;
    }
    if (std::fabs(x0 - q) < KZB_AXIS_TOL) {
        return y0;
    }
    if (std::fabs(x1 - q) < KZB_AXIS_TOL) {
        return y1;
    }
    if (q > x0 - KZB_AXIS_TOL && x1 + KZB_AXIS_TOL > q) {
        return y0 + ((q - x0) / dx) * (y1 - y0);
    }
    if (x0 > q) {
        return y0;
    }
    return q > x1 ? y1 : KZB_NO_VALUE;
}

}  // namespace kzb
