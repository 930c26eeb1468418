#include "kzb/build_spline.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kzb::tool {

namespace {

// Solves the tridiagonal system in place; the result stands in `right`. Row i: low[i], diagonal[i], up[i].
void solve_tridiagonal(const std::vector<double>& low, std::vector<double> diagonal, const std::vector<double>& up,
                       std::vector<double>& right) {
    const std::size_t n = right.size();
    for (std::size_t i = 1; i < n; ++i) {
        const double w = low[i] / diagonal[i - 1];
        diagonal[i] -= w * up[i - 1];
        right[i] -= w * right[i - 1];
    }
    right[n - 1] /= diagonal[n - 1];
    for (std::size_t i = n - 1; i-- > 0;) {
        right[i] = (right[i] - up[i] * right[i + 1]) / diagonal[i];
    }
}

// Slopes of the periodic spline; x and y with the closing node, the result without it. The cyclic system is a
// tridiagonal one plus a rank-one term (Sherman-Morrison).
std::vector<double> periodic_slopes(const std::vector<double>& x, const std::vector<double>& y) {
    const std::size_t n = x.size() - 1;
    std::vector<double> low(n), diagonal(n), up(n), right(n);
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t before = (i + n - 1) % n;
        const double h0 = x[before + 1] - x[before];
        const double h1 = x[i + 1] - x[i];
        low[i] = 1.0 / h0;
        up[i] = 1.0 / h1;
        diagonal[i] = 2.0 * (low[i] + up[i]);
        right[i] = 3.0 * ((y[before + 1] - y[before]) / (h0 * h0) + (y[i + 1] - y[i]) / (h1 * h1));
    }
    const double corner_top = low[0];
    const double corner_bottom = up[n - 1];
    const double gamma = -diagonal[0];
    std::vector<double> column(n, 0.0);
    column[0] = gamma;
    column[n - 1] = corner_bottom;
    diagonal[0] -= gamma;
    diagonal[n - 1] -= corner_top * corner_bottom / gamma;
    solve_tridiagonal(low, diagonal, up, right);
    solve_tridiagonal(low, diagonal, up, column);
    const double factor =
        (right[0] + right[n - 1] * corner_top / gamma) / (1.0 + column[0] + column[n - 1] * corner_top / gamma);
    for (std::size_t i = 0; i < n; ++i) {
        right[i] -= factor * column[i];
    }
    return right;
}

// Hermite basis and its derivatives on [0, 1].
struct Basis {
    double v0, v1, s0, s1;
};
Basis basis(double t) {
    return {(2.0 * t - 3.0) * t * t + 1.0, (3.0 - 2.0 * t) * t * t, ((t - 2.0) * t + 1.0) * t, (t - 1.0) * t * t};
}
Basis basis_slope(double t) {
    return {6.0 * t * (t - 1.0), 6.0 * t * (1.0 - t), (3.0 * t - 4.0) * t + 1.0, (3.0 * t - 2.0) * t};
}

// Index of the segment [x[i], x[i + 1]] that holds `at`, which lies within the nodes.
std::size_t segment_index(const std::vector<double>& x, double at) {
    const auto above = std::upper_bound(x.begin() + 1, x.end() - 1, at);
    return static_cast<std::size_t>(above - x.begin()) - 1;
}

}  // namespace

std::vector<double> spline_slopes(const std::vector<double>& x, const std::vector<double>& y) {
    const std::size_t n = x.size();
    const auto chord = [&](std::size_t i) { return (y[i + 1] - y[i]) / (x[i + 1] - x[i]); };
    if (n == 2) {
        return {chord(0), chord(0)};
    }
    std::vector<double> low(n, 1.0), diagonal(n, 1.0), up(n, 1.0), right(n);
    right[0] = 2.0 * chord(0);
    right[n - 1] = 2.0 * chord(n - 2);
    for (std::size_t i = 1; i + 1 < n; ++i) {
        low[i] = 1.0 / (x[i] - x[i - 1]);
        up[i] = 1.0 / (x[i + 1] - x[i]);
        diagonal[i] = 2.0 * (low[i] + up[i]);
        right[i] = 3.0 * (chord(i - 1) * low[i] + chord(i) * up[i]);
    }
    solve_tridiagonal(low, diagonal, up, right);
    return right;
}

PeriodicSpline::PeriodicSpline(std::vector<double> x, std::vector<double> y, double period)
    : x_(std::move(x)), y_(std::move(y)), period_(period) {
    x_.push_back(x_.front() + period);
    y_.push_back(y_.front());
    m_ = periodic_slopes(x_, y_);
    m_.push_back(m_.front());
}

