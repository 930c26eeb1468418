// The slow derivation. Names follow the definitions: d, r, u, w, c, z of the splines; a, b, s, m of the Hermite
// segment.
#include "reference_lookup.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace kzb_test {

namespace {

constexpr double eps = 1e-10;
constexpr double none = kzb::KZB_NO_VALUE;
using Row = std::vector<double>;

struct Slow {
    const KZB_TABLE& table;
    bool generic;
    Outcome out;
    Row q;
    std::vector<int> lo, hi;

    int axes() const { return table.dim; }
    int rows(int a) const { return table.sizes[size_t(a)]; }
    bool cyclic(int a) const { return table.cyclic[size_t(a)] > 0; }
    bool has_grid(int a) const { return size_t(a) < table.axes.size() && bool(table.axes[size_t(a)]); }
    Row grid(int a) const {
        const double* p = table.axes[size_t(a)].data();
        return Row(p, p + rows(a));
    }

    // ---- coordinates
    bool wrap() {
        double low = 0, high = 0;
        for (int a = 0; a < axes(); ++a) {
            if (!has_grid(a) || !cyclic(a))
                continue;
            const Row x = grid(a);
            double& v = q[size_t(a)];
            if (x.size() == 1) {
                v = x[0];
                continue;
            }
            if (x.back() > x.front() || x.front() > x.back()) {
                low = x.front();
                high = x.back();
            } else {
                ++out.prints;
            }
            const double period = high - low;
            bool up = false, down = false;
            for (long passes = 0;; ++passes) {
                if (passes > 100000)
                    return false;  // stands for "never ends"
                if (low - eps > v) {
                    v += period;
                    up = true;
                } else if (v > high + eps) {
                    v -= period;
                    down = true;
                } else if (v > low - eps && v < high + eps) {
                    break;
                } else {
                    if (up && down)
                        ++out.prints;
                    return false;
                }
            }
        }
        return true;
    }
    int bracket() {
        int status = 0;
        lo.assign(size_t(axes()), -1);
        hi = lo;
        for (int a = 0; a < axes(); ++a) {
            if (!has_grid(a))
                continue;
            const Row x = grid(a);
            const double v = q[size_t(a)];
            const int R = rows(a);
            int& l = lo[size_t(a)];
            int& h = hi[size_t(a)];
            if (R == 1) {
                l = h = 0;
            } else if (v < x.front() - eps) {
                l = 0, h = 1, status = 80001;
            } else if (v > x.back() + eps) {
                l = R - 2, h = R - 1, status = 80002;
            } else {
                for (int i = 0; i <= R - 2 && l < 0; ++i) {
                    if (v > x[size_t(i)] - eps && x[size_t(i) + 1] + eps > v)
                        l = i, h = i + 1;
                }
            }
        }
        return status;
    }
    double read(const std::vector<int>& i) {
        long position = 0, product = 1;
        for (int a = 0; a < axes(); ++a) {
            if (i[size_t(a)] < 0 || i[size_t(a)] >= rows(a)) {
                ++out.prints;
                return none;
            }
        }
        for (int a = axes() - 1; a >= 0; --a) {
            position += i[size_t(a)] * product;
            product *= rows(a);
        }
        return table.values[size_t(position)];
    }

