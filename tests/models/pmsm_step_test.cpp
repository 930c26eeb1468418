// The voltage-driven step of kinds 0 and 2: discrete equation, first steps, open phases, failures.
#include <gtest/gtest.h>

#include <limits>

#include "pmsm_files.h"

namespace kzb_test::pmsm_step_test {
namespace {

using kzb::Calc_Eq;
using kzb::Phases;

constexpr double third = 2.0 * pi / 3.0;

// Phase k's angle: V lags, W leads.
double phase_angle(double th, std::size_t k) {
    return k == 0 ? th : k == 1 ? th - third : th + third;
}

struct DqMachine {
    double r = 0.5, ld = 0.002, lq = 0.005, psi = 0.15;
    int pole_pairs = 2;
    double leak = 0.0;
};

double element(const DqMachine& m, double th, std::size_t r, std::size_t c) {
    const double a = phase_angle(th, r);
    const double b = phase_angle(th, c);
    return 2.0 / 3.0 * (m.ld * std::cos(a) * std::cos(b) + m.lq * std::sin(a) * std::sin(b));
}

double magnet(const DqMachine& m, double th, std::size_t k) {
    return std::sqrt(2.0 / 3.0) * m.psi * std::cos(phase_angle(th, k));
}

Phases voltages_of(double time) {
    return {40.0 * std::cos(300.0 * time), 30.0 * std::cos(300.0 * time - 2.0), 35.0 * std::cos(300.0 * time + 1.5)};
}

// One step of the discrete equation for a star: differences of two phase rows drop the star point's potential.
Phases star_step(const DqMachine& m, const Phases& i, const Phases& v, double th, double th_before, double dt) {
    double k[3][3];
    double b[3];
    for (std::size_t r = 0; r < 3; ++r) {
        b[r] = dt * v[r] + magnet(m, th_before, r) - magnet(m, th, r) + m.leak * i[r];
        for (std::size_t c = 0; c < 3; ++c) {
            k[r][c] = 2.0 * element(m, th, r, c) - element(m, th_before, r, c) + (r == c ? dt * m.r + m.leak : 0.0);
            b[r] += element(m, th, r, c) * i[c];
        }
    }
    const double a[3][3] = {{k[0][0] - k[1][0], k[0][1] - k[1][1], k[0][2] - k[1][2]},
                            {k[1][0] - k[2][0], k[1][1] - k[2][1], k[1][2] - k[2][2]},
                            {1.0, 1.0, 1.0}};
    const double rhs[3] = {b[0] - b[1], b[1] - b[2], 0.0};
    return solve3(a, rhs);
}

TEST(pmsm_step, star_follows_the_discrete_voltage_equation) {
    KZB_STORE store;
    ld_lq_file(store);
    for (const char* key : {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"}) {
        kzb::put_double(store, "parameter", key, 0.0004);
    }
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    DqMachine m;
    m.leak = 0.0004;
    Phases expected{};
    for (int n = 0; n < 40; ++n) {
        const double dt = 2e-4;
        const double time = n * dt;
        const double position = 100.0 * time;
        ASSERT_TRUE(sample(model, voltages_of(time), position, time));
        if (n >= 2) {
            expected = star_step(m, expected, voltages_of(time), 2.0 * position, 2.0 * 100.0 * (n - 1) * dt, dt);
        }
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(model.current_output(static_cast<int>(k) + 1), expected[k], 1e-10) << n;
        }
    }
    EXPECT_GT(std::fabs(expected[0]), 0.5);
}

TEST(pmsm_step, delta_windings_see_the_line_voltages) {
    KZB_STORE store;
    // Equal Ld and Lq of 3 mH leave L[r][c] = 0.003 * (delta_rc - 1/3); leakage makes it invertible.
    ld_lq_file(store, {0.003, 0.003, 0.15}, {.connection = 1});
    for (const char* key : {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"}) {
        kzb::put_double(store, "parameter", key, 0.001);
    }
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    DqMachine m;
    m.ld = m.lq = 0.003;
    const double dt = 2e-4;
    const Phases v = {10.0, -4.0, 3.0};
    const double position[3] = {0.0, 0.02, 0.04};
    for (int n = 0; n < 3; ++n) {
        ASSERT_TRUE(sample(model, v, position[n], n * dt, n < 2));
    }
    const double line[3] = {v[0] - v[1], v[1] - v[2], v[2] - v[0]};
    double a[3][3];
    double b[3];
    for (std::size_t r = 0; r < 3; ++r) {
        b[r] = dt * line[r] + magnet(m, 0.04, r) - magnet(m, 0.08, r);
        for (std::size_t c = 0; c < 3; ++c) {
            a[r][c] = element(m, 0.08, r, c) + (r == c ? dt * 0.5 + 0.001 : 0.0);  // L does not turn: 2 L - L = L
        }
    }
    const Phases expected = solve3(a, b);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(model.current_output(static_cast<int>(k) + 1), expected[k], 1e-11);
        EXPECT_NEAR(model.stored_induced_voltage(static_cast<int>(k) + 1),
                    (magnet(m, 0.08, k) - magnet(m, 0.04, k)) / dt, 1e-9);
    }
}

// Continuous machine in the rotor frame, by the classical Runge-Kutta scheme at a hundredth of the model's step.
struct Dq {
    double d, q;
};
Dq slope(const DqMachine& m, const Dq& i, const Dq& v, double omega) {
    return {(v.d - m.r * i.d + omega * m.lq * i.q) / m.ld, (v.q - m.r * i.q - omega * (m.ld * i.d + m.psi)) / m.lq};
}
Dq runge_kutta(const DqMachine& m, const Dq& v, double omega, double from, double to) {
    Dq i{0.0, 0.0};
    const int steps = 2000;
    const double h = (to - from) / steps;
    for (int n = 0; n < steps; ++n) {
        const Dq a = slope(m, i, v, omega);
        const Dq b = slope(m, {i.d + h / 2 * a.d, i.q + h / 2 * a.q}, v, omega);
        const Dq c = slope(m, {i.d + h / 2 * b.d, i.q + h / 2 * b.q}, v, omega);
        const Dq e = slope(m, {i.d + h * c.d, i.q + h * c.q}, v, omega);
        i.d += h / 6 * (a.d + 2 * b.d + 2 * c.d + e.d);
        i.q += h / 6 * (a.q + 2 * b.q + 2 * c.q + e.q);
    }
    return i;
}

double distance_to_continuous(double dt) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    const DqMachine m;
    const double omega_mech = 150.0;
    const Dq v{-15.0, 60.0};
    const int samples = static_cast<int>(std::lround(0.02 / dt));
    // The second sample is the last without a solve: its time is where the currents start.
    double time = 0.0;
    for (int n = 0; n <= samples + 1; ++n) {
        time = n * dt;
        const kzb::PhaseAngles at(2.0 * omega_mech * time);
        EXPECT_TRUE(sample(model, kzb::inverse_park({v.d, v.q, 0.0}, at), omega_mech * time, time));
    }
    const kzb::PhaseAngles at(2.0 * omega_mech * time);
    const Phases i = {model.current_output(1), model.current_output(2), model.current_output(3)};
    const Dq exact = runge_kutta(m, v, 2.0 * omega_mech, dt, time);
    return std::hypot(kzb::park_d(i, at) - exact.d, kzb::park_q(i, at) - exact.q) / std::hypot(exact.d, exact.q);
}

TEST(pmsm_step, converges_to_the_continuous_machine_with_first_order) {
    const double coarse = distance_to_continuous(2e-5);
    const double fine = distance_to_continuous(1e-5);
    EXPECT_LT(fine, 0.01);
    EXPECT_NEAR(coarse / fine, 2.0, 0.2);
}

TEST(pmsm_step, first_two_samples_of_a_run_from_zero_do_not_solve) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    EXPECT_TRUE(sample(model, {100.0, 0.0, 0.0}, 0.0, 0.0));
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_TRUE(sample(model, {100.0, 0.0, 0.0}, 0.0, 1e-4));
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_TRUE(sample(model, {100.0, 0.0, 0.0}, 0.0, 2e-4));
    EXPECT_GT(model.current_output(1), 0.0);
}

