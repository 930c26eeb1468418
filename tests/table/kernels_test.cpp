// The one-dimensional kernels against hand calculations and closed forms.
#include "table/kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "table/lookup.h"

namespace {

struct Timing {
    double slots[20] = {};
    operator double*() { return slots; }
};

// ---- straight line

TEST(LinearSegment, interpolates_snaps_and_clamps) {
    Timing timing;
    EXPECT_EQ(kzb::linear_segment(0.0, 4.0, 10.0, 30.0, 1.0, timing), 15.0);  // 10 + (1/4) * 20
    EXPECT_EQ(kzb::linear_segment(0.0, 4.0, 10.0, 30.0, 5e-11, timing), 10.0);
    EXPECT_EQ(kzb::linear_segment(0.0, 4.0, 10.0, 30.0, 4.0 - 5e-11, timing), 30.0);
    EXPECT_EQ(kzb::linear_segment(0.0, 4.0, 10.0, 30.0, -7.0, timing), 10.0);
    EXPECT_EQ(kzb::linear_segment(0.0, 4.0, 10.0, 30.0, 7.0, timing), 30.0);
    EXPECT_EQ(kzb::linear_segment(0.0, 4.0, 10.0, 30.0, std::nan(""), timing), kzb::KZB_NO_VALUE);
    EXPECT_EQ(timing.slots[3], 6.0);
}

TEST(LinearSegment, nodes_that_fall_together_need_equal_values) {
    Timing timing;
    EXPECT_EQ(kzb::linear_segment(1.0, 1.0, 5.0, 5.0 + 5e-11, 1.0, timing), 5.0);
    EXPECT_EQ(kzb::linear_segment(1.0, 1.0, 5.0, 6.0, 1.0, timing), kzb::KZB_NO_VALUE);
    // Descending nodes count as falling together.
    EXPECT_EQ(kzb::linear_segment(2.0, 1.0, 5.0, 6.0, 1.5, timing), kzb::KZB_NO_VALUE);
    EXPECT_EQ(kzb::linear_segment(2.0, 1.0, 5.0, 5.0, 1.5, timing), 5.0);
}

TEST(LinearSegment, node_value_is_returned_untouched) {
    Timing timing;
    EXPECT_TRUE(std::signbit(kzb::linear_segment(0.0, 1.0, -0.0, 3.0, 0.0, timing)));
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(kzb::linear_segment(0.0, 1.0, 2.0, inf, 0.0, timing), 2.0);
}

// ---- Hermite

TEST(HermiteSegment, straight_data_stay_straight_on_uneven_nodes) {
    Timing timing;
    const double x[] = {-1.0, 0.0, 2.0, 5.0};
    const double y[] = {1.0, 3.0, 7.0, 13.0};  // 3 + 2 x
    EXPECT_DOUBLE_EQ(kzb::hermite_segment(y, x, 0.5, timing), 4.0);
    EXPECT_DOUBLE_EQ(kzb::hermite_segment(y, x, 1.75, timing), 6.5);
    EXPECT_EQ(timing.slots[5], 2.0);
}

TEST(HermiteSegment, even_nodes_give_the_mean_slope_tangents) {
    // Nodes -1, 0, 1, 2: m1 = (s0 + s1) / 2, m2 = (s1 + s2) / 2. With y = 0, 0, 1, 0: m1 = 1/2, m2 = 0. At t = 1/2:
    // ((0 - 2 + 1/2 + 0) / 2 + (0 + 3 - 1 - 0)) / 2 = (-3/4 + 2) / 2 = 5/8; (5/8 + 1/2) / 2 = 9/16.
    Timing timing;
    const double x[] = {-1.0, 0.0, 1.0, 2.0};
    const double y[] = {0.0, 0.0, 1.0, 0.0};
    EXPECT_EQ(kzb::hermite_segment(y, x, 0.5, timing), 0.5625);
}

TEST(HermiteSegment, clamps_to_the_segment_and_averages_where_it_has_no_width) {
    Timing timing;
    const double x[] = {-1.0, 0.0, 1.0, 2.0};
    const double y[] = {8.0, 3.0, 5.0, 9.0};
    EXPECT_EQ(kzb::hermite_segment(y, x, -4.0, timing), 3.0);
    EXPECT_EQ(kzb::hermite_segment(y, x, 1e-10, timing), 3.0);
    EXPECT_EQ(kzb::hermite_segment(y, x, 1.0 - 1e-10, timing), 5.0);
    EXPECT_EQ(kzb::hermite_segment(y, x, 1.5, timing), 5.0);
    const double together[] = {-1.0, 0.0, 5e-11, 2.0};
    EXPECT_EQ(kzb::hermite_segment(y, together, 0.0, timing), 4.0);
}

TEST(HermiteSegment, spans_without_width_have_no_slope) {
    // x0 = x1: a = 0, so m1 = s0 = 0. x3 = x2: b = 1, so m2 = s2 = 0. Smooth step: 3 t^2 - 2 t^3 at 1/4 = 5/32.
    Timing timing;
    const double x[] = {0.0, 0.0, 1.0, 1.0};
    const double y[] = {9.0, 0.0, 1.0, 9.0};
    EXPECT_EQ(kzb::hermite_segment(y, x, 0.25, timing), 0.15625);
}

// ---- natural spline

TEST(NaturalSpline, three_nodes_by_hand) {
    // Nodes 0, 1, 2 with 0, 1, 0: 4 c1 = 3 (-1 - 1), c1 = -3/2. On 0..1: slope = 1 - (c1) / 3 = 3/2, cubic c1 / 3 =
    // -1/2: 3/2 e - 1/2 e^3, at 1/2: 3/4 - 1/16 = 11/16.
    const double x[] = {0.0, 1.0, 2.0};
    const double y[] = {0.0, 1.0, 0.0};
    EXPECT_DOUBLE_EQ(kzb::natural_spline_eval(2, x, y, 0.5), 0.6875);
    EXPECT_DOUBLE_EQ(kzb::natural_spline_eval(2, x, y, 1.5), 0.6875);  // by symmetry
}

TEST(NaturalSpline, four_uneven_nodes_by_hand) {
    // h = 1, 2, 1 and y = 0, 1, 1, 0, symmetric: c1 = c2 = c with 6 c + 2 c = 3 (0 - 1), c = -3/8.
    // Middle, e = 1: slope = 0 - 2 (c + 2 c) / 3 = 3/4; 1 + 3/4 - 3/8 = 11/8.
    const double x[] = {0.0, 1.0, 3.0, 4.0};
    const double y[] = {0.0, 1.0, 1.0, 0.0};
    EXPECT_DOUBLE_EQ(kzb::natural_spline_eval(3, x, y, 2.0), 1.375);
}

TEST(NaturalSpline, clamps_outside) {
    const double x[] = {0.0, 1.0, 2.0};
    const double y[] = {4.0, 1.0, 7.0};
    EXPECT_EQ(kzb::natural_spline_eval(2, x, y, -1.0), 4.0);
    EXPECT_EQ(kzb::natural_spline_eval(2, x, y, 3.0), 7.0);
}

// Solves a dense system by elimination with row exchange.
std::vector<double> solve(std::vector<std::vector<double>> a, std::vector<double> b) {
    const std::size_t n = b.size();
    for (std::size_t k = 0; k < n; ++k) {
        std::size_t best = k;
        for (std::size_t i = k + 1; i < n; ++i) {
            best = std::fabs(a[i][k]) > std::fabs(a[best][k]) ? i : best;
        }
        std::swap(a[k], a[best]);
        std::swap(b[k], b[best]);
        for (std::size_t i = 0; i < n; ++i) {
            if (i == k) {
                continue;
            }
            const double f = a[i][k] / a[k][k];
            for (std::size_t j = k; j < n; ++j) {
                a[i][j] -= f * a[k][j];
            }
            b[i] -= f * b[k];
        }
    }
    for (std::size_t k = 0; k < n; ++k) {
        b[k] /= a[k][k];
    }
    return b;
}

// Spline from its second derivatives M: the textbook form, for natural or periodic ends.
double textbook_spline(const std::vector<double>& x, const std::vector<double>& y, double q, bool periodic) {
    const std::size_t n = x.size() - 1;
    const auto h = [&](std::size_t i) { return x[i % n + 1] - x[i % n]; };
    const auto slope = [&](std::size_t i) { return (y[i % n + 1] - y[i % n]) / h(i); };
    std::vector<std::vector<double>> a(n + 1, std::vector<double>(n + 1, 0.0));
    std::vector<double> b(n + 1, 0.0);
    for (std::size_t i = 1; i < n; ++i) {
        a[i][i - 1] += h(i - 1);
        a[i][i] += 2.0 * (h(i - 1) + h(i));
        a[i][i + 1] += h(i);
        b[i] = 6.0 * (slope(i) - slope(i - 1));
    }
    if (periodic) {
        a[0][0] = 1.0;
        a[0][n] = -1.0;
        a[n][n - 1] += h(n - 1);
        a[n][n] += 2.0 * (h(n - 1) + h(0));
        a[n][1] += h(0);
        b[n] = 6.0 * (slope(0) - slope(n - 1));
    } else {
        a[0][0] = a[n][n] = 1.0;
    }
    const std::vector<double> m = solve(a, b);
    std::size_t i = 0;
    while (i + 1 < n && q > x[i + 1]) {
        ++i;
    }
    const double l = x[i + 1] - q;
    const double r = q - x[i];
    return (m[i] * l * l * l + m[i + 1] * r * r * r) / (6.0 * h(i)) + (y[i] / h(i) - m[i] * h(i) / 6.0) * l +
           (y[i + 1] / h(i) - m[i + 1] * h(i) / 6.0) * r;
}

TEST(Splines, equal_the_textbook_form_solved_densely) {
    std::mt19937 random{3};
    std::uniform_real_distribution<double> uniform(0.2, 2.0);
    for (int round = 0; round < 300; ++round) {
        const std::size_t n = 2 + random() % 12;
        std::vector<double> x{uniform(random)};
        std::vector<double> y{uniform(random)};
        for (std::size_t i = 0; i < n; ++i) {
            x.push_back(x.back() + uniform(random));
            y.push_back(uniform(random));
        }
        const double q = std::uniform_real_distribution<double>(x.front(), x.back())(random);
        // Well-conditioned systems (diagonally dominant): a few hundred ulp of values around 1.
        const double tolerance = 1e-12;
        const int count = static_cast<int>(n);
        EXPECT_NEAR(kzb::natural_spline_eval(count, x.data(), y.data(), q), textbook_spline(x, y, q, false), tolerance);
        // With two segments the seam column of the sweep holds one of its two entries only: established behaviour.
        if (n == 2) {
            continue;
        }
        y.back() = y.front();
        EXPECT_NEAR(kzb::periodic_spline_eval(count, x.data(), y.data(), q), textbook_spline(x, y, q, true), tolerance);
    }
}

// ---- periodic spline

TEST(PeriodicSpline, approximates_a_sine_and_wraps_by_whole_periods) {
    std::vector<double> x;
    std::vector<double> y;
    for (int i = 0; i <= 36; ++i) {
        x.push_back(10.0 * i);
        y.push_back(i == 36 ? 0.0 : std::sin(10.0 * i * 3.14159265358979323846 / 180.0));
    }
    const double at_47 = kzb::periodic_spline_eval(36, x.data(), y.data(), 47.0);
    // Error of a cubic spline: about h^4 / 384, h = 10 degrees = 0.1745: 2.5e-6.
    EXPECT_NEAR(at_47, std::sin(47.0 * 3.14159265358979323846 / 180.0), 3e-6);
    EXPECT_EQ(kzb::periodic_spline_eval(36, x.data(), y.data(), 47.0 + 720.0), at_47);
    EXPECT_EQ(kzb::periodic_spline_eval(36, x.data(), y.data(), 47.0 - 360.0), at_47);
}

TEST(PeriodicSpline, two_segments_by_hand) {
    // Nodes 0, 1, 2 with 0, 1, 0: slopes 1, -1; d1 = 4, d2 = 4; z1 = -2, z2 = 1 - (-1) = 2; w1 = h1 = 1, w2 = 4.
    // Down: t = 1/4: z2 = 2.5, d2 = 3.75, w2 = 3.75. Seam: w0 = 3.75, z0 = 2.5; up: t = h0 / d1 = 1/4: z0 = 3, w0
    // = 3.5. z0 = 6/7 = z2, z1 = (-2 - 6/7) / 4 = -5/7. At 1/2: 1/2 * (((-11/7)(1/2) + 18/7)(1/2) + 1 - (12/7 - 5/7))
    //   = 1/2 * (25/28 + 0) = 25/56.
    const double x[] = {0.0, 1.0, 2.0};
    const double y[] = {0.0, 1.0, 0.0};
    EXPECT_NEAR(kzb::periodic_spline_eval(2, x, y, 0.5), 25.0 / 56.0, 1e-15);
}

TEST(PeriodicSpline, unequal_ends_are_forced_equal_at_the_evaluation_only) {
    const std::vector<double> x{0.0, 1.0, 2.0, 3.0};
    const std::vector<double> y{0.0, 1.0, -1.0, 4.0};
    std::vector<double> closed = y;
    closed.back() = closed.front();
    // Not at the middle of the last segment: the surplus bends its two ends by opposite amounts, which cancel there.
    const double forced = kzb::periodic_spline_eval(3, x.data(), y.data(), 2.2);
    EXPECT_GT(std::fabs(forced - kzb::periodic_spline_eval(3, x.data(), closed.data(), 2.2)), 0.1);
    // Near the last node the value runs to the first one.
    EXPECT_NEAR(kzb::periodic_spline_eval(3, x.data(), y.data(), 3.0 - 1e-9), y.front(), 1e-7);
}

// ---- stencils and whole axes

TEST(LocalSpline, dispatches_by_the_number_of_nodes_and_counts) {
    const double x[] = {0.0, 1.0, 2.0, 3.0, 4.0, 5.0};
    const double y[] = {5.0, 1.0, 0.0, 2.0, 7.0, 1.0};
    Timing timing;
    EXPECT_EQ(kzb::local_spline(1, x, y, 9.0, timing), 5.0);
    EXPECT_EQ(timing.slots[1], 0.0);
    EXPECT_EQ(kzb::local_spline(2, x, y, 0.5, timing), 3.0);
    EXPECT_EQ(timing.slots[3], 1.0);
    EXPECT_EQ(timing.slots[1], 0.0);
    for (int m = 3; m <= 6; ++m) {
        EXPECT_EQ(kzb::local_spline(m, x, y, 1.3, timing), kzb::natural_spline_eval(m - 1, x, y, 1.3));
        EXPECT_EQ(kzb::local_spline(m, x, y, 1.0 + 5e-11, timing), 1.0);
    }
    EXPECT_EQ(timing.slots[1], 8.0);
}

TEST(LocalSpline, six_nodes_skip_the_node_test_in_the_middle_segment) {
    // A sixth node out of order inside the middle segment: only a node test could find it.
    const double x[] = {0.0, 1.0, 2.0, 3.0, 4.0, 2.5};
    const double y[] = {5.0, 1.0, 0.0, 2.0, 7.0, -9.0};
    Timing timing;
    EXPECT_EQ(kzb::local_spline(6, x, y, 2.5, timing), kzb::natural_spline_eval(5, x, y, 2.5));
    EXPECT_EQ(kzb::spline_core(6, x, y, 2.5, timing), -9.0);
    EXPECT_EQ(kzb::local_spline(6, x, y, 2.0 + 5e-11, timing), 0.0);
}

TEST(SplineCore, counts_every_entry_and_tests_nodes_first) {
    const double x[] = {0.0, 1.0, 2.0};
    const double y[] = {5.0, 1.0, 0.0};
    Timing timing;
    EXPECT_EQ(kzb::spline_core(1, x, y, 9.0, timing), 5.0);
    EXPECT_EQ(kzb::spline_core(2, x, y, 0.0, timing), 5.0);
    EXPECT_EQ(timing.slots[3], 0.0);
    EXPECT_EQ(kzb::spline_core(2, x, y, 0.5, timing), 3.0);
    EXPECT_EQ(timing.slots[3], 1.0);
    EXPECT_EQ(kzb::spline_core(3, x, y, 0.5, timing), kzb::natural_spline_eval(2, x, y, 0.5));
    EXPECT_EQ(timing.slots[1], 4.0);
}

TEST(GlobalSpline, tests_nodes_then_range_then_picks_the_spline) {
    const double x[] = {0.0, 1.0, 2.0, 3.0};
    const double y[] = {5.0, 1.0, 0.0, 5.0};
    Timing timing;
    int status = 7;
    EXPECT_EQ(kzb::global_spline(x, y, 4, 1.0, status, 0, timing), 1.0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(kzb::global_spline(x, y, 4, 1.4, status, 0, timing), kzb::natural_spline_eval(3, x, y, 1.4));
    EXPECT_EQ(kzb::global_spline(x, y, 4, 1.4, status, 1, timing), kzb::periodic_spline_eval(3, x, y, 1.4));
    EXPECT_EQ(kzb::global_spline(x, y, 4, 1.4, status, -1, timing), kzb::periodic_spline_eval(3, x, y, 1.4));
    EXPECT_EQ(kzb::global_spline(x, y, 4, -1.0, status, 0, timing), 5.0);
    EXPECT_EQ(status, 80001);
    EXPECT_EQ(kzb::global_spline(x, y, 4, 4.0, status, 0, timing), 5.0);
    EXPECT_EQ(status, 80002);
    EXPECT_EQ(kzb::global_spline(x, y, 4, std::nan(""), status, 0, timing), kzb::KZB_NO_VALUE);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(timing.slots[3], 0.0);
    EXPECT_EQ(kzb::global_spline(x, y, 2, 0.5, status, 0, timing), 3.0);
    EXPECT_EQ(timing.slots[3], 1.0);
}

}  // namespace