PeriodicSpline::Segment PeriodicSpline::segment_of(double x) const {
    const double wrapped = x - std::floor((x - x_.front()) / period_) * period_;
    const double inside = std::clamp(wrapped, x_.front(), x_.back());
    const std::size_t i = segment_index(x_, inside);
    const double h = x_[i + 1] - x_[i];
    return {i, (inside - x_[i]) / h, h};
}

double PeriodicSpline::at(double x) const {
    const auto [i, t, h] = segment_of(x);
    const Basis b = basis(t);
    return y_[i] * b.v0 + y_[i + 1] * b.v1 + h * (m_[i] * b.s0 + m_[i + 1] * b.s1);
}

double PeriodicSpline::slope_at(double x) const {
    const auto [i, t, h] = segment_of(x);
    const Basis b = basis_slope(t);
    return (y_[i] * b.v0 + y_[i + 1] * b.v1) / h + m_[i] * b.s0 + m_[i + 1] * b.s1;
}

BicubicSurface::BicubicSurface(const std::vector<double>& x, const std::vector<double>& y, std::vector<double> values)
    : x_(x), y_(y), f_(std::move(values)), fx_(f_.size()), fy_(f_.size()), fxy_(f_.size()) {
    const std::size_t nx = x.size();
    const std::size_t ny = y.size();
    // Slopes along x of a field, into another.
    const auto slopes_along_x = [&](const std::vector<double>& field, std::vector<double>& slopes) {
        std::vector<double> line(nx);
        for (std::size_t j = 0; j < ny; ++j) {
            for (std::size_t i = 0; i < nx; ++i) {
                line[i] = field[i * ny + j];
            }
            const std::vector<double> m = spline_slopes(x_, line);
            for (std::size_t i = 0; i < nx; ++i) {
                slopes[i * ny + j] = m[i];
            }
        }
    };
    for (std::size_t i = 0; i < nx; ++i) {
        const auto row = f_.begin() + static_cast<std::ptrdiff_t>(i * ny);
        const std::vector<double> m =
            spline_slopes(y_, std::vector<double>(row, row + static_cast<std::ptrdiff_t>(ny)));
        std::copy(m.begin(), m.end(), fy_.begin() + static_cast<std::ptrdiff_t>(i * ny));
    }
    slopes_along_x(f_, fx_);
    slopes_along_x(fy_, fxy_);
}

BicubicSurface::Inner BicubicSurface::inner(double x, double y) const {
    const std::size_t i = segment_index(x_, x);
    const std::size_t j = segment_index(y_, y);
    const double hx = x_[i + 1] - x_[i];
    const double hy = y_[j + 1] - y_[j];
    const double tx = (x - x_[i]) / hx;
    const double ty = (y - y_[j]) / hy;
    const std::size_t corner[2][2] = {{i * y_.size() + j, i * y_.size() + j + 1},
                                      {(i + 1) * y_.size() + j, (i + 1) * y_.size() + j + 1}};
    // Sum over the four corners with the basis bx along x and by along y.
    const auto sum = [&](const Basis& bx, const Basis& by) {
        const double vx[2] = {bx.v0, bx.v1};
        const double sx[2] = {bx.s0 * hx, bx.s1 * hx};
        const double vy[2] = {by.v0, by.v1};
        const double sy[2] = {by.s0 * hy, by.s1 * hy};
        double total = 0.0;
        for (int a = 0; a < 2; ++a) {
            for (int b = 0; b < 2; ++b) {
                const std::size_t c = corner[a][b];
                total += vx[a] * (vy[b] * f_[c] + sy[b] * fy_[c]) + sx[a] * (vy[b] * fx_[c] + sy[b] * fxy_[c]);
            }
        }
        return total;
    };
    const Basis bx = basis(tx);
    const Basis by = basis(ty);
    const Basis dx = basis_slope(tx);
    const Basis dy = basis_slope(ty);
    return {sum(bx, by), sum(dx, by) / hx, sum(bx, dy) / hy, sum(dx, dy) / (hx * hy)};
}

SurfaceValue BicubicSurface::at(double x, double y) const {
    const double cx = std::clamp(x, x_.front(), x_.back());
    const double cy = std::clamp(y, y_.front(), y_.back());
    const Inner p = inner(cx, cy);
    const double ex = x - cx;
    const double ey = y - cy;
    // Along an edge the clamped coordinate does not move, the free one moves the slopes too.
    return {p.f + ex * p.fx + ey * p.fy, p.fx + (ex == 0.0 ? ey * p.fxy : 0.0), p.fy + (ey == 0.0 ? ex * p.fxy : 0.0)};
}

}  // namespace kzb::tool
