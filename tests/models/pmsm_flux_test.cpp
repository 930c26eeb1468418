// Corrections, magnet flux and inductance of the permanent-magnet model.
#include <gtest/gtest.h>

#include "pmsm_files.h"

namespace kzb_test::pmsm_flux_test {
namespace {

using kzb::Calc_Eq;
using kzb::Phases;

// Current of amplitude a and phase beta (degrees) at electrical angle th.
Phases balanced(double a, double beta, double th) {
    Phases i;
    for (std::size_t k = 0; k < 3; ++k) {
        i[k] = -a * std::sin(th + beta * pi / 180.0 - static_cast<double>(k) * 2.0 * pi / 3.0);
    }
    return i;
}

void drive(Calc_Eq& model, const Phases& i, double position) {
    model.set_position(position);
    for (int k = 0; k < 3; ++k) {
        model.set_current(k + 1, i[static_cast<std::size_t>(k)]);
    }
    model.torque_from_currents();
}

double shape(double amplitude, double degrees, double element) {
    return (amplitude + 10.0 * element) * (2.0 + std::cos(2.0 * pi * degrees / 180.0));
}

// Period 180 degrees with four poles; nodes every 15 degrees, smallest amplitude 2 A.
void simple_file(KZB_STORE& store, const Basics& b = {}) {
    basics(store, b);
    const Axis turn = nodes(0.0, 180.0, 13, true);
    table(store, "mag_flux", "flux", {turn, components(3)},
          [](const std::vector<double>& x) { return 0.1 * std::cos(x[0] * 2.0 * pi / 180.0 - x[1] * 2.0 * pi / 3.0); });
    table(store, "inductance", "inductance", {nodes(2.0, 10.0, 5), turn, components(9)},
          [](const std::vector<double>& x) { return shape(x[0], x[1], x[2]); });
    constant(store, "torque", "torque_ibeta", {all_phases(), turn, nodes(0.0, 10.0, 2)}, 0.0);
}

TEST(pmsm_flux, multipliers_are_products_of_corrections_and_turns) {
    KZB_STORE store;
    ld_lq_file(store);
    kzb::put_double(store, "control", "turns_in_coil", 10.0);
    Calc_Eq model;
    model.set_turns1(20.0);
    model.set_correction_flux(1.1);
    model.set_correction_steel(1.2);
    model.set_correction_inductance(1.3);
    model.set_correction_torque(1.4);
    bind(model, store, kzb::ld_lq);
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_DOUBLE_EQ(model.corrections().flux_multiplier, 2.0 * 1.1 * 1.2);
    EXPECT_DOUBLE_EQ(model.corrections().inductance_multiplier, 1.2 * 1.3 * 4.0);
    EXPECT_EQ(model.corrections().torque_multiplier, 1.4);
    EXPECT_EQ(model.corrections().flux_multiplier_previous, model.corrections().flux_multiplier);
    EXPECT_EQ(model.corrections().inductance_multiplier_previous, model.corrections().inductance_multiplier);
}

TEST(pmsm_flux, correction_tables_replace_the_factors) {
    const std::vector<Axis> axes = {nodes(0, 100, 2), nodes(0, 360, 2)};
    KZB_STORE store;
    ld_lq_file(store);
    constant(store, "correction", "mag-flux", axes, 1.5);
    constant(store, "correction", "torque", axes, 1.7);
    Calc_Eq model;
    model.set_correction_inductance(1.25);
    bind(model, store, kzb::ld_lq);
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_EQ(model.corrections().correction_flux, 1.5);
    EXPECT_EQ(model.corrections().correction_inductance, 1.25);  // no table for it
    EXPECT_EQ(model.corrections().correction_torque, 1.7);

    constant(store, "correction", "total-flux", axes, 2.5);  // goes to both and shuts the others out
    constant(store, "correction", "inductance", axes, 3.5);
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_EQ(model.corrections().correction_flux, 2.5);
    EXPECT_EQ(model.corrections().correction_inductance, 2.5);
}

// The correction table tells beta itself; the flux table over beta does not see the wrapped angle.
TEST(pmsm_flux, negative_phase_is_wrapped_for_corrections_only) {
    KZB_STORE store;
    harmonic_file(store);
    table(store, "correction", "torque", {nodes(0, 100, 2), nodes(0, 360, 37)},
          [](const std::vector<double>& x) { return x[1]; });
    // Not cyclic, so that 350 degrees would read as the last node.
    table(store, "current_flux", "flux", {nodes(0, 100, 3), nodes(-180, 180, 9), nodes(0, 360, 5), components(3)},
          [](const std::vector<double>& x) { return x[1]; });
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    drive(model, balanced(10.0, -10.0, 0.0), 0.0);
    EXPECT_NEAR(model.corrections().correction_torque, 350.0, 1e-9);
    model.accept();
    sample(model, {}, 0.0, 0.1, false);
    EXPECT_NEAR(model.corrections().correction_torque, 350.0, 1e-9);
    EXPECT_NEAR(model.state().total_flux[0], -10.0, 1e-9);
}

TEST(pmsm_flux, simple_flux_follows_table_temperature_and_corrections) {
    KZB_STORE store;
    simple_file(store);
    Calc_Eq model;
    model.set_correction_flux(2.0);
    model.set_correction_magnet(0.5);
    model.set_own_magnet_temperature(393.15);
    bind(model, store, kzb::simple_harmonic);
    const double degrees = 30.0;  // a node: the spline passes through it
    sample(model, {}, degrees * pi / 180.0, 0.0, false);
    const double scale = 0.89 * 0.5;  // 100 K at -0.11 % per K, times the magnet correction
    for (std::size_t k = 0; k < 3; ++k) {
        const double p = 0.1 * std::cos(pi / 3.0 - static_cast<double>(k) * 2.0 * pi / 3.0);
        EXPECT_NEAR(model.state().magnet_flux[k], 2.0 * scale * p, 1e-12);
        EXPECT_NEAR(model.state().flux_temperature_delta[k], (scale - 1.0) * 2.0 * p, 1e-12);
        EXPECT_EQ(model.state().coil_flux[k], model.state().magnet_flux[k]);
    }
}

TEST(pmsm_flux, four_simple_tables_have_their_flux_elsewhere) {
    KZB_STORE store;
    simple_file(store);
    constant(store, "magflux", "magflux", {nodes(0, 180, 13, true), components(3)}, 0.7);
    Calc_Eq model;
    bind(model, store, kzb::simple_harmonic);
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_NEAR(model.state().magnet_flux[0], 0.1, 1e-12);
    kzb::put_int(store, "control", "number_of_tables", 4);
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_NEAR(model.state().magnet_flux[0], 0.7, 1e-12);
    kzb::put_int(store, "control", "accuracy_type", 2);
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_NEAR(model.state().magnet_flux[0], 0.1, 1e-12);
}

TEST(pmsm_flux, simple_inductance_at_no_current_is_the_mean_of_both_half_periods) {
    KZB_STORE store;
    simple_file(store);
    for (const double sign : {1.0, -1.0}) {
        Calc_Eq model;
        bind(model, store, kzb::simple_harmonic);
        model.set_initial_current(1, sign);  // its amplitude is not known before the first accepted step
        sample(model, {}, 30.0 * pi / 180.0, 0.0, false);
        for (int t = 0; t < 9; ++t) {
            const double expected = 0.5 * shape(2.0, 30.0, t) + 0.5 * shape(2.0, 120.0, t);
            EXPECT_NEAR(model.inductance(t % 3 + 1, t / 3 + 1), expected, 1e-11) << t;
        }
    }
}

TEST(pmsm_flux, simple_inductance_below_the_smallest_current_blends_by_the_columns_sign) {
    KZB_STORE store;
    simple_file(store);
    Calc_Eq model;
    bind(model, store, kzb::simple_harmonic);
    const Phases i = balanced(1.0, 20.0, 0.3);
    drive(model, i, 0.15);
    model.accept();
    sample(model, {}, 30.0 * pi / 180.0, 0.1, false);
    for (int t = 0; t < 9; ++t) {
        const double w = (2.0 + (i[static_cast<std::size_t>(t / 3)] < 0.0 ? -1.0 : 1.0)) / 4.0;
        const double expected = w * shape(2.0, 30.0, t) + (1.0 - w) * shape(2.0, 120.0, t);
        EXPECT_NEAR(model.inductance(t % 3 + 1, t / 3 + 1), expected, 1e-11) << t;
    }
}

TEST(pmsm_flux, simple_inductance_above_takes_the_half_period_of_the_columns_sign) {
    KZB_STORE store;
    simple_file(store);
    for (double th = 0.1; th < 6.3; th += 0.5) {  // every pattern of signs
        Calc_Eq model;
        bind(model, store, kzb::simple_harmonic);
        const Phases i = balanced(6.0, 0.0, th);
        drive(model, i, th / 2.0);
        model.accept();
        double calls = store.timing[kzb::slot_linear_calls];
        sample(model, {}, 30.0 * pi / 180.0, 0.1, false);
        calls = store.timing[kzb::slot_linear_calls] - calls;
        for (int t = 0; t < 9; ++t) {
            const double degrees = i[static_cast<std::size_t>(t / 3)] < 0.0 ? 120.0 : 30.0;
            EXPECT_NEAR(model.inductance(t % 3 + 1, t / 3 + 1), shape(6.0, degrees, t), 1e-10) << t;
        }
        // Nine inductances and one torque by "Linear", each lookup once: a lookup over three axes makes 4 + 2 + 1 calls
        // of the kernel.
        EXPECT_EQ(calls, 10.0 * 7.0);
    }
}

TEST(pmsm_flux, inductance_correction_acts_on_simple_tables_too) {
    KZB_STORE store;
    simple_file(store);
    Calc_Eq model;
    model.set_correction_inductance(3.0);
    bind(model, store, kzb::simple_harmonic);
    sample(model, {}, 30.0 * pi / 180.0, 0.0, false);
    EXPECT_NEAR(model.inductance(1, 1), 3.0 * 0.5 * (shape(2.0, 30.0, 0) + shape(2.0, 120.0, 0)), 1e-10);
}

TEST(pmsm_flux, ld_lq_flux_and_matrix_follow_the_angle) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    model.set_own_magnet_temperature(193.15);
    bind(model, store, kzb::ld_lq);
    const double position = 0.4;
    sample(model, {}, position, 0.0, false);
    const double th[3] = {0.8, 0.8 - 2.0 * pi / 3.0, 0.8 + 2.0 * pi / 3.0};
    for (std::size_t r = 0; r < 3; ++r) {
        EXPECT_NEAR(model.state().magnet_flux[r], 1.11 * std::sqrt(2.0 / 3.0) * 0.15 * std::cos(th[r]), 1e-14);
        for (std::size_t c = 0; c < 3; ++c) {
            const double expected =
                2.0 / 3.0 * (0.002 * std::cos(th[r]) * std::cos(th[c]) + 0.005 * std::sin(th[r]) * std::sin(th[c]));
            EXPECT_NEAR(model.state().inductance[r * 3 + c], expected, 1e-16);
        }
    }
    EXPECT_EQ(model.state().flux_temperature_delta, Phases{});
}

// Flux l i + magnet: what the matrix explains goes out of the magnet flux again.
TEST(pmsm_flux, harmonic_magnet_flux_is_the_rest_behind_the_inductance) {
    for (const bool by_phase : {false, true}) {
        KZB_STORE store;
        harmonic_file(store, {.by_phase_currents = by_phase});
        Calc_Eq model;
        bind(model, store, kzb::harmonic);
        const Phases i = balanced(50.0, 45.0, 0.0);
        drive(model, i, 0.0);
        model.accept();
        drive(model, i, 0.0);  // flux at the accepted current, with its inductance
        model.dq_inductances_from_currents(0.0);
        for (std::size_t k = 0; k < 3; ++k) {
            const double magnet = 0.1 * std::cos(static_cast<double>(k) * 2.0 * pi / 3.0);
            EXPECT_NEAR(model.state().total_flux[k], 0.003 * i[k] + magnet, 1e-12);
            EXPECT_NEAR(model.state().magnet_flux[k], magnet, 1e-12);
            EXPECT_NEAR(model.state().coil_flux[k], 0.003 * i[k] + magnet, 1e-12);
        }
    }
}

TEST(pmsm_flux, harmonic_table_elements_stand_by_columns) {
    KZB_STORE store;
    harmonic_file(store);
    table(store, "harmonic_inductance", "inductance", {nodes(0, 100, 2), all_phases(), nodes(0, 360, 3), components(9)},
          [](const std::vector<double>& x) { return x[3]; });
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_EQ(model.inductance(1, 2), 3.0);
    EXPECT_EQ(model.inductance(3, 1), 2.0);
    EXPECT_EQ(model.inductance(2, 3), 7.0);
    EXPECT_EQ(model.inductance(0, 1), 0.0);
    EXPECT_EQ(model.inductance(1, 4), 0.0);
}

TEST(pmsm_flux, harmonic_takes_the_mean_magnet_temperature) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    model.set_own_magnet_temperature(393.15);
    sample(model, {}, 0.0, 0.0, true);  // the first step takes the present value for both
    EXPECT_NEAR(model.state().flux_temperature_delta[0], -0.11 * 0.1, 1e-14);
    model.set_own_magnet_temperature(293.15);
    sample(model, {}, 0.0, 0.1, false);
    EXPECT_NEAR(model.state().flux_temperature_delta[0], -0.055 * 0.1, 1e-14);
}

