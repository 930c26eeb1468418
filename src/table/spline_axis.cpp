// Splines of a strip of lines: the kernels of natural_spline.cpp and periodic_spline.cpp, operation by operation, with
// the part that depends on nodes and query alone moved into the preparation.
#include "table/spline_axis.h"

#include <algorithm>
#include <cstring>

#include "table/lane_pair.h"
#include "table/node_search.h"

namespace kzb {

namespace {

constexpr int pairs = strip_width / 2;

// One value per line of the strip.
struct Lanes {
    LanePair v[pairs];
};

inline Lanes load(const double* from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

inline void store(double* to, const Lanes& lanes) {
    std::memcpy(to, &lanes, sizeof lanes);
}

template <class Operation>
inline Lanes each(Operation operation) {
    Lanes lanes;
    for (int k = 0; k < pairs; ++k) {
        lanes.v[k] = operation(k);
    }
    return lanes;
}

inline double* row(double* block, int i) {
    return block + std::ptrdiff_t{i} * strip_width;
}

void prepare_natural(SplineAxis& axis, int n) {
    axis.segment = natural_segment(n, axis.nodes, axis.x);
    for (int i = 1; i < n; ++i) {
        const double d = 2.0 * (axis.h[i] + axis.h[i - 1]);
        axis.pivot[i] = i == 1 ? d : d - axis.h[i - 1] * axis.factor[i - 1];
        axis.factor[i] = axis.h[i] / axis.pivot[i];
    }
}

void prepare_periodic(SplineAxis& axis, int n) {
    const double* x = axis.nodes;
    const double* h = axis.h;
    double* d = axis.pivot;
    double* w = axis.seam;
    for (int i = 1; i < n; ++i) {
        d[i] = 2.0 * (x[i + 1] - x[i - 1]);
        w[i] = 0.0;
    }
    d[n] = 2.0 * (h[n - 1] + h[0]);
    w[1] = h[0];
    w[n - 1] = h[n - 1];
    w[n] = d[n];
    for (int i = 1; i < n; ++i) {
        const double t = h[i] / d[i];
        axis.factor[i] = t;
        d[i + 1] -= h[i] * t;
        w[i + 1] -= w[i] * t;
    }
    w[0] = w[n];
    for (int i = n - 2; i >= 0; --i) {
        const double t = h[i] / d[i + 1];
        axis.back[i] = t;
        w[i] -= w[i + 1] * t;
    }
    axis.x = into_period(n, x, axis.x);
    axis.segment = periodic_segment(n, x, axis.x);
}

void linear_strip(const SplineAxis& axis, double* out) {
    const Lanes y0 = load(row(axis.strip, 0));
    const Lanes y1 = load(row(axis.strip, 1));
    const double t = axis.e / axis.h[0];
    store(out, each([&](int k) { return y0.v[k] + t * (y1.v[k] - y0.v[k]); }));
}

void natural_strip(const SplineAxis& axis, double* out) {
    const int n = axis.rows - 1;
    const int s = axis.segment;
    const double* h = axis.h;
    Lanes y = load(row(axis.strip, 1));
    const Lanes start = load(row(axis.strip, 0));
    Lanes slope = each([&](int k) { return (y.v[k] - start.v[k]) / h[0]; });
    Lanes slope_here = slope;
    Lanes w{};
    for (int i = 1; i < n; ++i) {
        const Lanes next = load(row(axis.strip, i + 1));
        const Lanes rise = each([&](int k) { return (next.v[k] - y.v[k]) / h[i]; });
        if (i == 1) {
            w = each([&](int k) { return 3.0 * (rise.v[k] - slope.v[k]) / axis.pivot[i]; });
        } else {
            w = each([&](int k) { return (3.0 * (rise.v[k] - slope.v[k]) - h[i - 1] * w.v[k]) / axis.pivot[i]; });
        }
        store(row(axis.work, i), w);
        slope = rise;
        y = next;
        if (i == s) {
            slope_here = rise;
        }
    }
    // From the far end back to the segment: c0 at its lower node, c1 at its upper one.
    Lanes c0 = w;
    Lanes c1{};
    for (int i = n - 2; i >= std::max(s, 1); --i) {
        const Lanes wi = load(row(axis.work, i));
        c1 = c0;
        c0 = each([&](int k) { return wi.v[k] - axis.factor[i] * c1.v[k]; });
    }
    if (s == 0) {
        c1 = c0;
        c0 = Lanes{};
    }
    const Lanes ys = load(row(axis.strip, s));
    const double e = axis.e;
    const double three_h = 3.0 * h[s];
    store(out, each([&](int k) {
              const LanePair first = slope_here.v[k] - h[s] * (c1.v[k] + 2.0 * c0.v[k]) / 3.0;
              return ys.v[k] + e * (first + e * (c0.v[k] + ((c1.v[k] - c0.v[k]) / three_h) * e));
          }));
}

void periodic_strip(const SplineAxis& axis, double* out) {
    const int n = axis.rows - 1;
    const double* h = axis.h;
    double* z = axis.work;
    const Lanes y0 = load(row(axis.strip, 0));
    Lanes y = load(row(axis.strip, 1));
    const Lanes first_slope = each([&](int k) { return (y.v[k] - y0.v[k]) / h[0]; });
    Lanes slope = first_slope;
    // Going down, each difference of slopes loses its share of the one before.
    Lanes swept{};
    for (int i = 1; i <= n; ++i) {
        Lanes rise = first_slope;
        if (i < n) {
            const Lanes next = load(row(axis.strip, i + 1));
            rise = each([&](int k) { return (next.v[k] - y.v[k]) / h[i]; });
            y = next;
        }
        if (i == 1) {
            swept = each([&](int k) { return rise.v[k] - slope.v[k]; });
        } else {
            swept = each([&](int k) { return (rise.v[k] - slope.v[k]) - swept.v[k] * axis.factor[i - 1]; });
        }
        store(row(z, i), swept);
        slope = rise;
    }
    // Going up, from the seam's copy at 0 last.
    Lanes above = load(row(z, n - 1));
    for (int i = n - 2; i >= 0; --i) {
        const Lanes here = load(row(z, i == 0 ? n : i));
        above = each([&](int k) { return here.v[k] - above.v[k] * axis.back[i]; });
        if (i > 0) {
            store(row(z, i), above);
        }
    }
    const Lanes seam = each([&](int k) { return above.v[k] / axis.seam[0]; });
    const auto coefficient = [&](int i) {
        if (i == 0 || i == n) {
            return seam;
        }
        const Lanes zi = load(row(z, i));
        return each([&](int k) { return (zi.v[k] - axis.seam[i] * seam.v[k]) / axis.pivot[i]; });
    };
    const int s = axis.segment;
    const Lanes z0 = coefficient(s);
    const Lanes z1 = coefficient(s + 1);
    const Lanes from = load(row(axis.strip, s));
    // The last value counts as the first one.
    const Lanes to = load(row(axis.strip, s + 1 == n ? 0 : s + 1));
    const double e = axis.e;
    const double hh = h[s];
    store(out, each([&](int k) {
              const LanePair bend = (z1.v[k] - z0.v[k]) * e / hh + 3.0 * z0.v[k];
              return from.v[k] + e * (bend * e + (to.v[k] - from.v[k]) / hh - (2.0 * z0.v[k] + z1.v[k]) * hh);
          }));
}

}  // namespace

void prepare_spline_axis(SplineAxis& axis, double* memory) {
    const int n = axis.rows - 1;
    const auto rows = static_cast<std::size_t>(axis.rows);
    axis.strip = memory;
    axis.work = axis.strip + rows * strip_width;
    axis.h = axis.work + rows * strip_width;
    axis.pivot = axis.h + rows;
    axis.factor = axis.pivot + rows;
    axis.back = axis.factor + rows;
    axis.seam = axis.back + rows;
    for (int i = 0; i < n; ++i) {
        axis.h[i] = axis.nodes[i + 1] - axis.nodes[i];
    }
    axis.held = -1;
    axis.segment = 0;
    if (n > 1 && axis.cyclic != 0) {
        prepare_periodic(axis, n);
    } else if (n > 1) {
        axis.held = axis.nodes[0] > axis.x ? 0 : (axis.x > axis.nodes[n] ? n : -1);
        prepare_natural(axis, n);
    }
    axis.e = axis.x - axis.nodes[axis.segment];
}

void spline_strip(const SplineAxis& axis, double* out) {
    if (axis.held >= 0) {
        store(out, load(row(axis.strip, axis.held)));
    } else if (axis.rows == 2) {
        linear_strip(axis, out);
    } else if (axis.cyclic != 0) {
        periodic_strip(axis, out);
    } else {
        natural_strip(axis, out);
    }
}

}  // namespace kzb
