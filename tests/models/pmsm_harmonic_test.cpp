// The voltage-driven step of kind 1: the lagged motional voltage, and Ld and Lq found by probing.
#include <gtest/gtest.h>

#include "pmsm_files.h"

namespace kzb_test::pmsm_harmonic_test {
namespace {

using kzb::Calc_Eq;
using kzb::Phases;

constexpr double l = 0.003;
constexpr double r = 0.5;
constexpr double step_angle = 5.0 * pi / 180.0;  // one node of the position axis per sample
constexpr double dt = 1e-3;

double magnet(int n, std::size_t k) {
    return 0.1 * std::cos(2.0 * n * step_angle - static_cast<double>(k) * 2.0 * pi / 3.0);
}

Phases voltages(int n) {
    return {20.0 * std::cos(0.2 * n), 15.0 * std::sin(0.3 * n), -10.0 + n};
}

// Star without coupling: (dt R + l) i = dt (v - v_n - e) + l I with v_n the mean of v - e, which keeps the sum zero.
// e at sample n is the magnet's change over the step before, from sample n - 1 to n of the flux taken at known angles,
// divided by the length of the step before.
Phases star_step(const Phases& i, const Phases& v, const Phases& e) {
    const double neutral = (v[0] - e[0] + v[1] - e[1] + v[2] - e[2]) / 3.0;
    Phases next;
    for (std::size_t k = 0; k < 3; ++k) {
        next[k] = (dt * (v[k] - neutral - e[k]) + l * i[k]) / (dt * r + l);
    }
    return next;
}

TEST(pmsm_harmonic, linear_flux_follows_the_lagged_voltage_equation) {
    KZB_STORE store;
    harmonic_file(store, {.by_phase_currents = true});
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    Phases i{};
    for (int n = 0; n < 30; ++n) {
        ASSERT_TRUE(sample(model, voltages(n), n * step_angle, n * dt, false));
        if (n >= 2) {
            Phases e;
            for (std::size_t k = 0; k < 3; ++k) {
                e[k] = (magnet(n, k) - magnet(n - 1, k)) / dt;
                // Times n * dt leave the last bits of dt open: a step longer by a rounding takes the last voltage
                // again.
                const double now = n * dt - (n - 1) * dt;
                const double last = (n - 1) * dt - (n - 2) * dt;
                if (now / last > 1.0) {
                    e[k] = last * model.state().induced_voltage_previous[k] / now;
                }
                EXPECT_NEAR(model.stored_induced_voltage(static_cast<int>(k) + 1), e[k], 1e-8);
            }
            i = star_step(i, voltages(n), model.state().induced_voltage);
        }
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(model.current_output(static_cast<int>(k) + 1), i[k], 1e-9) << n;
        }
        model.accept();
    }
    EXPECT_GT(std::fabs(i[0]), 1.0);
}

TEST(pmsm_harmonic, longer_step_takes_the_last_voltage_scaled) {
    KZB_STORE store;
    harmonic_file(store, {.by_phase_currents = true});
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    const double h = 0.0009765625;  // 2^-10: times are exact
    for (int n = 0; n < 4; ++n) {
        sample(model, voltages(n), n * step_angle, n * h);
    }
    const Phases last = model.state().induced_voltage_previous;
    EXPECT_NE(last[0], 0.0);
    sample(model, voltages(4), 5 * step_angle, 5 * h, false);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(model.stored_induced_voltage(static_cast<int>(k) + 1), last[k] / 2.0);
    }
    // A shorter step takes the quotient, over the length of the step before.
    sample(model, voltages(4), 4 * step_angle, 3.5 * h, false);
    EXPECT_NEAR(model.stored_induced_voltage(1), (magnet(4, 0) - magnet(3, 0)) / h, 1e-9);
}

TEST(pmsm_harmonic, warm_magnet_scales_the_induced_voltage) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    model.set_own_magnet_temperature(393.15);
    const double h = 0.0009765625;
    for (int n = 0; n < 3; ++n) {
        sample(model, {}, n * step_angle, n * h, n < 2);
    }
    EXPECT_NEAR(model.stored_induced_voltage(2), 0.89 * (magnet(2, 1) - magnet(1, 1)) / h, 1e-9);
}

// A third harmonic of flux drives a current around the delta; over amplitude and phase it is not reported.
TEST(pmsm_harmonic, delta_loses_its_zero_sequence_with_tables_over_amplitude_and_phase) {
    for (const bool by_phase : {false, true}) {
        KZB_STORE store;
        harmonic_file(store, {.by_phase_currents = by_phase}, {.connection = 1});
        const Axis turn = nodes(0.0, 360.0, 73, true);
        const auto zero = [](double degrees) { return 0.05 * std::cos(6.0 * degrees * pi / 180.0); };
        if (by_phase) {
            const Axis amperes = nodes(-100.0, 100.0, 3);
            table(store, "current_flux", "flux", {amperes, amperes, amperes, turn, components(3)},
                  [=](const std::vector<double>& x) { return l * x[static_cast<std::size_t>(x[4])] + zero(x[3]); });
        } else {
            table(store, "current_flux", "flux", {nodes(0, 100, 2), all_phases(), turn, components(3)},
                  [=](const std::vector<double>& x) { return zero(x[2]); });
        }
        Calc_Eq model;
        bind(model, store, kzb::harmonic);
        for (int n = 0; n < 4; ++n) {
            sample(model, {10.0, 0.0, -10.0}, n * step_angle, n * 0.0009765625);
        }
        const double sum = model.current_output(1) + model.current_output(2) + model.current_output(3);
        if (by_phase) {
            EXPECT_GT(std::fabs(sum), 1.0);
        } else {
            EXPECT_NEAR(sum, 0.0, 1e-12);
        }
        EXPECT_GT(std::fabs(model.current_output(1)), 0.1);
    }
}

