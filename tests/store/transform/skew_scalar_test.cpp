// Skew of the scalars of an LdLq model: the mean of the cosines of the displacements, by hand.
#include <gtest/gtest.h>

#include "skewed_store.h"
#include "store/transform/skew.h"

namespace {

using namespace synthetic;

TEST_F(SkewTables, ldlq_skews_inductances_along_the_phase_and_the_scalars) {
    make_table(store, "dq_inductance", "d_inductance", {turn, {0, 1}}, {1, 0},
               [](const Point& x) { return cosd(x[0]); });
    make_table(store, "dq_inductance", "q_inductance", {turn, {0, 1}}, {1, 0},
               [](const Point& x) { return 3 * cosd(x[0]); });
    kzb::put_double(store, "d_flux", "d_flux", 0.5);
    kzb::put_double(store, "information", "magflux", 2.0);
    EXPECT_EQ(apply(3, 6.0, 4), 0);
    EXPECT_NEAR(value(store, "dq_inductance", "q_inductance", {60, 0}), 1.5 * mean_cosine({-6, -2, 2, 6}, false),
                1e-14);
    // M = 4 / 2 samples: 4 steps in 2 samples are 0 and 2, displacements -3 and -3 + 2 * 2 = 1; 2 pole pairs.
    const double factor = 0.5 * (cosd(-6) + cosd(2));
    EXPECT_NEAR(kzb::get_double(store, "d_flux", "d_flux"), 0.5 * factor, 1e-15);
    EXPECT_NEAR(kzb::get_double(store, "information", "magflux"), 2.0 * factor, 1e-15);
    EXPECT_EQ(kzb::get_double(store, "d_flux", "d_flux_org"), 0.5);
    EXPECT_EQ(kzb::get_double(store, "information", "magflux_org"), 2.0);
}

class SkewScalar : public SkewTables {};

TEST_F(SkewScalar, continuous_side_takes_six_samples) {
    kzb::put_double(store, "d_flux", "d_flux", 2.0);
    EXPECT_EQ(kzb::skew_scalar(store, "d_flux", "d_flux", {{2, 10.0, 0}, {0, 0, 0}}), 0);
    // Positions -5, -3, -1, 1, 3, 5 times 2 pole pairs.
    EXPECT_NEAR(kzb::get_double(store, "d_flux", "d_flux"), 2 * mean_cosine({-10, -6, -2, 2, 6, 10}, true), 1e-15);
}

TEST_F(SkewScalar, two_and_three_samples_use_the_first_cosine_and_an_odd_count_adds_a_share) {
    kzb::put_double(store, "d_flux", "d_flux", 2.0);
    EXPECT_EQ(kzb::skew_scalar(store, "d_flux", "d_flux", {{3, 10.0, 2}, {0, 0, 0}}), 0);
    EXPECT_NEAR(kzb::get_double(store, "d_flux", "d_flux"), 2 * cosd(-10), 1e-15);
    EXPECT_EQ(kzb::skew_scalar(store, "d_flux", "d_flux", {{3, 10.0, 3}, {0, 0, 0}}), 0);
    EXPECT_NEAR(kzb::get_double(store, "d_flux", "d_flux"), 2 * cosd(-10) + 2.0 / 3, 1e-15);
}

// 5 steps, M = 2: s * 5 / 2 is 0 and 2; spacing 10 / 4.
TEST_F(SkewScalar, five_steps) {
    kzb::put_double(store, "d_flux", "d_flux", 2.0);
    kzb::skew_scalar(store, "d_flux", "d_flux", {{0, 0, 0}, {3, 10.0, 5}});
    EXPECT_NEAR(kzb::get_double(store, "d_flux", "d_flux"), 0.5 * (cosd(10) + cosd(0)) * 2 + 2.0 / 5, 1e-15);
}

TEST_F(SkewScalar, below_two_samples_the_value_stands_and_is_kept) {
    kzb::put_double(store, "d_flux", "d_flux", 2.0);
    EXPECT_EQ(kzb::skew_scalar(store, "d_flux", "d_flux", {{3, 10.0, 1}, {0, 0, 0}}), 1);
    EXPECT_EQ(kzb::get_double(store, "d_flux", "d_flux"), 2.0);
    ASSERT_TRUE(kzb::has_parameter(store, "d_flux", "d_flux_org"));
    EXPECT_EQ(kzb::get_double(store, "d_flux", "d_flux_org"), 2.0);
}

TEST_F(SkewScalar, without_scalars_the_result_is_one) {
    make_table(store, "dq_inductance", "d_inductance", {turn, {0, 1}}, {1, 0},
               [](const Point& x) { return cosd(x[0]); });
    EXPECT_EQ(apply(3, 6.0, 4), 1);
    EXPECT_FALSE(kzb::has_parameter(store, "d_flux", "d_flux_org"));
}

// Read as a double it is absent, 0.0: so are the kept and the skewed value, both doubles beside the int.
TEST_F(SkewScalar, an_int_of_that_name_is_present_and_reads_zero) {
    make_table(store, "dq_inductance", "d_inductance", {turn, {0, 1}}, {1, 0},
               [](const Point& x) { return cosd(x[0]); });
    kzb::put_int(store, "d_flux", "d_flux", 7);
    EXPECT_EQ(apply(3, 6.0, 4), 0);
    const KZB_CATEGORY* category = kzb::find_category(store, "d_flux");
    EXPECT_EQ(kzb::get_int(store, "d_flux", "d_flux"), 7);
    ASSERT_NE(category->doubles.find("d_flux_org"), nullptr);
    ASSERT_NE(category->doubles.find("d_flux"), nullptr);
    EXPECT_EQ(category->doubles.find("d_flux_org")->value, 0.0);
    EXPECT_EQ(category->doubles.find("d_flux")->value, 0.0);
}

TEST_F(SkewScalar, the_kept_value_is_written_once) {
    kzb::put_double(store, "d_flux", "d_flux", 2.0);
    kzb::skew_scalar(store, "d_flux", "d_flux", {{3, 10.0, 2}, {0, 0, 0}});
    kzb::skew_scalar(store, "d_flux", "d_flux", {{3, 20.0, 2}, {0, 0, 0}});
    EXPECT_EQ(kzb::get_double(store, "d_flux", "d_flux_org"), 2.0);
    EXPECT_NEAR(kzb::get_double(store, "d_flux", "d_flux"), 2 * cosd(-20), 1e-15);
}

}  // namespace
