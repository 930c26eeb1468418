// Wrap against one addition at a time, and its end where that would never end.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include "table/lookup.h"

namespace {

KZB_TABLE cyclic_axis(std::initializer_list<double> nodes) {
    KZB_TABLE table;
    const int rows[] = {static_cast<int>(nodes.size())};
    kzb::table_create(table, 1, rows);
    int i = 0;
    for (const double node : nodes) {
        kzb::table_set_axis_value(&table, 1, i++, node);
    }
    kzb::table_set_cyclic_flag(&table, 1, 1);
    return table;
}

// One addition or subtraction per pass.
double pass_by_pass(double low, double high, double v) {
    const double period = high - low;
    for (;;) {
        if (low - 1e-10 > v) {
            v += period;
        } else if (v > high + 1e-10) {
            v -= period;
        } else {
            return v;
        }
    }
}

std::uint64_t bits(double v) {
    std::uint64_t b = 0;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

TEST(Wrap, takes_whole_periods_off_or_on) {
    const KZB_TABLE table = cyclic_axis({0.0, 180.0, 360.0});
    double x = 725.0;
    double wrapped = 0.0;
    ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped));
    EXPECT_EQ(wrapped, 5.0);
    x = -5.0;
    ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped));
    EXPECT_EQ(wrapped, 355.0);
    x = 360.0;
    ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped));
    EXPECT_EQ(wrapped, 360.0);
}

TEST(Wrap, far_values_equal_one_addition_after_the_other_to_the_last_bit) {
    const double pi = 3.14159265358979323846;
    const double periods[] = {360.0, 360.0 / 7.0, 2.0 * pi, 90.0 / 11.0, 0.7, 1.0 / 3.0, 1.0, 17.25, 123.456};
    std::mt19937 random{11};
    for (int round = 0; round < 4000; ++round) {
        const double period = periods[random() % 9];
        const double low = round % 3 == 0 ? 0.0 : std::uniform_real_distribution<double>(-400.0, 400.0)(random);
        // At most about a million passes of the slow way.
        const double most =
            period * std::pow(10.0, std::uniform_real_distribution<double>(0.0, round < 200 ? 6.0 : 4.0)(random));
        const double x = std::uniform_real_distribution<double>(-most, most)(random);
        const KZB_TABLE table = cyclic_axis({low, low + period / 2, low + period});
        double wrapped = 0.0;
        ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped));
        ASSERT_EQ(bits(wrapped), bits(pass_by_pass(low, low + period, x))) << low << " " << period << " " << x;
    }
}

// Periods that are whole numbers of last places of the value take another way than others.
TEST(Wrap, angles_of_a_machine_that_turned_for_long_equal_the_slow_way) {
    std::mt19937_64 random(7);
    const double ends[][2] = {{0.0, 360.0},   {0.0, 90.0},      {-180.0, 180.0},  {-90.0, 90.0}, {0.0, 45.0},
                              {100.0, 190.0}, {-360.0, -270.0}, {0.0, 7.5},       {0.0, 0.125},  {0.0, 7.2},
                              {1.5, 91.5},    {0.0, 120.0},     {1000.0, 1001.0}, {-0.1, 0.1},   {5e-324, 90.0}};
    for (const auto& [low, high] : ends) {
        const KZB_TABLE table = cyclic_axis({low, high});
        const double period = high - low;
        for (int i = 0; i < 300; ++i) {
            const double turns = std::uniform_real_distribution<double>(-1.0, 1.0)(random) * std::pow(10.0, i % 5 + 1);
            const double values[] = {turns * period, std::round(turns) * period, std::round(turns * period),
                                     std::round(turns) * period + low, std::nextafter(turns * period, 1e300)};
            for (double x : values) {
                double wrapped = 0.0;
                ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped)) << low << ' ' << high << ' ' << x;
                ASSERT_EQ(bits(wrapped), bits(pass_by_pass(low, high, x))) << low << ' ' << high << ' ' << x;
            }
        }
    }
}

TEST(Wrap, steps_that_tie_between_two_values_equal_the_slow_way) {
    // A period of half an ulp more than a whole number of ulps of the values around 2^40: every step is a tie.
    const double ulp = std::ldexp(1.0, 40 - 52);
    std::mt19937 random{5};
    for (int round = 0; round < 60; ++round) {
        const double period =
            std::ldexp(static_cast<double>(random() % 9000 + 1), 10) + (static_cast<double>(random() % 7) + 0.5) * ulp;
        for (const double sign : {-1.0, 1.0}) {
            const double x = sign * (std::ldexp(1.0, 40) + static_cast<double>(random() % 100000) * ulp);
            if (std::fabs(x) / period > 3e6) {
                continue;
            }
            const KZB_TABLE table = cyclic_axis({0.0, period});
            double wrapped = 0.0;
            ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped));
            ASSERT_EQ(bits(wrapped), bits(pass_by_pass(0.0, period, x))) << period << " " << x;
        }
    }
}

TEST(Wrap, a_thousand_million_passes_equal_the_slow_way) {
    const double x = 1e9;
    for (const double period : {360.0 / 7.0, 2.0 * 3.14159265358979323846}) {
        const KZB_TABLE table = cyclic_axis({0.0, period});
        double wrapped = 0.0;
        ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped));
        EXPECT_EQ(bits(wrapped), bits(pass_by_pass(0.0, period, x)));
        const double below = -x;
        ASSERT_TRUE(kzb::table_wrap_cyclic_axes(table, &below, &wrapped));
        EXPECT_EQ(bits(wrapped), bits(pass_by_pass(0.0, period, below)));
    }
}