TEST(pmsm_harmonic, star_point_potential_is_reported) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    for (int n = 0; n < 3; ++n) {
        sample(model, {9.0, 0.0, 0.0}, 0.0, n * 0.0009765625, n < 2);
    }
    EXPECT_NEAR(model.state().neutral_voltage, 3.0, 1e-9);
}

TEST(pmsm_harmonic, induced_voltage_is_the_change_of_flux_from_the_third_step_on) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    for (int n = 0; n < 2; ++n) {
        sample(model, {}, n * step_angle, n * dt, false);
        EXPECT_EQ(model.induced_voltage(1), 0.0);
        model.accept();
    }
    sample(model, {}, 2 * step_angle, 2 * dt, false);
    EXPECT_NEAR(model.induced_voltage(1), (magnet(2, 0) - magnet(1, 0)) / dt, 1e-9);
    EXPECT_EQ(model.induced_voltage(0), 0.0);
    EXPECT_EQ(model.induced_voltage(4), 0.0);
    model.accept();
    EXPECT_EQ(model.induced_voltage(1), 0.0);  // no time has passed since
}

// Flux l i + magnet: Lq is l anywhere, by quotient and by probes near the d axis.
TEST(pmsm_harmonic, q_inductance_of_linear_flux_is_the_inductance) {
    KZB_STORE store;
    harmonic_file(store, {.by_phase_currents = true});
    for (const double beta : {0.0, 30.0, 80.0, 87.0, 90.0, -90.0, 120.0}) {
        Calc_Eq model;
        bind(model, store, kzb::harmonic);
        const kzb::PhaseAngles at(0.0);
        const double b = beta * pi / 180.0;
        const double a = 50.0 * std::sqrt(1.5);
        const Phases i = kzb::inverse_park({-a * std::sin(b), a * std::cos(b), 0.0}, at);
        for (int repeat = 0; repeat < 2; ++repeat) {
            model.set_position(0.0);
            model.set_time(repeat * dt);
            for (std::size_t k = 0; k < 3; ++k) {
                model.set_current(static_cast<int>(k) + 1, i[k]);
            }
            model.torque_from_currents();
            model.dq_inductances_from_currents(0.0);
            if (repeat == 0) {
                EXPECT_EQ(model.q_inductance(), 0.0);  // no current yet in the accepted past
                model.accept();
            }
        }
        EXPECT_NEAR(model.q_inductance(), l, 1e-10) << beta;
        EXPECT_NEAR(model.d_inductance(), l, 1e-12) << beta;  // (2/3) l (sum of cos^2) = l
    }
}

TEST(pmsm_harmonic, leakage_is_added_to_both_axes) {
    KZB_STORE store;
    harmonic_file(store, {.by_phase_currents = true});
    kzb::put_double(store, "parameter", "leakage_inductance_u", 0.001);
    kzb::put_double(store, "parameter", "leakage_inductance_v", 0.002);
    kzb::put_double(store, "parameter", "leakage_inductance_w", 0.004);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    sample(model, {}, 0.0, 0.0, false);
    // cos^2 = 1, 1/4, 1/4 and sin^2 = 0, 3/4, 3/4
    EXPECT_NEAR(model.d_inductance(), l + 2.0 / 3.0 * (0.001 + 0.0015), 1e-15);
    EXPECT_NEAR(model.q_inductance(), 2.0 / 3.0 * 0.0045, 1e-15);
}

// Tables tell the uncorrected machine; both axes grow with the correction, once.
TEST(pmsm_harmonic, inductance_correction_scales_both_axes) {
    KZB_STORE store;
    harmonic_file(store, {.by_phase_currents = true});
    Calc_Eq model;
    model.set_correction_inductance(2.0);
    bind(model, store, kzb::harmonic);
    const kzb::Phases i = kzb::inverse_park({0.0, 50.0, 0.0}, kzb::PhaseAngles(0.0));
    for (std::size_t k = 0; k < 3; ++k) {
        model.set_initial_current(static_cast<int>(k) + 1, i[k]);
    }
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_NEAR(model.q_inductance(), 2.0 * l, 1e-12);
    EXPECT_NEAR(model.d_inductance(), 2.0 * l, 1e-12);
}

}  // namespace
}  // namespace kzb_test::pmsm_harmonic_test
