// Searches along the nodes of a spline: node hit, segment, place in the period.
#pragma once

#include <cmath>

#include "table/table.h"

namespace kzb {

// Lowest node within the tolerance of q, -1 where there is none.
inline int node_hit(int count, const double* x, double q) {
    for (int i = 0; i < count; ++i) {
        if (std::fabs(x[i] - q) < KZB_AXIS_TOL) {
            return i;
        }
    }
    return -1;
}

// Segment of the natural spline: the one before the first inner node above q.
inline int natural_segment(int n, const double* x, double q) {
    for (int i = 1; i < n; ++i) {
        if (x[i] > q) {
            return i - 1;
        }
    }
    return n - 1;
}

// The query of the periodic spline brought between its end nodes.
inline double into_period(int n, const double* x, double q) {
    const double period = x[n] - x[0];
    if (q - x[n] >= 0.0) {
        return q - (std::floor((q - x[n]) / period) + 1.0) * period;
    }
    if (x[0] - q >= 0.0) {
        return q + (std::floor((x[0] - q) / period) + 1.0) * period;
    }
    return q;
}

// Segment of the periodic spline: the one before the first node not below q.
inline int periodic_segment(int n, const double* x, double q) {
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
    return i > 0 ? i - 1 : 0;
}

}  // namespace kzb
