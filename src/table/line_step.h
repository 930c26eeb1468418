// One active axis of a block reduction: the entries that its lines take, and the factors that all its lines share.
//
// The functions repeat the kernels operation by operation; only what depends on nodes and query alone moved out of
// them. They work on doubles and on lane pairs.
#pragma once

#include <cstdint>
#include <cstring>

#include "table/lane_pair.h"
#include "table/stencil.h"

namespace kzb {

// `hermite_inner` has nodes on both sides, `hermite_exact` too; `hermite_edge` may lack one.
enum class LineKind { lerp, hermite_edge, hermite_inner, hermite_exact, spline };

// Divisors of the Hermite segment, or their reciprocals where all four are powers of two (then both are exact).
struct HermiteFactors {
    double before;      // 0 - a
    double before_end;  // 1 - a
    double after;       // b - 1
    double end;         // b
    double divide_before;
    double divide_before_end;
    double divide_after;
    double divide_end;
    double t;
    bool has_before;
    bool has_after;
};

// n = count - 1 segments, the query in segment s at e behind its node.
struct SplineFactors {
    double h[5];
    double pivot[5];
    double u[5];
    double e;
    double three_h;
    int s;
};

struct LineStep {
    LineKind kind;
    int count;      // entries of a line
    int offset[6];  // of the entries in the table
    double t;       // lerp
    HermiteFactors hermite;
    SplineFactors spline;
};

// Whether 1 / v is exact and v * (1 / w) == v / w for all v.
inline bool is_power_of_two(double w) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &w, sizeof bits);
    const std::uint64_t exponent = bits >> 52 & 0x7ff;
    return (bits & 0xfffffffffffff) == 0 && exponent > 100 && exponent < 1900;
}

template <bool Exact, class V>
inline V quotient(V dividend, double divisor) {
    if constexpr (Exact) {
        return dividend * divisor;
    } else {
        return dividend / divisor;
    }
}

template <LineKind Kind, class V>
inline V hermite_line(const HermiteFactors& f, V y0, V y1, V y2, V y3) {
    constexpr bool Exact = Kind == LineKind::hermite_exact;
    V s0{};
    V s2{};
    const V s1 = y2 - y1;
    if (Kind != LineKind::hermite_edge || f.has_before) {
        s0 = quotient<Exact>(y1 - y0, f.divide_before);
    }
    if (Kind != LineKind::hermite_edge || f.has_after) {
        s2 = quotient<Exact>(y3 - y2, f.divide_after);
    }
    const V m1 = quotient<Exact>(s0 + s1 * f.before, f.divide_before_end);
    const V m2 = quotient<Exact>(s1 * f.after + s2, f.divide_end);
    const V cubic = 2.0 * y1 - 2.0 * y2 + m1 + m2;
    const V square = -3.0 * y1 + 3.0 * y2 - 2.0 * m1 - m2;
    return ((cubic * f.t + square) * f.t + m1) * f.t + y1;
}

// Natural spline through N + 1 values; y(i) gives a value.
template <int N, class V, class Values>
inline V spline_line(const SplineFactors& f, Values y) {
    V slope[N];
    V c[N + 1];
    V w[N];
    V values[N + 1];
    values[0] = y(0);
    for (int i = 0; i < N; ++i) {
        values[i + 1] = y(i + 1);
        slope[i] = (values[i + 1] - values[i]) / f.h[i];
    }
    w[1] = 3.0 * (slope[1] - slope[0]) / f.pivot[1];
    for (int i = 2; i < N; ++i) {
        w[i] = (3.0 * (slope[i] - slope[i - 1]) - f.h[i - 1] * w[i - 1]) / f.pivot[i];
    }
    const int s = f.s;
    c[0] = V{};
    c[N] = V{};
    c[N - 1] = w[N - 1];
    for (int i = N - 2; i >= (s > 1 ? s : 1); --i) {
        c[i] = w[i] - f.u[i] * c[i + 1];
    }
    const V c0 = c[s];
    const V c1 = c[s + 1];
    const V first = slope[s] - f.h[s] * (c1 + 2.0 * c0) / 3.0;
    return values[s] + f.e * (first + f.e * (c0 + ((c1 - c0) / f.three_h) * f.e));
}

}  // namespace kzb