TEST(pmsm_step, second_sample_solves_after_a_start_off_zero) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    sample(model, {100.0, 0.0, 0.0}, 0.0, 1e-4);
    EXPECT_EQ(model.current_output(1), 0.0);
    sample(model, {100.0, 0.0, 0.0}, 0.0, 2e-4);
    EXPECT_GT(model.current_output(1), 0.0);
}

TEST(pmsm_step, equal_times_leave_the_current) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    for (int n = 0; n < 4; ++n) {
        sample(model, {50.0, -20.0, -30.0}, 0.0, n * 1e-4);
    }
    const double before = model.current_output(1);
    sample(model, {500.0, 0.0, 0.0}, 0.1, 3e-4, false);
    EXPECT_EQ(model.current_output(1), before);
    EXPECT_NE(before, 0.0);
}

TEST(pmsm_step, initial_currents_start_the_run_and_unset_ones_are_zero) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    model.set_current(3, 9.0);
    model.set_current(3, 7.0);  // leaves 9 as the previous one, which the first step drops
    model.set_initial_current(1, 4.0);
    model.set_initial_current(2, -4.0);
    model.set_initial_time(0.5);
    sample(model, {}, 0.0, 0.5, false);
    EXPECT_EQ(model.current_output(1), 4.0);
    EXPECT_EQ(model.current_output(2), -4.0);
    EXPECT_EQ(model.current_output(3), 0.0);
    EXPECT_EQ(model.state().time_previous, 0.5);
    model.set_initial_current(0, 1.0);
    model.set_current(4, 1.0);
    EXPECT_EQ(model.state().current_previous, (Phases{4.0, -4.0, 0.0}));
}