TEST(Wrap, ends_without_a_place_where_additions_never_end) {
    const double inf = std::numeric_limits<double>::infinity();
    const KZB_TABLE turn = cyclic_axis({0.0, 180.0, 360.0});
    double wrapped = 0.0;
    for (const double x : {1e300, -1e300, 1e19, inf, -inf, std::nan(""), 360.0 + 1e-10, 0.0 - 1e-10}) {
        EXPECT_FALSE(kzb::table_wrap_cyclic_axes(turn, &x, &wrapped)) << x;
    }
    const KZB_TABLE descending = cyclic_axis({360.0, 180.0, 0.0});
    for (const double x : {400.0, -3.0, 180.0}) {
        EXPECT_FALSE(kzb::table_wrap_cyclic_axes(descending, &x, &wrapped)) << x;
    }
    const KZB_TABLE tiny = cyclic_axis({0.0, 5e-324});
    for (const double x : {1.0, -1.0, 1e-9, 1e300}) {
        EXPECT_FALSE(kzb::table_wrap_cyclic_axes(tiny, &x, &wrapped)) << x;
    }
}

TEST(Wrap, value_left_on_a_limit_after_both_directions_prints_once) {
    // The period 3.4e308 rounds to infinity: one step down, one up, and then no more.
    const KZB_TABLE huge = cyclic_axis({-1.7e308, 1.7e308});
    const double beyond = 1.79e308;
    double wrapped = 0.0;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(kzb::table_wrap_cyclic_axes(huge, &beyond, &wrapped));
    const std::string text = "The cyclic value is not found\n: ";
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(printed.substr(0, text.size()), text);
    EXPECT_EQ(printed.find(text, 1), std::string::npos);
}

TEST(Wrap, small_periods_far_away_finish) {
    // 2^52 periods of one ulp of 1.0: decided at once, whatever the outcome.
    for (const double period : {2.220446049250313e-16, 3e-10, 1e-7}) {
        const KZB_TABLE table = cyclic_axis({0.0, period});
        double wrapped = 0.0;
        for (const double x : {0.9999, -0.9999, 1.0, 8.0, -1e4}) {
            if (kzb::table_wrap_cyclic_axes(table, &x, &wrapped)) {
                EXPECT_GT(wrapped, -1e-10);
                EXPECT_LT(wrapped, period + 1e-10);
            }
        }
    }
}

TEST(Wrap, single_node_replaces_any_coordinate) {
    const KZB_TABLE table = cyclic_axis({7.0});
    for (const double x : {0.0, 1e300, std::nan("")}) {
        double wrapped = 0.0;
        EXPECT_TRUE(kzb::table_wrap_cyclic_axes(table, &x, &wrapped));
        EXPECT_EQ(wrapped, 7.0);
    }
}

TEST(Wrap, equal_ends_print_and_take_the_range_of_the_axis_before) {
    KZB_TABLE table;
    const int rows[] = {2, 2};
    kzb::table_create(table, 2, rows);
    kzb::table_set_axis_value(&table, 1, 0, 10.0);
    kzb::table_set_axis_value(&table, 1, 1, 20.0);
    kzb::table_set_axis_value(&table, 2, 0, 3.0);
    kzb::table_set_axis_value(&table, 2, 1, 3.0);
    kzb::table_set_cyclic_flag(&table, 1, 1);
    kzb::table_set_cyclic_flag(&table, 2, 1);
    const double x[] = {12.0, 45.0};
    double wrapped[2] = {};
    testing::internal::CaptureStderr();
    EXPECT_TRUE(kzb::table_wrap_cyclic_axes(table, x, wrapped));
    const std::string text = "The axis values are not in ascending order\n: ";
    EXPECT_EQ(testing::internal::GetCapturedStderr().substr(0, text.size()), text);
    EXPECT_EQ(wrapped[1], 15.0);  // 45 - 3 * (20 - 10)
    // As the first axis it has the range 0 .. 0 and no period to add.
    const KZB_TABLE alone = cyclic_axis({3.0, 3.0});
    testing::internal::CaptureStderr();
    EXPECT_FALSE(kzb::table_wrap_cyclic_axes(alone, x, wrapped));
    const double zero = 0.0;
    EXPECT_TRUE(kzb::table_wrap_cyclic_axes(alone, &zero, wrapped));
    testing::internal::GetCapturedStderr();
}

TEST(Wrap, axes_without_grid_or_flag_are_copied) {
    KZB_TABLE table;
    const int rows[] = {2, 2};
    kzb::table_create(table, 2, rows);
    kzb::table_set_cyclic_flag(&table, 1, 1);
    kzb::table_set_axis_value(&table, 2, 1, 1.0);
    const double x[] = {1e9, -7.0};
    double wrapped[2] = {};
    EXPECT_TRUE(kzb::table_wrap_cyclic_axes(table, x, wrapped));
    EXPECT_EQ(wrapped[0], 1e9);
    EXPECT_EQ(wrapped[1], -7.0);
}

TEST(Wrap, no_place_gives_no_value_in_every_scheme) {
    const KZB_TABLE table = cyclic_axis({0.0, 180.0, 360.0});
    const double x = std::nan("");
    const struct {
        const char* method;
        int status;
    } cases[] = {{"Linear", 0}, {"Cubic", 9999}, {"Spline4", 9999}, {"Spline6", 9999}, {"Spline", 0}};
    for (const auto& c : cases) {
        double result = 0.0;
        double timing[20] = {};
        EXPECT_EQ(kzb::table_lookup(kzb::scheme_of(c.method), &table, &x, result, timing, {}), c.status) << c.method;
        EXPECT_EQ(result, kzb::KZB_NO_VALUE) << c.method;
    }
}

}  // namespace
