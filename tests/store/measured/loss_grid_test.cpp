// Distinct coordinates, against the definition written literally: a list searched from its start.
#include "store/measured/loss_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

using kzb::LossGrid;

std::vector<double> distinct_by_definition(const std::vector<double>& column) {
    std::vector<double> list;
    for (const double x : column) {
        if (std::none_of(list.begin(), list.end(), [&](double y) { return std::fabs(y - x) < 1e-10; })) {
            list.push_back(x);
        }
    }
    std::sort(list.begin(), list.end());
    return list;
}

int index_by_definition(const std::vector<double>& axis, double x) {
    for (std::size_t i = 0; i < axis.size(); ++i) {
        if (std::fabs(axis[i] - x) < 1e-10) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

TEST(LossGrid, axes_and_indices_are_those_of_the_definition_bit_for_bit) {
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        std::vector<double> column;
        for (int i = 0; i < 200; ++i) {
            const double step = static_cast<double>(static_cast<int>(random() % 40) - 20);
            const double centre = round % 2 == 0 ? 0.0 : 1000.0;
            column.push_back(centre + step * (round % 3 == 0 ? 1e-10 : 3e-11) * (random() % 5 == 0 ? -0.0 : 1.0));
        }
        LossGrid grid(1000000);
        grid.set_axis_count(1);
        for (const double& x : column) {
            grid.add_point(&x);
        }
        grid.sort();
        const std::vector<double> expected = distinct_by_definition(column);
        ASSERT_EQ(grid.axis(0).size(), expected.size());
        EXPECT_EQ(std::memcmp(grid.axis(0).data(), expected.data(), expected.size() * sizeof(double)), 0);
        for (const double x : column) {
            EXPECT_EQ(grid.index_of(0, x), index_by_definition(expected, x));
            EXPECT_EQ(grid.index_of(0, x + 1.5e-10), index_by_definition(expected, x + 1.5e-10));
        }
    }
}

TEST(LossGrid, the_first_of_near_values_stays) {
    LossGrid grid(100);
    grid.set_axis_count(1);
    for (const double x : {1.0 + 5e-11, 1.0, 1.0 + 1.2e-10, 1.0 - 4e-11}) {
        grid.add_point(&x);
    }
    grid.sort();
    // 1.0 and 1 + 1.2e-10 lie near the first; 1 - 4e-11 lies 9e-11 from it.
    EXPECT_EQ(grid.axis(0), std::vector<double>{1.0 + 5e-11});
}

TEST(LossGrid, minus_zero_and_zero_are_one) {
    LossGrid grid(100);
    grid.set_axis_count(1);
    for (const double x : {-0.0, 0.0}) {
        grid.add_point(&x);
    }
    grid.sort();
    ASSERT_EQ(grid.axis(0).size(), 1U);
    EXPECT_TRUE(std::signbit(grid.axis(0)[0]));
}

TEST(LossGrid, full_when_the_product_is_the_number_of_points) {
    LossGrid grid(100);
    grid.set_axis_count(2);
    EXPECT_FALSE(grid.is_full());
    // After 1 and 2 points of one line, after 4 of two lines and after all 6 of three.
    const bool full[] = {true, true, false, true, false, true};
    for (const double x : {0.0, 1.0, 2.0}) {
        for (const double y : {0.0, 1.0}) {
            const double point[2] = {x, y};
            grid.add_point(point);
            EXPECT_EQ(grid.is_full(), full[grid.point_count() - 1]) << grid.point_count();
        }
    }
    EXPECT_EQ(grid.point_count(), 6);
}

TEST(LossGrid, coordinates_that_are_no_finite_number_are_told) {
    for (const double x : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity()}) {
        LossGrid grid(100);
        grid.set_axis_count(1);
        grid.add_point(&x);
        EXPECT_TRUE(grid.is_full());
        EXPECT_FALSE(grid.is_finite());
        grid.add_point(&x);  // not near to itself: another value
        EXPECT_TRUE(grid.is_full());
        grid.sort();
        EXPECT_EQ(grid.index_of(0, x), -1);
    }
}

TEST(LossGrid, axes_of_more_points_than_a_file_has_stop_growing) {
    LossGrid grid(1000);
    grid.set_axis_count(5);
    for (int i = 0; i < 1000; ++i) {
        const double x = i;
        const double point[5] = {x, x, x, x, x};
        grid.add_point(point);
    }
    EXPECT_FALSE(grid.is_full());
    grid.sort();
    EXPECT_EQ(grid.axis(0).size(), 4U);  // 4^5 = 1024 is the first product beyond 1000
}

}  // namespace