TEST(pmsm_flux, magnet_flux_at_a_position_has_no_temperature) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    model.set_own_magnet_temperature(393.15);
    model.set_correction_flux(2.0);
    bind(model, store, kzb::ld_lq);
    sample(model, {}, 0.0, 0.0, false);
    kzb::put_double(store, "d_flux", "d_flux", 0.3);  // read afresh
    model.set_position(0.25);
    EXPECT_NEAR(model.magnet_flux_at_position(2), 2.0 * std::sqrt(2.0 / 3.0) * 0.3 * std::cos(0.5 - 2.0 * pi / 3.0),
                1e-15);
    EXPECT_EQ(model.magnet_flux_at_position(0), 0.0);

    KZB_STORE simple;
    simple_file(simple);
    Calc_Eq kind0;
    bind(kind0, simple, kzb::simple_harmonic);
    kind0.set_position(15.0 * pi / 180.0);
    EXPECT_NEAR(kind0.magnet_flux_at_position(3), 0.1 * std::cos(pi / 6.0 - 4.0 * pi / 3.0), 1e-12);
    KZB_STORE harmonic;
    harmonic_file(harmonic);
    Calc_Eq kind1;
    bind(kind1, harmonic, kzb::harmonic);
    EXPECT_EQ(kind1.magnet_flux_at_position(1), 0.0);
}

// A linear machine's electrical angle counts from its offset; its table position does not.
TEST(pmsm_flux, linear_machine_angles) {
    KZB_STORE store;
    ld_lq_file(store, {}, {.motor_type = 10005, .beta_zero = 36.0});
    kzb::put_double(store, "control", "electrical_length", 0.1);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    sample(model, {}, 0.02, 0.0, false);
    // 2 pi (0.02 + 36 / 360 * 0.1) / 0.1 = 0.6 pi
    EXPECT_NEAR(model.state().magnet_flux[0], std::sqrt(2.0 / 3.0) * 0.15 * std::cos(0.6 * pi), 1e-15);
}

}  // namespace
}  // namespace kzb_test::pmsm_flux_test
