#include <gtest/gtest.h>

#include "pmsm_files.h"

namespace kzb_test::pmsm_bind_test {
namespace {

using kzb::Calc_Eq;

TEST(pmsm_bind, reset_state_is_the_established_one) {
    const Calc_Eq model;
    EXPECT_EQ(model.state().step_count, 1);
    EXPECT_EQ(model.connection(), -1);
    EXPECT_EQ(model.application(), 0);
    EXPECT_EQ(model.own_coil_temperature(), 293.15);
    EXPECT_EQ(model.own_base_coil_temperature(), 293.15);
    EXPECT_EQ(model.own_magnet_temperature(), 293.15);
    EXPECT_EQ(model.own_base_magnet_temperature(), 293.15);
    EXPECT_EQ(model.own_coil_coefficient(), 1.0);
    EXPECT_EQ(model.own_magnet_coefficient(), 1.0);
    EXPECT_EQ(model.corrections().correction_flux, 1.0);
    EXPECT_EQ(model.corrections().turns1, 0.0);
    EXPECT_FALSE(model.ironloss_on());
    EXPECT_FALSE(model.user_copperloss_on());
}

TEST(pmsm_bind, harmonic_takes_its_torque_table_or_the_older_one) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    EXPECT_EQ(model.machine().torque_category, "harmonic_torque");
    EXPECT_EQ(model.machine().torque_dim, 3);
    EXPECT_EQ(model.machine().inductance_dim, 4);

    KZB_STORE older;
    harmonic_file(older, {.by_phase_currents = true, .torque_category = "pmsm_torque"});
    Calc_Eq second;
    bind(second, older, kzb::harmonic);
    EXPECT_EQ(second.machine().torque_category, "pmsm_torque");
    EXPECT_EQ(second.machine().torque_dim, 4);
    EXPECT_EQ(second.machine().inductance_dim, 5);
}

TEST(pmsm_bind, simple_harmonic_reads_dimensions_and_smallest_current) {
    KZB_STORE store;
    basics(store);
    constant(store, "mag_flux", "flux", {nodes(0, 180, 3, true), components(3)}, 0.1);
    constant(store, "inductance", "inductance", {nodes(2, 10, 3), nodes(0, 180, 3, true), components(9)}, 0.1);
    constant(store, "torque", "torque_ibeta", {nodes(-180, 180, 3), nodes(0, 180, 3), nodes(0, 10, 3)}, 0.1);
    Calc_Eq model;
    bind(model, store, kzb::simple_harmonic);
    EXPECT_EQ(model.machine().torque_category, "torque");
    EXPECT_EQ(model.machine().torque_dim, 3);
    EXPECT_EQ(model.machine().inductance_dim, 3);
    EXPECT_EQ(model.machine().minimum_current, 2.0);
}

TEST(pmsm_bind, linear_machine_reports_kind_0_whatever_it_was_told) {
    for (const int kind : {0, 1, 2, 3}) {
        KZB_STORE store;
        basics(store, {.motor_type = 10005, .beta_zero = 90.0});
        kzb::put_double(store, "control", "electrical_length", 0.08);
        kzb::put_double(store, "parameter", "leakage_inductance_u", 0.5);
        constant(store, "mag_flux", "flux", {nodes(0, 0.08, 3, true), components(3)}, 0.1);
        constant(store, "inductance", "inductance", {nodes(2, 10, 3), nodes(0, 0.08, 3, true), components(9)}, 0.1);
        constant(store, "distance_force", "force", {nodes(-180, 180, 3), nodes(0, 0.08, 3), nodes(0, 10, 3)}, 0.1);
        Calc_Eq model;
        bind(model, store, kind);
        EXPECT_EQ(model.application(), 0);
        EXPECT_EQ(model.machine().torque_category, "distance_force");
        EXPECT_EQ(model.machine().torque_dim, 3);
        EXPECT_EQ(model.machine().is_linear, 1);
        EXPECT_DOUBLE_EQ(model.machine().angle_offset, 0.02);  // 90 / 360 * 0.08
        EXPECT_EQ(model.machine().leakage_inductance, kzb::Phases{});
    }
}

TEST(pmsm_bind, flux_integral_takes_its_dimension_from_the_current_table) {
    for (const int dim : {3, 4}) {
        KZB_STORE store;
        basics(store);
        std::vector<Axis> axes(static_cast<std::size_t>(dim), nodes(-1, 1, 3));
        constant(store, "current_table", "id", axes, 0.0);
        constant(store, "flux_table", "fd_noload", {nodes(0, 360, 3)}, 0.0);
        constant(store, "harmonic_torque", "torque_ibeta", {nodes(0, 1, 2), nodes(0, 1, 2), nodes(0, 1, 2)}, 0.0);
        Calc_Eq model;
        bind(model, store, kzb::flux_integral);
        EXPECT_EQ(model.machine().inductance_dim, dim + 1);
        EXPECT_EQ(model.machine().torque_dim, 3);
    }
}

TEST(pmsm_bind, turns_become_ratios) {
    struct Case {
        double in_coil, turns1, turns2, ratio1, ratio2;
    };
    for (const Case& c : {Case{0.0, 20.0, 30.0, 1.0, 1.0},  // no turns in the file: 1 whatever was set
                          Case{35.0, 0.0, 70.0, 1.0, 2.0},  // unset turns: 1, not 0
                          Case{10.0, 15.0, 0.0, 1.5, 1.0}}) {
        KZB_STORE store;
        ld_lq_file(store);
        kzb::put_double(store, "control", "turns_in_coil", c.in_coil);
        Calc_Eq model;
        model.set_turns1(c.turns1);
        model.set_turns2(c.turns2);
        bind(model, store, kzb::ld_lq);
        EXPECT_EQ(model.corrections().turns1, c.ratio1);
        EXPECT_EQ(model.corrections().turns2, c.ratio2);
    }
}

TEST(pmsm_bind, connection_comes_from_the_caller_then_control_then_settings) {
    KZB_STORE store;
    ld_lq_file(store, {}, {.connection = 1});
    Calc_Eq by_file;
    bind(by_file, store, kzb::ld_lq);
    EXPECT_EQ(by_file.connection(), 1);

    Calc_Eq by_caller;
    by_caller.set_connection(0);
    bind(by_caller, store, kzb::ld_lq);
    EXPECT_EQ(by_caller.connection(), 0);

    KZB_STORE old;
    kzb::put_int(old, "control", "motor_type", 10000);
    kzb::put_int(old, "settings", "Winding_Pattern_Flag", 1);
    Calc_Eq by_settings;
    bind(by_settings, old, kzb::ld_lq);
    EXPECT_EQ(by_settings.connection(), 1);
}

TEST(pmsm_bind, resistance_of_the_caller_wins_over_the_file) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq by_file;
    bind(by_file, store, kzb::ld_lq);
    EXPECT_EQ(by_file.resistance(1), 0.5);
    Calc_Eq by_caller;
    by_caller.set_resistance_base(0.8);
    bind(by_caller, store, kzb::ld_lq);
    for (const int phase : {1, 2, 3}) {
        EXPECT_EQ(by_caller.resistance(phase), 0.8);
    }
    EXPECT_EQ(by_caller.resistance(0), 0.0);
    EXPECT_EQ(by_caller.resistance(4), 0.0);
}

