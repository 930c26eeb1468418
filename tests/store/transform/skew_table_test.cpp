// Skew of tables: a pure cosine against the mean of cosines at the slices.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "skewed_store.h"

namespace {

using namespace synthetic;

// The mean of cos(x + d) over symmetric d is cos(x) times the mean of cos(d).
TEST_F(SkewTables, stepped_skew_of_a_cosine_is_the_plain_mean) {
    make_harmonic();
    make_table(store, "harmonic_torque", "torque_ibeta", {turn, {0, 90}, {0, 1}}, {1, 1, 0},
               [](const Point& x) { return (1 + x[2]) * cosd(x[0]); });
    make_table(store, "current_flux", "mag_flux", {turn, {0, 1, 2}}, {1, 0},
               [](const Point& x) { return cosd(x[0] - 120 * x[1]); });
    EXPECT_EQ(apply(3, 6.0, 4), 0);
    // Slices at -3, -1, 1, 3 mechanical degrees: the phase moves by twice that, the position as it is.
    const double by_phase = mean_cosine({-6, -2, 2, 6}, false);
    const double by_position = mean_cosine({-3, -1, 1, 3}, false);
    for (int i = 0; i <= 360; i += 15) {
        EXPECT_NEAR(value(store, "harmonic_torque", "torque_ibeta", {i, 1, 1}), 2 * cosd(i) * by_phase, 1e-14);
        EXPECT_NEAR(value(store, "current_flux", "mag_flux", {i, 2}), cosd(i - 240) * by_position, 1e-14);
    }
    EXPECT_EQ(store.error, 0);
}

// 12 samples 1 degree apart from -5.5 to 5.5, on a grid of half degrees.
TEST_F(SkewTables, continuous_skew_is_the_trapezoid_mean) {
    make_harmonic();
    make_table(store, "current_flux", "flux", {{0, 1}, range(0, 0.5, 360), {0, 180}, {0, 1, 2}}, {0, 1, 1, 0},
               [](const Point& x) { return cosd(x[1]) + x[0]; });
    make_table(store, "current_flux", "mag_flux", {range(0, 0.5, 360)}, {1}, [](const Point& x) { return cosd(x[0]); });
    EXPECT_EQ(apply(1, 11.0, 0), 0);
    std::vector<double> position = range(-5.5, 1, 5.5);
    std::vector<double> phase = range(-11, 2, 11);
    for (int i = 0; i <= 720; i += 40) {
        EXPECT_NEAR(value(store, "current_flux", "mag_flux", {i}), cosd(i * 0.5) * mean_cosine(position, true), 1e-13);
        EXPECT_NEAR(value(store, "current_flux", "flux", {1, i, 0, 2}), cosd(i * 0.5) * mean_cosine(phase, true) + 1,
                    1e-13);
    }
}

// Of phase + 2 position, with 2 pole pairs, nothing is averaged away; the square would show any spread.
TEST_F(SkewTables, phase_moves_against_the_position_by_the_pole_pairs) {
    make_harmonic();
    make_table(store, "harmonic_inductance", "inductance", {{0}, range(-100, 1, 100), range(-50, 1, 50), {0}},
               {0, 0, 0, 0}, [](const Point& x) { return (x[1] + 2 * x[2]) * (x[1] + 2 * x[2]); });
    make_table(store, "current_flux", "mag_flux", {{0}}, {0}, [](const Point&) { return 1; });
    apply(3, 6.0, 4);
    EXPECT_EQ(value(store, "harmonic_inductance", "inductance", {0, 100 + 7, 50 + 5, 0}), 17 * 17);
}

TEST_F(SkewTables, a_second_skew_starts_from_the_unskewed_table) {
    make_harmonic();
    const Function f = [](const Point& x) { return cosd(x[0]); };
    make_table(store, "current_flux", "mag_flux", {turn}, {1}, f);
    apply(3, 40.0, 3);
    EXPECT_NEAR(value(store, "current_flux", "mag_flux", {0}), mean_cosine({-20, 0, 20}, false), 1e-15);
    apply(3, 6.0, 4);
    EXPECT_NEAR(value(store, "current_flux", "mag_flux", {0}), mean_cosine({-3, -1, 1, 3}, false), 1e-15);
    // The kept table is an ordinary one, with grid and flag.
    EXPECT_EQ(nodes(store, "current_flux", "mag_flux_org", 1), turn);
    EXPECT_EQ(cyclic_flags(store, "current_flux", "mag_flux_org"), std::vector<int>{1});
    EXPECT_EQ(value(store, "current_flux", "mag_flux_org", {60}), cosd(60));
}

TEST_F(SkewTables, below_two_samples_nothing_is_done_or_kept) {
    make_harmonic();
    make_table(store, "current_flux", "mag_flux", {turn}, {1}, [](const Point& x) { return cosd(x[0]); });
    EXPECT_EQ(apply(0, 6.0, 4), 1);
    EXPECT_EQ(apply(3, 6.0, 1), 1);
    EXPECT_EQ(apply(3, 6.0, -7), 1);
    EXPECT_FALSE(kzb::has_parameter(store, "current_flux", "mag_flux_org"));
}

TEST_F(SkewTables, an_absent_table_leaves_an_empty_copy) {
    make_harmonic();
    EXPECT_EQ(apply(3, 6.0, 4), 1);
    ASSERT_TRUE(kzb::has_parameter(store, "harmonic_torque", "torque_ibeta_org"));
    EXPECT_EQ(kzb::table_dim(store, "harmonic_torque", "torque_ibeta_org"), 0);
    EXPECT_FALSE(kzb::has_parameter(store, "harmonic_torque", "torque_ibeta"));
    EXPECT_EQ(apply(3, 6.0, 4), 1);
}

TEST_F(SkewTables, the_result_is_that_of_the_last_table) {
    make_harmonic();
    make_table(store, "harmonic_torque", "torque_ibeta", {turn, {0, 90}, {0, 1}}, {1, 1, 0},
               [](const Point&) { return 1; });
    EXPECT_EQ(apply(3, 6.0, 4), 1);
    kzb::delete_table(store, "current_flux", "mag_flux_org");
    make_table(store, "current_flux", "mag_flux", {turn}, {1}, [](const Point&) { return 1; });
    EXPECT_EQ(apply(3, 6.0, 4), 0);
}

TEST_F(SkewTables, every_sample_counts_as_one_lookup) {
    make_harmonic();
    make_table(store, "current_flux", "mag_flux", {turn}, {1}, [](const Point&) { return 1; });
    apply(3, 6.0, 4);
    // 361 points, 4 samples, one segment each.
    EXPECT_EQ(store.timing[kzb::slot_linear_calls], 361 * 4);
}

TEST_F(SkewTables, a_coordinate_out_of_range_is_recorded) {
    make_harmonic();
    make_table(store, "current_flux", "mag_flux", {{0, 10}}, {0}, [](const Point& x) { return x[0]; });
    EXPECT_EQ(apply(3, 6.0, 2), 0);
    EXPECT_EQ(store.error, 80002);
    // Slices at 7 and 13: the latter gives the edge.
    EXPECT_NEAR(value(store, "current_flux", "mag_flux", {1}), 8.5, 1e-14);
}

// The sum of two largest doubles is infinite.
TEST_F(SkewTables, an_unknown_method_has_no_value) {
    make_harmonic();
    make_table(store, "current_flux", "mag_flux", {{0, 10}}, {0}, [](const Point& x) { return x[0]; });
    EXPECT_EQ(apply(3, 6.0, 2, "linear"), 0);
    EXPECT_EQ(value(store, "current_flux", "mag_flux", {0}), std::numeric_limits<double>::infinity());
    EXPECT_EQ(store.error, 0);
}

TEST_F(SkewTables, a_table_whose_shape_has_changed_since_is_written_within_its_bounds) {
    make_harmonic();
    make_table(store, "current_flux", "mag_flux", {{0, 10}, {0, 1}}, {0, 0}, [](const Point&) { return 1; });
    apply(3, 6.0, 2);
    make_table(store, "current_flux", "mag_flux", {{0}, {0}, {0}}, {0, 0, 0}, [](const Point&) { return 5; });
    EXPECT_EQ(apply(3, 6.0, 2), 0);
    EXPECT_EQ(value(store, "current_flux", "mag_flux", {0, 0, 0}), 1);
    kzb::delete_table(store, "current_flux", "mag_flux");
    EXPECT_EQ(apply(3, 6.0, 2), 0);
    EXPECT_FALSE(kzb::has_parameter(store, "current_flux", "mag_flux"));
}

TEST_F(SkewTables, axes_that_a_table_lacks_are_not_displaced) {
    make_harmonic();
    make_table(store, "harmonic_inductance", "inductance", {{0, 10}}, {0}, [](const Point& x) { return x[0]; });
    apply(3, 6.0, 2);
    EXPECT_EQ(value(store, "harmonic_inductance", "inductance", {1}), 10);
}

// The kept copy has the nodes as they were read; the cyclic flag must not make the lookups run on.
TEST_F(SkewTables, an_absent_grid_is_kept_as_one_without_value) {
    for (const int cyclic : {0, 1}) {
        KZB_STORE other;
        fill_control(other, 10000, 4, 0.0);
        kzb::require_category(other, "harmonic_inductance");
        kzb::require_category(other, "harmonic_torque");
        const int sizes[] = {2};
        kzb::create_table(other, "current_flux", "mag_flux", 1, sizes);
        kzb::table_set_cyclic_flag(kzb::find_table(other, "current_flux", "mag_flux"), 1, cyclic);
        EXPECT_EQ(kzb::apply_skew(3, 0, 6.0, 0.0, 2, 0, "Linear", other), 0);
        ASSERT_TRUE(kzb::find_table(other, "current_flux", "mag_flux_org")->axes[0]);
        EXPECT_EQ(nodes(other, "current_flux", "mag_flux_org", 1),
                  (std::vector<double>{kzb::KZB_NO_VALUE, kzb::KZB_NO_VALUE}));
        EXPECT_NE(other.error, 0);
    }
}

// Slices at a: -3, 0, 3 and b: -1, 0, 1, so displacements -2, 0, 2; the square at 0 gives 4, 0, 4. Trapezoid:
// (2 + 2) / 2 = 2; the plain mean would be 8 / 3.
TEST_F(SkewTables, two_stepped_sides_of_equal_steps_take_the_trapezoid_mean) {
    make_harmonic();
    make_table(store, "current_flux", "mag_flux", {range(-10, 1, 10)}, {0}, [](const Point& x) { return x[0] * x[0]; });
    EXPECT_EQ(kzb::apply_skew(3, 3, 6.0, 2.0, 3, 3, "Linear", store), 0);
    EXPECT_EQ(value(store, "current_flux", "mag_flux", {10}), 2);
}

TEST_F(SkewTables, the_same_skew_again_gives_the_same_bits) {
    make_harmonic();
    make_table(store, "current_flux", "mag_flux", {turn}, {1}, [](const Point& x) { return 0.1 + cosd(x[0]); });
    const auto values = [&] {
        const kzb::ZeroedArray& array = kzb::find_table(store, "current_flux", "mag_flux")->values;
        return std::vector<double>(array.data(), array.data() + array.size());
    };
    apply(1, 7.3, 0);
    const std::vector<double> first = values();
    apply(3, 40.0, 3);
    EXPECT_NE(values(), first);
    apply(1, 7.3, 0);
    const std::vector<double> again = values();
    ASSERT_EQ(again.size(), turn.size());
    EXPECT_EQ(std::memcmp(again.data(), first.data(), first.size() * sizeof(double)), 0);
}

}  // namespace