    // ---- kernels
    double line(double x0, double x1, double y0, double y1, double v) {
        out.timing[3] += 1;
        if (x1 - x0 < eps)
            return std::abs(y1 - y0) < eps ? y0 : none;
        if (std::abs(x0 - v) < eps)
            return y0;
        if (std::abs(x1 - v) < eps)
            return y1;
        if (v > x0 - eps && x1 + eps > v)
            return y0 + ((v - x0) / (x1 - x0)) * (y1 - y0);
        if (x0 > v)
            return y0;
        if (v > x1)
            return y1;
        return none;
    }
    double hermite(const Row& y, const Row& x, double v) {
        out.timing[5] += 1;
        if (std::abs(x[2] - x[1]) < eps)
            return (y[2] + y[1]) * 0.5;
        if (x[1] + eps >= v)
            return y[1];
        if (v >= x[2] - eps)
            return y[2];
        const double h = x[2] - x[1], a = (x[0] - x[1]) / h, b = (x[3] - x[1]) / h, t = (v - x[1]) / h;
        double s[3] = {0, (y[2] - y[1]) / 1, 0};
        if (std::abs(0 - a) > eps)
            s[0] = (y[1] - y[0]) / (0 - a);
        if (std::abs(b - 1) > eps)
            s[2] = (y[3] - y[2]) / (b - 1);
        const double m1 = (s[0] * 1 + s[1] * (0 - a)) / (1 - a);
        const double m2 = (s[1] * (b - 1) + s[2] * 1) / (b - 0);
        return (((2 * y[1] - 2 * y[2] + m1 + m2) * t + (-3 * y[1] + 3 * y[2] - 2 * m1 - m2)) * t + m1) * t + y[1];
    }
    static double natural(const Row& X, const Row& Y, double v) {
        const size_t n = X.size() - 1;
        if (X[0] > v)
            return Y[0];
        if (v > X[n])
            return Y[n];
        size_t s = n - 1;
        for (size_t i = 1; i < n; ++i) {
            if (X[i] > v) {
                s = i - 1;
                break;
            }
        }
        Row h(n), d(n), r(n), u(n), w(n), c(n + 1);
        for (size_t i = 0; i < n; ++i) h[i] = X[i + 1] - X[i];
        for (size_t i = 1; i <= n - 1; ++i) {
            d[i] = 2 * (h[i] + h[i - 1]);
            r[i] = 3 * (((Y[i + 1] - Y[i]) / h[i]) - ((Y[i] - Y[i - 1]) / h[i - 1]));
        }
        u[1] = h[1] / d[1];
        for (size_t i = 2; i + 2 <= n; ++i) u[i] = h[i] / (d[i] - h[i - 1] * u[i - 1]);
        w[1] = r[1] / d[1];
        for (size_t i = 2; i <= n - 1; ++i) w[i] = (r[i] - h[i - 1] * w[i - 1]) / (d[i] - h[i - 1] * u[i - 1]);
        c[0] = 0;
        c[n] = 0;
        c[n - 1] = w[n - 1];
        for (size_t i = n - 1; i-- > std::max(s, size_t(1));) c[i] = w[i] - u[i] * c[i + 1];
        const double e = v - X[s];
        const double slope = (Y[s + 1] - Y[s]) / h[s] - h[s] * (c[s + 1] + 2 * c[s]) / 3;
        return Y[s] + e * (slope + e * (c[s] + ((c[s + 1] - c[s]) / (3 * h[s])) * e));
    }
    static double periodic(const Row& X, Row Y, double v) {
        const size_t n = X.size() - 1;
        Row h(n + 1), d(n + 1), w(n + 1), z(n + 1);
        for (size_t i = 0; i < n; ++i) h[i] = X[i + 1] - X[i], w[i] = (Y[i + 1] - Y[i]) / h[i];
        w[n] = w[0];
        for (size_t i = 1; i < n; ++i) d[i] = 2 * (X[i + 1] - X[i - 1]);
        d[n] = 2 * (h[n - 1] + h[0]);
        for (size_t i = 1; i <= n; ++i) z[i] = w[i] - w[i - 1];
        w[1] = h[0];
        w[n - 1] = h[n - 1];
        w[n] = d[n];
        for (size_t i = 2; i + 2 <= n; ++i) w[i] = 0;
        for (size_t i = 1; i < n; ++i) {
            const double t = h[i] / d[i];
            z[i + 1] -= z[i] * t;
            d[i + 1] -= h[i] * t;
            w[i + 1] -= w[i] * t;
        }
        w[0] = w[n];
        z[0] = z[n];
        for (size_t i = n - 1; i-- > 0;) {
            const double t = h[i] / d[i + 1];
            z[i] -= z[i + 1] * t;
            w[i] -= w[i + 1] * t;
        }
        const double t = z[0] / w[0];
        z[0] = t;
        z[n] = t;
        for (size_t i = 1; i < n; ++i) z[i] = (z[i] - w[i] * t) / d[i];
        Y[n] = Y[0];
        const double P = X[n] - X[0];
        if (v - X[n] >= 0) {
            v = v - (std::floor((v - X[n]) / P) + 1) * P;
        } else if (X[0] - v >= 0) {
            v = v + (std::floor((X[0] - v) / P) + 1) * P;
        }
        size_t i = 0, j = n;
        while (i < j) {
            const size_t k = (i + j) / 2;
            if (v > X[k]) {
                i = k + 1;
            } else {
                j = k;
            }
        }
        if (i > 0)
            --i;
        const double hh = X[i + 1] - X[i], e = v - X[i];
        return Y[i] +
               e * (((z[i + 1] - z[i]) * e / hh + 3 * z[i]) * e + (Y[i + 1] - Y[i]) / hh - (2 * z[i] + z[i + 1]) * hh);
    }
    static int hit(const Row& X, double v) {
        for (size_t i = 0; i < X.size(); ++i) {
            if (std::abs(X[i] - v) < eps)
                return int(i);
        }
        return -1;
    }
    double local(const Row& X, const Row& Y, double v, bool core) {
        const size_t m = X.size();
        if (core) {
            out.timing[1] += 1;
            if (hit(X, v) >= 0)
                return Y[size_t(hit(X, v))];
        }
        if (m == 1)
            return Y[0];
        if (m == 2)
            return line(X[0], X[1], Y[0], Y[1], v);
        if (!core) {
            out.timing[1] += 1;
            const bool test = m < 6 || v < X[2] + eps || v > X[3] - eps;
            if (test && hit(X, v) >= 0)
                return Y[size_t(hit(X, v))];
        }
        return natural(X, Y, v);
    }
    double global(const Row& X, const Row& Y, double v, int& status, int flag) {
        status = 0;
        if (hit(X, v) >= 0)
            return Y[size_t(hit(X, v))];
        if (v > X.front() - eps && X.back() + eps > v) {
            if (X.size() < 3)
                return line(X.front(), X.back(), Y.front(), Y.back(), v);
            return flag != 0 ? periodic(X, Y, v) : natural(X, Y, v);
        }
        if (X.front() > v) {
            status = 80001;
            return Y.front();
        }
        if (v > X.back()) {
            status = 80002;
            return Y.back();
        }
        return none;
    }

