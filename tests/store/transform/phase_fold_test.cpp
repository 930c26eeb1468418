// Lookups of compact tables, folded, against the function that has the symmetry, at all phases.
#include "store/transform/phase_fold.h"

#include <gtest/gtest.h>

#include <limits>

#include "symmetric_machine.h"

namespace {

using namespace synthetic;

class PhaseFolds : public testing::Test {
  protected:
    // Every 15 degrees of phase, three turns, and every 10 degrees of position, all at nodes of the compact table.
    void expect_function(const char* category, const char* key, int phase_axis, int position_axis, int components,
                         const Function& f) {
        const int dim = kzb::table_dim(store, category, key);
        for (double beta = -360; beta <= 720; beta += 15) {
            for (double position = 0; position <= 180; position += 10) {
                for (int c = 0; c < components; ++c) {
                    Point x(static_cast<std::size_t>(dim), 1.0);
                    x.back() = components > 1 ? c : 1.0;
                    x[static_cast<std::size_t>(phase_axis - 1)] = beta;
                    if (position_axis != 0) {
                        x[static_cast<std::size_t>(position_axis - 1)] = position;
                    }
                    ASSERT_NEAR(look_up(store, category, key, x), f(x), 1e-11)
                        << category << " beta " << beta << " position " << position << " component " << c;
                }
            }
        }
        EXPECT_EQ(store.error, 0);
    }
    Point folded(const char* category, const char* key, Point x, double* factor = nullptr) {
        const KZB_TABLE* table = kzb::find_table(store, category, key);
        const double found = kzb::fold_coordinates(kzb::phase_fold_of(store, category, key, table), *table, x.data());
        if (factor != nullptr) {
            *factor = found;
        }
        return x;
    }
    bool folds(const char* category, const char* key) {
        return kzb::phase_fold_of(store, category, key, kzb::find_table(store, category, key)).active;
    }

