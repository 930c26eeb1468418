// Sample counts and positions of a skew, by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "store/transform/skew.h"

namespace {

using kzb::Skew;

struct CountCase {
    int type_a, steps_a, type_b, steps_b, count;
};

TEST(skew_sample_count, follows_types_and_steps) {
    const CountCase cases[] = {
        {0, 9, 0, 9, 0},    {1, 0, 0, 0, 12},  {0, 0, 2, 0, 12},   {3, 4, 0, 0, 4},    {0, 0, 3, 5, 5},
        {3, 4, 3, 4, 4},    {3, 4, 3, 5, 12},  {3, 13, 3, 14, 14}, {3, 14, 3, 13, 14}, {3, 20, 1, 99, 20},
        {1, 99, 3, 13, 13}, {3, 30, 0, 0, 24}, {3, 30, 1, 0, 24},  {3, 1, 0, 0, 1},    {3, -5, 0, 0, -5},
        {3, -5, 2, 0, 12},  {7, 9, 0, 0, 0},   {7, 9, 3, 6, 6},    {1, 99, 2, 99, 12}, {3, 2147483647, 0, 0, 24},
    };
    for (const CountCase& c : cases) {
        const Skew skew{{c.type_a, 1.0, c.steps_a}, {c.type_b, 1.0, c.steps_b}};
        EXPECT_EQ(kzb::skew_sample_count(skew), c.count)
            << c.type_a << ' ' << c.steps_a << ' ' << c.type_b << ' ' << c.steps_b;
    }
}

TEST(skew_displacements, continuous_side_runs_from_minus_half_to_half_the_angle) {
    const std::vector<double> d = kzb::skew_displacements({{1, 6.0, 0}, {0, 0, 0}}, 4);
    EXPECT_EQ(d, (std::vector<double>{-3, -1, 1, 3}));
}

// 3 steps in 4 samples: s * 3 / 4 in integers is 0, 0, 1, 2; spacing 6 / 2.
TEST(skew_displacements, stepped_side_divides_in_integers) {
    const std::vector<double> d = kzb::skew_displacements({{3, 6.0, 3}, {0, 0, 0}}, 4);
    EXPECT_EQ(d, (std::vector<double>{-3, -3, 0, 3}));
}

TEST(skew_displacements, only_the_difference_of_the_sides_acts) {
    EXPECT_EQ(kzb::skew_displacements({{1, 6.0, 0}, {2, 6.0, 0}}, 3), (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(kzb::skew_displacements({{0, 9.0, 0}, {1, 6.0, 0}}, 2), (std::vector<double>{3, -3}));
}

TEST(skew_displacements, odd_counts_of_steps_are_safe) {
    // A single step has no spacing.
    EXPECT_TRUE(std::isnan(kzb::skew_displacements({{3, 6.0, 1}, {1, 6.0, 0}}, 12)[0]));
    EXPECT_EQ(kzb::skew_displacements({{3, 6.0, 2147483647}, {0, 0, 0}}, 24)[0], -3);
    EXPECT_EQ(kzb::skew_displacements({{3, 6.0, -2147483647 - 1}, {0, 0, 0}}, 12)[0], -3);
    EXPECT_TRUE(kzb::skew_displacements({{1, 6.0, 0}, {0, 0, 0}}, -3).empty());
}

}  // namespace
