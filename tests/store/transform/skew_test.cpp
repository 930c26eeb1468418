// Skew: sample counts and positions by hand, tables of a pure cosine against the mean of cosines at the slices.
#include "store/transform/skew.h"

#include <gtest/gtest.h>

#include "store/transform/transforms.h"
#include "synthetic_store.h"

namespace {

using namespace synthetic;
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

class SkewTables : public testing::Test {
  protected:
    SkewTables() { fill_control(store, 10000, 5, 0.0); }  // 5 poles: 2 pole pairs in integers

    void make_harmonic() {
        kzb::require_category(store, "harmonic_inductance");
        kzb::require_category(store, "current_flux");
        kzb::require_category(store, "harmonic_torque");
    }
    int apply(int type, double angle, int steps, const char* method = "Linear") {
        return kzb::apply_skew(type, 0, angle, 0.0, steps, 0, method, store);
    }
    static double mean_cosine(const std::vector<double>& degrees, bool trapezoid) {
        double sum = 0;
        for (std::size_t s = 0; s < degrees.size(); ++s) {
            const bool end = s == 0 || s + 1 == degrees.size();
            sum += (trapezoid && end ? 0.5 : 1.0) * cosd(degrees[s]);
        }
        return sum / static_cast<double>(degrees.size() - (trapezoid ? 1 : 0));
    }

    KZB_STORE store;
    const std::vector<double> turn = range(0, 1, 360);
};

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
    for (const char* method : {"linear", static_cast<const char*>(nullptr)}) {
        KZB_STORE other;
        fill_control(other, 10000, 4, 0.0);
        kzb::require_category(other, "harmonic_inductance");
        kzb::require_category(other, "harmonic_torque");
        make_table(other, "current_flux", "mag_flux", {{0, 10}}, {0}, [](const Point& x) { return x[0]; });
        EXPECT_EQ(kzb::apply_skew(3, 0, 6.0, 0.0, 2, 0, method, other), 0);
        EXPECT_EQ(value(other, "current_flux", "mag_flux", {0}), std::numeric_limits<double>::infinity());
        EXPECT_EQ(other.error, 0);
    }
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

TEST_F(SkewTables, axes_that_a_table_lacks_and_grids_that_are_absent_are_safe) {
    make_harmonic();
    make_table(store, "harmonic_inductance", "inductance", {{0, 10}}, {0}, [](const Point& x) { return x[0]; });
    const int sizes[] = {2};
    kzb::create_table(store, "current_flux", "mag_flux", 1, sizes);
    EXPECT_EQ(apply(3, 6.0, 2), 0);
    EXPECT_EQ(value(store, "harmonic_inductance", "inductance", {1}), 10);
    EXPECT_TRUE(kzb::has_parameter(store, "current_flux", "mag_flux_org"));
    EXPECT_FALSE(kzb::find_table(store, "current_flux", "mag_flux_org")->axes[0]);
}

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

TEST_F(SkewScalar, below_two_samples_the_value_stands) {
    kzb::put_double(store, "d_flux", "d_flux", 2.0);
    EXPECT_EQ(kzb::skew_scalar(store, "d_flux", "d_flux", {{3, 10.0, 1}, {0, 0, 0}}), 1);
    EXPECT_EQ(kzb::get_double(store, "d_flux", "d_flux"), 2.0);
}

TEST_F(SkewScalar, without_scalars_the_result_is_one) {
    make_table(store, "dq_inductance", "d_inductance", {turn, {0, 1}}, {1, 0},
               [](const Point& x) { return cosd(x[0]); });
    make_table(store, "d_flux", "d_flux", {{0, 1}}, {0}, [](const Point&) { return 1; });
    EXPECT_EQ(apply(3, 6.0, 4), 1);
    // A table of that name is no scalar.
    EXPECT_FALSE(kzb::has_parameter(store, "d_flux", "d_flux_org"));
}

class SkewFluxIntegral : public SkewTables {
  protected:
    SkewFluxIntegral() {
        const std::vector<double> degrees = range(0, 0.5, 360);
        make_table(store, "flux_table", "fd_noload", {degrees}, {1}, [](const Point&) { return 0.4; });
        make_table(store, "flux_table", "fq_noload", {degrees}, {1}, [](const Point&) { return 0.1; });
        make_table(store, "flux_table", "f0_noload", {degrees}, {1}, [](const Point&) { return 0.0; });
        for (const char* key : {"id", "iq"}) {
            make_table(store, "current_table", key, {{-1, 1}, {-1, 1}, degrees}, {0, 0, 1},
                       [](const Point& x) { return x[0] + 2 * x[1]; });
        }
        make_table(store, "harmonic_torque", "torque_ibeta", {{0, 360}, {0, 360}, {0, 1}}, {1, 1, 0},
                   [](const Point&) { return 7; });
        kzb::put_int(store, "control", "number_of_poles", 4);
    }
};

TEST_F(SkewFluxIntegral, runs_only_under_all_or_the_exact_application) {
    const char* others[][2] = {
        {"PMSM", "FluxIntegral"}, {"PMSM", "Harmonic"}, {"WFSM", "FluxIntegralDQTheta"}, {"", ""}};
    for (const auto& other : others) {
        store.motor = other[0];
        store.application = other[1];
        EXPECT_EQ(apply(3, 6.0, 4), 1);
        EXPECT_FALSE(kzb::has_category(store, "current_flux"));
    }
    store.motor = "ALL";
    store.application = "";
    EXPECT_EQ(apply(3, 6.0, 4), 0);
    EXPECT_TRUE(kzb::has_parameter(store, "current_flux", "iuvw_org"));
}

// The winding sees a flux that turns: averaging over slices multiplies d and q by the mean cosine of 2 d.
TEST_F(SkewFluxIntegral, flux_and_current_shrink_by_the_mean_cosine) {
    store.motor = "PMSM";
    store.application = "FluxIntegralDQTheta";
    EXPECT_EQ(apply(3, 6.0, 4), 0);
    const double factor = mean_cosine({-6, -2, 2, 6}, false);
    for (int i = 0; i <= 720; i += 90) {
        EXPECT_NEAR(value(store, "flux_table", "fd_noload", {i}), 0.4 * factor, 1e-14);
        EXPECT_NEAR(value(store, "flux_table", "fq_noload", {i}), 0.1 * factor, 1e-14);
        EXPECT_NEAR(value(store, "current_table", "iq", {1, 0, i}), (1 - 2) * factor, 1e-14);
    }
    EXPECT_EQ(value(store, "harmonic_torque", "torque_ibeta", {0, 0, 0}), 7);
    // The no-load tables were taken out and made anew at the end of the list.
    EXPECT_EQ(kzb::find_category(store, "flux_table")->tables[0].keyword, "fd_noload");
    // f0_ibeta is absent: its kept copy is an empty table.
    EXPECT_EQ(kzb::table_dim(store, "flux_table", "f0_ibeta_org"), 0);
    EXPECT_TRUE(kzb::has_parameter(store, "flux_table", "f0_ibeta_org"));
    // Again, with another angle.
    EXPECT_EQ(apply(3, 12.0, 2), 0);
    EXPECT_NEAR(value(store, "flux_table", "fd_noload", {10}), 0.4 * cosd(12), 1e-14);
}

TEST(apply_skew, an_empty_store_gives_one) {
    KZB_STORE store;
    EXPECT_EQ(kzb::apply_skew(1, 1, 1.0, 1.0, 1, 1, "Linear", store), 1);
    EXPECT_TRUE(store.categories.empty());
}

}  // namespace