TEST(pmsm_bind, geometry_of_a_rotary_machine) {
    KZB_STORE store;
    ld_lq_file(store, {}, {.poles = 8, .beta_zero = 30.0});
    kzb::put_double(store, "parameter", "leakage_inductance_u", 0.1);
    kzb::put_double(store, "parameter", "leakage_inductance_v", 0.2);
    kzb::put_double(store, "parameter", "leakage_inductance_w", 0.3);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    EXPECT_EQ(model.machine().angle_offset, 7.5);  // 2 * 30 / 8
    EXPECT_EQ(model.machine().leakage_inductance, (kzb::Phases{0.1, 0.2, 0.3}));
    EXPECT_EQ(model.machine().d_flux, 0.15);
}

TEST(pmsm_bind, iron_loss_needs_the_flag_and_data) {
    struct Case {
        const char* category;
        int flag;
        int old_method;
        bool on;
    };
    for (const Case& c : {Case{"hysloss", 1, 0, true}, Case{"eddyloss", 1, 1, true}, Case{"loss_table", 1, 0, true},
                          Case{"loss_table", 1, 1, false}, Case{"hysloss", 0, 0, false}, Case{"other", 1, 0, false}}) {
        KZB_STORE store;
        ld_lq_file(store);
        kzb::require_category(store, c.category);
        Calc_Eq model;
        model.set_use_old_ironloss(c.old_method);
        bind(model, store, kzb::ld_lq, c.flag);
        EXPECT_EQ(model.ironloss_on(), c.on) << c.category;
    }
}

// Skew by two steps 2 * 10 degrees apart scales the magnet flux of an LdLq file by cos(pole pairs * 10 degrees): the
// scalar rule takes N / 2 = 1 sample of 2 at -10 degrees.
TEST(pmsm_bind, skew_is_applied_and_the_magnet_flux_read_again) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    model.set_skew({3, 0, 20.0, 0.0, 2, 0});
    bind(model, store, kzb::ld_lq);
    EXPECT_NE(model.machine().d_flux, 0.15);
    EXPECT_EQ(model.machine().d_flux, kzb::get_double(store, "d_flux", "d_flux"));
    EXPECT_NEAR(model.machine().d_flux, 0.15 * std::cos(2.0 * 10.0 * pi / 180.0), 1e-15);
}

}  // namespace
}  // namespace kzb_test::pmsm_bind_test