    SymmetricMachine machine;
    KZB_STORE store;
};

TEST_F(PhaseFolds, pmsm_flux) {
    machine.pmsm(store);
    expect_function("current_flux", "flux", 2, 3, 3, SymmetricMachine::flux3);
}

TEST_F(PhaseFolds, pmsm_inductance) {
    machine.pmsm(store);
    expect_function("harmonic_inductance", "inductance", 2, 3, 9, SymmetricMachine::inductance3);
}

TEST_F(PhaseFolds, pmsm_torque_changes_its_sign) {
    machine.pmsm(store);
    expect_function("harmonic_torque", "torque_ibeta", 1, 2, 1, SymmetricMachine::torque3);
}

TEST_F(PhaseFolds, pmsm_losses) {
    machine.pmsm(store);
    expect_function("hysloss", "hysloss7", 2, 0, 1, SymmetricMachine::loss3);
    expect_function("eddyloss", "eddyloss12", 2, 0, 1, SymmetricMachine::loss3);
}

TEST_F(PhaseFolds, wound_field_flux_inductance_torque_and_loss) {
    machine.wound_field(store);
    expect_function("current_flux", "flux", 2, 4, 3, SymmetricMachine::flux4);
    expect_function("harmonic_inductance", "inductance", 2, 4, 16, SymmetricMachine::inductance4);
    expect_function("harmonic_torque", "torque_ibeta", 2, 4, 1, SymmetricMachine::torque4);
    expect_function("hysloss", "hysloss3", 2, 0, 1, SymmetricMachine::loss4);
}

TEST_F(PhaseFolds, linear_force_and_attractive_force) {
    machine.linear(store);
    expect_function("distance_force", "force", 1, 2, 1, SymmetricMachine::force);
    expect_function("distance_force", "attractive_force", 1, 2, 1, SymmetricMachine::attraction);
}

TEST_F(PhaseFolds, at_180_degrees_the_phase_is_0_and_the_position_flips) {
    machine.pmsm(store);
    double factor = 0;
    const Point x = folded("harmonic_torque", "torque_ibeta", {180, 30, 1}, &factor);
    EXPECT_EQ(x[0], 0);
    // v = 30 + 40 / 2 = 50, 180 - 50 = 130, less 20.
    EXPECT_EQ(x[1], 110);
    EXPECT_EQ(factor, -1.0);
    EXPECT_EQ(folded("harmonic_torque", "torque_ibeta", {180 + 5e-11, 30, 1})[0], 0);
}

TEST_F(PhaseFolds, at_90_and_270_degrees_nothing_flips) {
    machine.pmsm(store);
    double factor = 0;
    Point x = folded("harmonic_torque", "torque_ibeta", {90, 30, 1}, &factor);
    EXPECT_EQ(x, (Point{90, 30, 1}));
    EXPECT_EQ(factor, 1.0);
    x = folded("harmonic_torque", "torque_ibeta", {270, 30, 1}, &factor);
    EXPECT_EQ(x, (Point{-90, 30, 1}));
    EXPECT_EQ(factor, 1.0);
}

TEST_F(PhaseFolds, just_inside_the_flipped_half) {
    machine.pmsm(store);
    EXPECT_NEAR(folded("harmonic_torque", "torque_ibeta", {91, 30, 1})[0], 89, 1e-12);
    EXPECT_NEAR(folded("harmonic_torque", "torque_ibeta", {181, 30, 1})[0], -1, 1e-12);
    EXPECT_NEAR(folded("harmonic_torque", "torque_ibeta", {269, 30, 1})[0], -89, 1e-12);
}

TEST_F(PhaseFolds, the_ends_of_the_position_period_change_places) {
    machine.pmsm(store);
    // v = 160 + 20 = 180 = P gives 0, less 20; v = -20 + 20 = 0 gives 180, less 20.
    EXPECT_EQ(folded("harmonic_torque", "torque_ibeta", {180, 160, 1})[1], -20);
    EXPECT_EQ(folded("harmonic_torque", "torque_ibeta", {180, -20, 1})[1], 160);
    // v = 170 + 20 = 190 is brought into the axis: 10, mirrored 170, less 20.
    EXPECT_EQ(folded("harmonic_torque", "torque_ibeta", {180, 170, 1})[1], 150);
}

// v = 0 + 20 = 20, mirrored 160, less 20; then the shift with 120 / pp = 60.
TEST_F(PhaseFolds, shifts_of_the_components) {
    machine.wound_field(store);
    const auto flux = [&](double n) { return folded("current_flux", "flux", {0, 180, 0, 0, n})[3]; };
    EXPECT_EQ(flux(0), 140);
    EXPECT_EQ(flux(2), 140 - 120);
    EXPECT_EQ(flux(2.9), 140 - 120);
    EXPECT_EQ(flux(3), 140);
    const auto inductance = [&](double n) { return folded("harmonic_inductance", "inductance", {0, 180, 0, 0, n})[3]; };
    EXPECT_EQ(inductance(5), 140 - 2.5 * 60);
    EXPECT_EQ(inductance(10), 140 - 5 * 60);
    // Row 3 and column 3: multiples of 120 that no pole pairs divide.
    EXPECT_EQ(inductance(12), 140);
    EXPECT_EQ(inductance(14), 140 - 240);
    EXPECT_EQ(inductance(15), 140 - 360);
    EXPECT_EQ(inductance(11), 140 - 240);
    EXPECT_EQ(inductance(16), 140);
}

TEST_F(PhaseFolds, coordinates_that_no_int_holds_shift_nothing) {
    machine.pmsm(store);
    for (const double n : {std::nan(""), 1e300, -1e300, 2147483648.0, std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(folded("current_flux", "flux", {0, 180, 0, n})[2], 140);
        EXPECT_EQ(folded("harmonic_inductance", "inductance", {0, 180, 0, n})[2], 140);
    }
    EXPECT_EQ(folded("current_flux", "flux", {0, 180, 0, 2147483647.0})[2], 140);
}

TEST_F(PhaseFolds, phases_without_a_place_end) {
    machine.pmsm(store);
    for (const double beta : {std::nan(""), 1e300, -1e300, std::numeric_limits<double>::infinity(), 5000.0}) {
        folded("harmonic_torque", "torque_ibeta", {beta, 0, 1});
        folded("harmonic_torque", "torque_ibeta", {180, beta, 1});
    }
    // 5000 - 10 * 360 = 1400 is beyond 270, so there is no flip; four turns less are on the axis.
    EXPECT_EQ(folded("harmonic_torque", "torque_ibeta", {5000, 30, 1}), (Point{-40, 30, 1}));
}

// Each pass adds a turn below the axis and then subtracts one above it, so a phase that fits nowhere ends below.
TEST_F(PhaseFolds, a_phase_axis_of_a_quarter_turn_sees_the_other_quarter_below_it) {
    machine.pmsm(store);
    make_table(store, "hysloss", "hysloss7", {{0, 1}, {0, 90}, {0, 1}}, {0, 0, 0}, [](const Point&) { return 1; });
    EXPECT_EQ(folded("hysloss", "hysloss7", {1, 300, 1}), (Point{1, -60, 1}));
}

TEST_F(PhaseFolds, the_rule_follows_the_store) {
    machine.pmsm(store);
    EXPECT_TRUE(folds("current_flux", "flux"));
    make_table(store, "current_flux", "flux_org", {{0}, {0}, {0}, {0}}, {0, 0, 0, 0}, [](const Point&) { return 1; });
    EXPECT_FALSE(folds("current_flux", "flux_org"));
    EXPECT_FALSE(folds("current_flux", "absent"));
    kzb::put_int(store, "control", "use_phase_symmetry", 0);
    EXPECT_FALSE(folds("current_flux", "flux"));
    kzb::put_int(store, "control", "use_phase_symmetry", -1);
    EXPECT_TRUE(folds("current_flux", "flux"));
    for (const int other : {10003, 10004, 10005, 10006, 10008, 10010}) {
        kzb::put_int(store, "control", "motor_type", other);
        EXPECT_FALSE(folds("current_flux", "flux"));
        EXPECT_FALSE(folds("hysloss", "hysloss7"));
    }
}

TEST_F(PhaseFolds, pmsm_needs_the_category_of_the_torque) {
    fill_control(store, 10000, 4, 0);
    kzb::put_int(store, "control", "use_phase_symmetry", 1);
    make_table(store, "current_flux", "flux", {{0}, {0}, {0}, {0}}, {0, 0, 0, 0}, [](const Point&) { return 1; });
    EXPECT_FALSE(folds("current_flux", "flux"));
    kzb::require_category(store, "harmonic_torque");
    EXPECT_TRUE(folds("current_flux", "flux"));
}

TEST_F(PhaseFolds, wound_field_folds_for_current_type_1_alone) {
    machine.wound_field(store);
    EXPECT_TRUE(folds("harmonic_torque", "torque_ibeta"));
    kzb::put_int(store, "control", "current_type", 0);
    EXPECT_FALSE(folds("harmonic_torque", "torque_ibeta"));
    EXPECT_FALSE(folds("hysloss", "hysloss3"));
}

TEST_F(PhaseFolds, a_force_table_of_other_than_three_axes_does_not_fold) {
    machine.linear(store);
    make_table(store, "distance_force", "force", {{0}, {0}, {0}, {0}}, {0, 0, 0, 0}, [](const Point&) { return 1; });
    EXPECT_FALSE(folds("distance_force", "force"));
    make_table(store, "distance_force", "force", {{0}, {0}}, {0, 0}, [](const Point&) { return 1; });
    EXPECT_FALSE(folds("distance_force", "force"));
    EXPECT_TRUE(folds("distance_force", "attractive_force"));
}

TEST_F(PhaseFolds, axes_that_a_table_lacks_do_not_fold) {
    machine.pmsm(store);
    make_table(store, "current_flux", "flux", {{0, 1}}, {0}, [](const Point&) { return 1; });
    EXPECT_FALSE(folds("current_flux", "flux"));
    make_table(store, "current_flux", "flux", {{0, 1}, machine.betas}, {0, 0}, [](const Point&) { return 1; });
    EXPECT_EQ(folded("current_flux", "flux", {1, 170}), (Point{1, 10}));
    const int sizes[] = {2, 3, 2};
    kzb::create_table(store, "harmonic_torque", "torque_ibeta", 3, sizes);
    EXPECT_EQ(folded("harmonic_torque", "torque_ibeta", {170, 0, 1}), (Point{10, 140, 1}));
}

TEST_F(PhaseFolds, without_poles_the_pole_pairs_count_as_one) {
    machine.pmsm(store);
    kzb::put_int(store, "control", "number_of_poles", 0);
    const KZB_TABLE* table = kzb::find_table(store, "harmonic_torque", "torque_ibeta");
    const kzb::PhaseFold fold = kzb::phase_fold_of(store, "harmonic_torque", "torque_ibeta", table);
    EXPECT_EQ(fold.pole_pairs, 1.0);
    EXPECT_EQ(fold.period, 360.0);
    EXPECT_EQ(fold.beta_zero, 40.0);
}

TEST_F(PhaseFolds, the_callers_coordinates_stay) {
    machine.pmsm(store);
    const double x[] = {170, 30, 1};
    kzb::TableRef table("harmonic_torque", "torque_ibeta");
    table.at(store, kzb::Method{}, x, 3);
    EXPECT_EQ(x[0], 170);
    EXPECT_EQ(x[1], 30);
}

}  // namespace