TEST(pmsm_step, repeated_steps_of_one_sample_give_the_same) {
    for (const int kind : {kzb::ld_lq, kzb::harmonic}) {
        KZB_STORE store;
        kind == kzb::ld_lq ? ld_lq_file(store) : harmonic_file(store);
        Calc_Eq model;
        bind(model, store, kind);
        for (int n = 0; n < 5; ++n) {
            sample(model, voltages_of(n * 1e-4), n * 0.01, n * 1e-4);
        }
        sample(model, voltages_of(5e-4), 0.05, 5e-4, false);
        const Phases first = model.state().current;
        const double torque = model.torque();
        const Phases voltage = model.state().induced_voltage;
        sample(model, {300.0, 0.0, 0.0}, 0.2, 9e-4, false);  // another trial of the same sample
        sample(model, voltages_of(5e-4), 0.05, 5e-4, false);
        EXPECT_EQ(model.state().current, first);
        EXPECT_EQ(model.torque(), torque);
        EXPECT_EQ(model.state().induced_voltage, voltage);
    }
}

TEST(pmsm_step, open_phase_carries_no_current) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    int error = 0;
    for (int n = 0; n < 6; ++n) {
        ASSERT_TRUE(model.step(60.0, -60.0, 1234.0, n * 0.01, n * 1e-4, 2.0, -1.0, 0.0, error));
        model.accept();
    }
    EXPECT_NEAR(model.current_output(3), 0.0, 1e-12);
    EXPECT_NEAR(model.current_output(1), -model.current_output(2), 1e-12);
    EXPECT_GT(std::fabs(model.current_output(1)), 0.1);
}

TEST(pmsm_step, no_driven_terminal_leaves_the_machine_to_its_free_equations) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    int error = 0;
    bool ok = true;
    for (int n = 0; n < 4; ++n) {
        ok = model.step(60.0, -60.0, 10.0, n * 0.01, n * 1e-4, 0.0, 0.0, 0.0, error);
        model.accept();
    }
    // No current can flow; the potentials float on a replaced pivot and may be anything.
    if (ok) {
        for (const int phase : {1, 2, 3}) {
            EXPECT_NEAR(model.current_output(phase), 0.0, 1e-9);
        }
    } else {
        EXPECT_EQ(error, Calc_Eq::error_infinite);
    }
}

TEST(pmsm_step, star_voltage_is_that_behind_the_resistance) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    const Phases v = {50.0, -20.0, -10.0};
    for (int n = 0; n < 3; ++n) {
        sample(model, v, n * 0.01, n * 1e-4, n < 2);
    }
    double sum = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
        const int phase = static_cast<int>(k) + 1;
        EXPECT_NEAR(model.stored_induced_voltage(phase),
                    v[k] - model.state().neutral_voltage - 0.5 * model.current_output(phase), 1e-12);
        sum += v[k];
    }
    // Without zero sequence in flux and current the star point lies at the mean.
    EXPECT_NEAR(model.state().neutral_voltage, sum / 3.0, 1e-9);
    model.accept();
    EXPECT_EQ(model.state().neutral_voltage, 0.0);
}

TEST(pmsm_step, non_finite_solution_is_error_18_and_keeps_the_current) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    for (int n = 0; n < 4; ++n) {
        sample(model, {50.0, -20.0, -30.0}, n * 0.01, n * 1e-4);
    }
    const Phases before = model.state().current;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        int error = 0;
        EXPECT_FALSE(model.step(bad, 0.0, 0.0, 0.04, 4e-4, 1.0, 1.0, 1.0, error));
        EXPECT_EQ(error, 18);
        EXPECT_EQ(model.state().current, before);
    }
}

TEST(pmsm_step, file_of_the_older_correction_is_error_20) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    kzb::require_category(store, "CorrectionTable");
    int error = 0;
    EXPECT_FALSE(model.step(1.0, 0.0, 0.0, 0.3, 0.1, 1.0, 1.0, 1.0, error));
    EXPECT_EQ(error, 20);
    EXPECT_EQ(model.position(), 0.0);
}

}  // namespace
}  // namespace kzb_test::pmsm_step_test