    // ---- schemes
    void linear() {
        out.status = bracket();
        const size_t count = size_t(1) << axes();
        Row corner(count);
        const size_t last = size_t(axes()) - 1;
        const bool pairs = axes() == 4 && !generic && hi[last] - lo[last] == 1;
        for (size_t c = 0; c < count; ++c) {
            std::vector<int> i;
            for (int a = 0; a < axes(); ++a) i.push_back((c >> (axes() - 1 - a)) & 1 ? hi[size_t(a)] : lo[size_t(a)]);
            if (!pairs) {
                corner[c] = read(i);
            } else if (c % 2 == 0) {
                bool bad = false;
                for (int a = 0; a < 4; ++a) bad = bad || i[size_t(a)] < 0 || i[size_t(a)] >= rows(a);
                if (bad) {
                    ++out.prints;
                    corner[c] = corner[c + 1] = none;
                    continue;
                }
                for (int a = 0; a < 4; ++a) {
                    if (cyclic(a) && has_grid(a) && std::abs(grid(a)[size_t(i[size_t(a)])] - 360.0) < eps) {
                        i[size_t(a)] = 0;
                    }
                }
                corner[c] = read(i);
                ++i[3];
                corner[c + 1] = read(i);
            }
        }
        for (int a = 0; a < axes(); ++a) {
            if (!has_grid(a))
                return;
            const size_t half = corner.size() / 2;
            Row next;
            const double x0 = lo[size_t(a)] < 0 ? 0 : grid(a)[size_t(lo[size_t(a)])];
            const double x1 = hi[size_t(a)] < 0 ? 0 : grid(a)[size_t(hi[size_t(a)])];
            for (size_t k = 0; k < half; ++k) next.push_back(line(x0, x1, corner[k], corner[k + half], q[size_t(a)]));
            corner = next;
        }
        out.value = corner[0];
    }
    bool all_grids() const {
        for (int a = 0; a < axes(); ++a) {
            if (!has_grid(a))
                return false;
        }
        return true;
    }
    void check() {
        if (out.value > 1e100)
            out.status = 9999;
    }
    void cubic() {
        out.status = bracket();
        bool known = all_grids();
        if (!known)
            return check();
        for (int l : lo) known = known && l >= 0;
        std::vector<int> i(size_t(axes()), 0);
        std::function<double(int)> reduce = [&](int a) -> double {
            if (a == axes())
                return read(i);
            const Row x = grid(a);
            const int R = rows(a), l = lo[size_t(a)], h = hi[size_t(a)];
            const auto X = [&](int k) { return k < 0 ? 0.0 : x[size_t(k)]; };
            Row p = {X(l), X(l), X(h), X(h)};
            if (R >= 2) {
                const double front = X(1) - X(0), back = X(R - 1) - X(R - 2);
                p[0] = l - 1 >= 0 ? X(l - 1) : (cyclic(a) ? X(0) - back : X(0) - 0.1 * front);
                p[3] = h + 1 < R ? X(h + 1) : (cyclic(a) ? X(R - 1) + front : X(R - 1) + 0.1 * back);
            }
            const int below = l - 1 >= 0 ? l - 1 : (cyclic(a) ? R - 2 : 0);
            const int above = h + 1 < R ? h + 1 : (cyclic(a) ? 1 : R - 1);
            Row y;
            for (int index : {below, l, h, above}) {
                i[size_t(a)] = index;
                y.push_back(reduce(a + 1));
            }
            return hermite(y, p, q[size_t(a)]);
        };
        const double value = reduce(0);
        out.value = known ? value : none;
        check();
    }
    void spline_n(int W) {
        out.status = bracket();
        if (!all_grids())
            return check();
        const bool core = axes() > 5 || (W == 6 && generic);
        std::vector<int> i(size_t(axes()), 0);
        std::function<double(int)> reduce = [&](int a) -> double {
            if (a == axes())
                return read(i);
            const Row x = grid(a);
            const int R = rows(a), l = lo[size_t(a)], h = hi[size_t(a)];
            std::vector<int> index =
                W == 4 ? std::vector<int>{l - 1, l, h, h + 1} : std::vector<int>{l - 2, l - 1, l, h, h + 1, h + 2};
            Row shift(size_t(W), 0.0);
            if (R == 1) {
                index.assign(size_t(W), 0);
            } else if (!cyclic(a)) {
                int start = -1;
                if (R <= W) {
                    start = 0;
                } else if (W == 4) {
                    start = l - 1 < 0 ? 0 : (h + 1 >= R ? R - 4 : -1);
                } else {
                    start = l - 2 < 0 || l - 1 < 0 ? 0 : (h + 1 >= R || h + 2 >= R ? R - 6 : -1);
                }
                for (int k = 0; k < W && start >= 0; ++k) index[size_t(k)] = start + k;
            } else {
                for (size_t k = 0; k < index.size(); ++k) {
                    while (index[k] < 0) index[k] += R - 1, shift[k] -= x.back() - x.front();
                    while (index[k] >= R) index[k] += 1 - R, shift[k] += x.back() - x.front();
                }
            }
            Row X, Y;
            for (size_t k = 0; k < size_t(std::min(R, W)); ++k) {
                X.push_back(x[size_t(index[k])] + shift[k]);
                i[size_t(a)] = index[k];
                Y.push_back(reduce(a + 1));
            }
            if (R == 1 && a + 1 < axes())
                return Y[0];
            return local(X, Y, q[size_t(a)], core);
        };
        out.value = reduce(0);
        check();
    }
    void spline() {
        out.status = 90006;
        Row body(table.values.data(), table.values.data() + table.total);
        if (axes() == 1) {
            if (has_grid(0))
                out.value = global(grid(0), body, q[0], out.status, table.cyclic[0]);
            return;
        }
        for (int a = 0; a < axes(); ++a) {
            const size_t R = size_t(rows(a)), rest = body.size() / R;
            Row next(rest, none);
            for (size_t k = 0; k < rest && has_grid(a); ++k) {
                Row y;
                for (size_t i = 0; i < R; ++i) y.push_back(body[i * rest + k]);
                int status = 0;
                next[k] = global(grid(a), y, q[size_t(a)], status, table.cyclic[size_t(a)]);
                if (status > 0)
                    out.status = status;
            }
            body = next;
        }
        out.value = body[0];
    }
};

}  // namespace

Outcome reference_lookup(const std::string& method, const KZB_TABLE& table, std::vector<double> x, bool generic) {
    Slow slow{table, generic, {}, std::move(x), {}, {}};
    const bool placed = slow.wrap();
    if (!placed) {
        // No place in the period: no value; the status is what the scheme starts with, or tells of no value.
        slow.out.status = method == "Linear" ? 0 : method != "Spline" ? 9999 : table.dim == 1 ? 0 : 90006;
    } else if (method == "Linear") {
        slow.linear();
    } else if (method == "Cubic") {
        slow.cubic();
    } else if (method == "Spline4") {
        slow.spline_n(4);
    } else if (method == "Spline6") {
        slow.spline_n(6);
    } else {
        slow.spline();
    }
    return slow.out;
}

}  // namespace kzb_test
