// One voltage-driven step of the wound-field model: passes, convergence, the solve, what is kept.
#include <gtest/gtest.h>

#include <limits>

#include "wfsm_files.h"

namespace kzb_test::wfsm_step_test {
namespace {

constexpr double dt = 1e-3;

// The linear machine at standstill at position 0, bound, its first sample taken.
struct Machine {
    explicit Machine(const WoundField& w = {}, double field = 5.0) : machine(w) {
        linear_file(store, w);
        model.set_initial_current(4, field);
        model.bind(store);
    }
    void first() { sample(model, {}, 0.0, 0.0); }
    WoundField machine;
    KZB_STORE store;
    Calc_Eq_wfsm model;
};

// x of a x = b by elimination with row exchange: another way than the library's.
std::vector<double> solved(std::vector<std::vector<double>> a, std::vector<double> b) {
    const std::size_t n = b.size();
    for (std::size_t i = 0; i < n; ++i) {
        std::size_t p = i;
        for (std::size_t r = i; r < n; ++r) {
            p = std::fabs(a[r][i]) > std::fabs(a[p][i]) ? r : p;
        }
        std::swap(a[i], a[p]);
        std::swap(b[i], b[p]);
        for (std::size_t r = 0; r < n; ++r) {
            if (r != i) {
                const double f = a[r][i] / a[i][i];
                for (std::size_t c = 0; c < n; ++c) {
                    a[r][c] -= f * a[i][c];
                }
                b[r] -= f * b[i];
            }
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        b[i] /= a[i][i];
    }
    return b;
}

// Backward Euler of the linear machine at position 0: (R dt + L) i - dt p = L i_previous, p the voltage across each
// coil; in star the unknown neutral voltage makes the sum of the armature currents 0.
Four backward_euler(const WoundField& w, const Four& previous, const Four& v, bool star, double* neutral) {
    const std::size_t n = star ? 5 : 4;
    std::vector<std::vector<double>> a(n, std::vector<double>(n, 0.0));
    std::vector<double> b(n, 0.0);
    for (int r = 0; r < 4; ++r) {
        const auto row = static_cast<std::size_t>(r);
        for (int c = 0; c < 4; ++c) {
            a[row][static_cast<std::size_t>(c)] = mutual(w, r, c, 0.0);
            b[row] += mutual(w, r, c, 0.0) * previous[static_cast<std::size_t>(c)];
        }
        a[row][row] += dt * (r < 3 ? w.resistance : w.field_resistance);
        const double across = star || r == 3 ? v[row] : v[row] - v[(row + 1) % 3];
        b[row] += dt * across;
        if (star && r < 3) {
            a[row][4] = dt;
            a[4][row] = 1.0;
        }
    }
    const std::vector<double> x = solved(a, b);
    if (star) {
        *neutral = x[4];
    }
    return {x[0], x[1], x[2], x[3]};
}

TEST(wfsm_step, first_step_takes_exactly_two_passes_and_keeps_the_initial_currents) {
    Machine m;
    m.model.set_initial_current(1, 3.0);
    m.model.set_initial_current(2, -1.0);
    const FiveAxisLookups lookups(m.store);
    ASSERT_TRUE(sample(m.model, {100.0, 0.0, 0.0, 50.0}, 0.0, dt, false));
    // Two passes and the final point of 20 lookups each, three of the flux without current.
    EXPECT_EQ(lookups.count(), 3 * 20 + 3);
    EXPECT_EQ(m.model.terminal_current(1), 3.0);
    EXPECT_EQ(m.model.terminal_current(2), -1.0);
    EXPECT_EQ(m.model.terminal_current(3), 0.0);
    EXPECT_EQ(m.model.terminal_current(4), 5.0);
    EXPECT_EQ(m.model.stored_induced_voltage(1), 0.0);
}

TEST(wfsm_step, one_pass_at_most_is_the_relaxed_estimate_without_a_test_of_convergence) {
    const Environment passes("DORN_KZ_DEBUG_NITR", "1");
    const Environment half("DORN_KZ_DEBUG_ACCEL", "0.5");
    Machine m;
    m.first();
    const FiveAxisLookups lookups(m.store);
    sample(m.model, {100.0, -20.0, -80.0, 20.0}, 0.0, dt, false);
    EXPECT_EQ(lookups.count(), 2 * 20 + 3);
    double neutral = 0.0;
    const Four whole = backward_euler(m.machine, {0.0, 0.0, 0.0, 5.0}, {100.0, -20.0, -80.0, 20.0}, true, &neutral);
    EXPECT_NEAR(m.model.terminal_current(1), 0.5 * whole[0], 1e-9);
    EXPECT_NEAR(m.model.terminal_current(4), 5.0 + 0.5 * (whole[3] - 5.0), 1e-9);
}

TEST(wfsm_step, no_pass_at_all_leaves_the_currents_and_the_scales_of_before) {
    for (const char* none : {"0", "-3", "", "many"}) {
        const Environment passes("DORN_KZ_DEBUG_NITR", none);
        Machine m;
        m.model.set_coef_flux(2.0);
        const FiveAxisLookups lookups(m.store);
        EXPECT_TRUE(sample(m.model, {100.0, -20.0, -80.0, 20.0}, 0.0, dt, false));
        EXPECT_EQ(m.model.max_iterations(), none[0] == '-' ? -3 : 0);
        EXPECT_EQ(lookups.count(), 20 + 3);
        EXPECT_EQ(m.model.terminal_current(4), 0.0);
        EXPECT_EQ(m.model.corrections().flux_scale, 1.0);
    }
}

// A linear machine is solved by the first pass; the second finds no change and ends the loop.
TEST(wfsm_step, star_follows_backward_euler) {
    Machine m;
    m.first();
    Four i{0.0, 0.0, 0.0, 5.0};
    for (int n = 1; n < 5; ++n) {
        const Four v{90.0, -10.0 * n, 45.0, 30.0};
        const FiveAxisLookups lookups(m.store);
        ASSERT_TRUE(sample(m.model, v, 0.0, n * dt));
        EXPECT_EQ(lookups.count(), 3 * 20 + 3);
        double neutral = 0.0;
        i = backward_euler(m.machine, i, v, true, &neutral);
        for (int k = 0; k < 4; ++k) {
            EXPECT_NEAR(m.model.terminal_current(k + 1), i[static_cast<std::size_t>(k)], 1e-9);
        }
        EXPECT_NEAR(m.model.state().neutral_voltage, neutral, 1e-9);
        EXPECT_NEAR(m.model.terminal_current(1) + m.model.terminal_current(2) + m.model.terminal_current(3), 0.0, 1e-9);
    }
}

// The coil u of a delta lies between terminals 1 and 2; the circulating current is taken out after the solve.
TEST(wfsm_step, delta_follows_backward_euler_without_zero_sequence) {
    Machine m({.connection = 1});
    m.first();
    const Four v{90.0, -40.0, 5.0, 30.0};
    ASSERT_TRUE(sample(m.model, v, 0.0, dt));
    const Four i = backward_euler(m.machine, {0.0, 0.0, 0.0, 5.0}, v, false, nullptr);
    const double zero = (i[0] + i[1] + i[2]) / 3.0;
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(m.model.terminal_current(k + 1), i[static_cast<std::size_t>(k)] - zero, 1e-9);
    }
    EXPECT_NEAR(m.model.terminal_current(4), i[3], 1e-9);
    EXPECT_EQ(m.model.state().neutral_voltage, 0.0);
}

TEST(wfsm_step, open_terminal_carries_no_current_whatever_its_voltage) {
    Machine m;
    m.first();
    const Four v{90.0, -40.0, 1e6, 30.0};
    const Four signals{1.0, std::numeric_limits<double>::quiet_NaN(), 0.0, -3.0};
    int error = 0;
    ASSERT_TRUE(m.model.step(v.data(), 0.0, dt, signals.data(), error));
    EXPECT_NEAR(m.model.terminal_current(3), 0.0, 1e-9);
    // A not-a-number drives its terminal: u and v then carry the same current.
    EXPECT_NEAR(m.model.terminal_current(1), -m.model.terminal_current(2), 1e-9);
    EXPECT_GT(m.model.terminal_current(1), 1.0);
}

// The zero sequence of three currents is their mean: 10, 4, 1 lose 5 each.
TEST(wfsm_step, accepted_currents_of_a_delta_lose_their_zero_sequence_without_a_solve) {
    for (const int connection : {0, 1}) {
        KZB_STORE store;
        linear_file(store, {.connection = connection});
        Calc_Eq_wfsm model;
        model.bind(store);
        const Four initial{10.0, 4.0, 1.0, 2.0};
        for (int k = 1; k <= 4; ++k) {
            model.set_initial_current(k, initial[static_cast<std::size_t>(k - 1)]);
        }
        EXPECT_TRUE(sample(model, {1.0, 2.0, 3.0, 4.0}, 0.3, 0.0));
        const double lost = connection == 1 ? 5.0 : 0.0;
        EXPECT_NEAR(model.terminal_current(1), 10.0 - lost, 1e-12);
        EXPECT_NEAR(model.terminal_current(2), 4.0 - lost, 1e-12);
        EXPECT_NEAR(model.terminal_current(3), 1.0 - lost, 1e-12);
        EXPECT_EQ(model.terminal_current(4), 2.0);
        EXPECT_EQ(model.stored_induced_voltage(1), 0.0);
    }
}

TEST(wfsm_step, no_time_no_solve) {
    Machine m;
    m.first();
    sample(m.model, {90.0, -40.0, 5.0, 30.0}, 0.0, dt);
    const double u = m.model.terminal_current(1);
    EXPECT_NE(m.model.stored_induced_voltage(1), 0.0);
    for (const double time : {dt, 0.5 * dt}) {
        EXPECT_TRUE(sample(m.model, {0.0, 500.0, 0.0, 0.0}, 0.0, time, false));
        EXPECT_EQ(m.model.terminal_current(1), u);
        EXPECT_EQ(m.model.stored_induced_voltage(1), 0.0);
        EXPECT_EQ(m.model.induced_voltage(1), 0.0);
    }
}

TEST(wfsm_step, repeated_step_of_one_sample_gives_the_same) {
    Machine m;
    m.first();
    sample(m.model, {90.0, -40.0, 5.0, 30.0}, 0.1, dt);
    sample(m.model, {900.0, 400.0, 5.0, 30.0}, 0.5, 2 * dt, false);
    sample(m.model, {80.0, -40.0, 5.0, 30.0}, 0.2, 2 * dt, false);
    const double u = m.model.terminal_current(1);
    const double torque = m.model.torque();
    sample(m.model, {80.0, -40.0, 5.0, 30.0}, 0.2, 2 * dt, false);
    EXPECT_EQ(m.model.terminal_current(1), u);
    EXPECT_EQ(m.model.torque(), torque);
}

// Flux of the coil without resistance: psi(t) = v t; so the induced voltage is v, whatever the inductance.
TEST(wfsm_step, induced_voltage_is_the_change_of_flux) {
    Machine m({.connection = 1, .resistance = 1e-12, .field_resistance = 1e-12});
    m.first();
    const Four v{30.0, 10.0, -40.0, 25.0};
    sample(m.model, v, 0.0, dt, false);
    EXPECT_NEAR(m.model.induced_voltage(1), 20.0, 1e-6);
    EXPECT_NEAR(m.model.induced_voltage(2), 50.0, 1e-6);
    EXPECT_NEAR(m.model.induced_voltage(4), 25.0, 1e-6);
    EXPECT_NEAR(m.model.stored_induced_voltage(1), 20.0, 1e-6);
    EXPECT_EQ(m.model.induced_voltage(0), 0.0);
    EXPECT_EQ(m.model.induced_voltage(5), 0.0);
}

// Incremental inductances twice too large: each pass covers half of the way, so the changes are c, c/2, c/4 ... with c
// half of the solution. The sum of absolute changes of all four coils is held against the tolerance.
TEST(wfsm_step, tolerance_bounds_the_plain_sum_of_changes) {
    const auto passes_with = [](const char* tolerance) {
        const Environment variable("DORN_KZ_DEBUG_ITR", tolerance);
        Machine m({.resistance = 0.0, .field_resistance = 0.0});
        table(m.store, "harmonic_inductance", "inductance",
              {nodes(-100, 100, 2), nodes(-100, 100, 2), nodes(0, 20, 2), nodes(0, 360, 2, true), components(16)},
              [&](const std::vector<double>& x) {
                  return 2.0 * mutual(m.machine, static_cast<int>(x[4]) % 4, static_cast<int>(x[4]) / 4, 0.0);
              });
        m.first();
        const FiveAxisLookups lookups(m.store);
        sample(m.model, {100.0, -20.0, -80.0, 0.0}, 0.0, dt, false);
        return (lookups.count() - 23.0) / 20.0;
    };
    double neutral = 0.0;
    const Four i = backward_euler({.resistance = 0.0, .field_resistance = 0.0}, {0.0, 0.0, 0.0, 5.0},
                                  {100.0, -20.0, -80.0, 0.0}, true, &neutral);
    const double first = 0.5 * (std::fabs(i[0]) + std::fabs(i[1]) + std::fabs(i[2]) + std::fabs(i[3] - 5.0));
    // Changes are first * 2^-n at pass n from 0.
    EXPECT_EQ(passes_with(std::to_string(first / 8.0 * 1.01).c_str()), 4.0);
    EXPECT_EQ(passes_with(std::to_string(first / 8.0 * 0.99).c_str()), 5.0);
    EXPECT_EQ(passes_with(std::to_string(first * 100.0).c_str()), 2.0);
    EXPECT_EQ(passes_with("0"), 200.0);
}

// The counts are those of the passes above; a step at no time's distance, or the first one, solves nothing.
TEST(wfsm_step, passes_of_solved_steps_are_counted) {
    const auto counts_with = [](const char* tolerance, const char* most, double voltage) {
        const Environment limit("DORN_KZ_DEBUG_ITR", tolerance);
        const Environment passes("DORN_KZ_DEBUG_NITR", most);
        Machine m;
        m.first();
        sample(m.model, {}, 0.0, 0.0);
        EXPECT_EQ(m.model.pass_counts().solved_steps, 0);
        const Four on{1.0, 1.0, 1.0, 1.0};
        const Four v{voltage, -20.0, -80.0, 20.0};
        int error = 0;
        m.model.step(v.data(), 0.0, dt, on.data(), error);
        return m.model.pass_counts();
    };
    // A linear machine: solved by the first pass, which the second finds.
    kzb::PassCounts found = counts_with("0.001", "200", 100.0);
    EXPECT_EQ(found.solved_steps, 1);
    EXPECT_EQ(found.passes, 2);
    EXPECT_EQ(found.most_passes, 2);
    EXPECT_EQ(found.unconverged_steps, 0);
    // The last pass allowed may be the one that finds it.
    found = counts_with("0.001", "2", 100.0);
    EXPECT_EQ(found.passes, 2);
    EXPECT_EQ(found.unconverged_steps, 0);
    // One pass moves far and is not followed by another; no change is below nothing.
    found = counts_with("0.001", "1", 100.0);
    EXPECT_EQ(found.passes, 1);
    EXPECT_EQ(found.unconverged_steps, 1);
    found = counts_with("0", "200", 100.0);
    EXPECT_EQ(found.passes, 200);
    EXPECT_EQ(found.unconverged_steps, 1);
    // Fails in its first pass.
    found = counts_with("0.001", "200", std::numeric_limits<double>::infinity());
    EXPECT_EQ(found.solved_steps, 1);
    EXPECT_EQ(found.passes, 1);
    EXPECT_EQ(found.unconverged_steps, 1);
}

// Relaxed by 2.5 the passes of a linear machine run away from the solution, x - s growing by -1.5 each time; the best
// of them is the first, whose change is the smallest.
TEST(wfsm_step, loop_that_runs_out_keeps_the_best_estimate) {
    const Environment relaxation("DORN_KZ_DEBUG_ACCEL", "2.5");
    const Environment passes("DORN_KZ_DEBUG_NITR", "6");
    Machine m;
    m.first();
    const Four v{9.0, -4.0, -5.0, 10.0};
    EXPECT_TRUE(sample(m.model, v, 0.0, dt, false));
    double neutral = 0.0;
    const Four i = backward_euler(m.machine, {0.0, 0.0, 0.0, 5.0}, v, true, &neutral);
    EXPECT_NEAR(m.model.terminal_current(1), 2.5 * i[0], 1e-9);
    EXPECT_NEAR(m.model.terminal_current(4), 5.0 + 2.5 * (i[3] - 5.0), 1e-9);
}

TEST(wfsm_step, temperature_acts_on_both_resistances_when_switched_on) {
    for (const bool on : {false, true}) {
        Machine m;
        m.model.set_own_coil_temperature(393.15);
        m.model.set_own_coil_coefficient(3810.0);
        m.model.set_field_coil_temperature(343.15);
        m.model.set_field_coil_coefficient(4000.0);
        m.model.set_temperature_correction(on);
        EXPECT_DOUBLE_EQ(m.model.own_coil_factor(), 1.381);
        EXPECT_DOUBLE_EQ(m.model.field_coil_factor(), 1.2);
        m.first();
        const Four v{90.0, -40.0, 5.0, 30.0};
        sample(m.model, v, 0.0, dt, false);
        WoundField warm = m.machine;
        warm.resistance *= on ? 1.381 : 1.0;
        warm.field_resistance *= on ? 1.2 : 1.0;
        double neutral = 0.0;
        const Four i = backward_euler(warm, {0.0, 0.0, 0.0, 5.0}, v, true, &neutral);
        EXPECT_NEAR(m.model.terminal_current(1), i[0], 1e-9);
        EXPECT_NEAR(m.model.terminal_current(4), i[3], 1e-9);
    }
}

TEST(wfsm_step, infinite_voltage_is_error_18_and_the_currents_stay) {
    Machine m;
    m.first();
    const Four on{1.0, 1.0, 1.0, 1.0};
    for (const double bad : {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
        const Four v{bad, 0.0, 0.0, 0.0};
        int error = 0;
        EXPECT_FALSE(m.model.step(v.data(), 0.0, dt, on.data(), error));
        EXPECT_EQ(error, Calc_Eq_wfsm::error_infinite);
        EXPECT_EQ(m.model.terminal_current(4), 5.0);
        EXPECT_EQ(m.model.state().current[3], 5.0);
    }
    EXPECT_TRUE(sample(m.model, {1.0, 0.0, 0.0, 1.0}, 0.0, dt, false));
}

TEST(wfsm_step, start_without_initial_values_begins_at_nothing_and_time_zero) {
    KZB_STORE store;
    linear_file(store);
    Calc_Eq_wfsm model;
    model.bind(store);
    sample(model, {}, 0.0, 0.5, false);
    EXPECT_EQ(model.state().time_previous, 0.0);
    model.set_initial_time(0.25);
    sample(model, {}, 0.0, 0.5, false);
    EXPECT_EQ(model.state().time_previous, 0.25);
    EXPECT_EQ(model.state().Iamp_previous, 0.0);
    EXPECT_EQ(model.state().beta_previous, 0.0);
}

// The angle of the first Park transform is the position itself: at position 0.4 the current (cos 0.4, cos(0.4 - a),
// cos(0.4 + a)) * 6 has d = 6 sqrt(3/2), q = 0 there, so beta is -90; the poles play no part.
TEST(wfsm_step, initial_amplitude_and_phase_by_the_mechanical_angle) {
    Machine m({.poles = 8});
    for (int k = 0; k < 3; ++k) {
        m.model.set_initial_current(k + 1, 6.0 * std::cos(0.4 - k * third_turn));
    }
    sample(m.model, {}, 0.4, 0.0, false);
    EXPECT_NEAR(m.model.state().Iamp_previous, 6.0, 1e-12);
    EXPECT_NEAR(std::fabs(m.model.state().beta_previous), 90.0, 1e-9);
    // The field current alone is no armature current.
    Machine field;
    sample(field.model, {}, 0.4, 0.0, false);
    EXPECT_EQ(field.model.state().Iamp_previous, 0.0);
}

TEST(wfsm_step, torque_of_the_linear_machine) {
    Machine m;
    m.first();
    sample(m.model, {30.0, 50.0, -80.0, 10.0}, 0.0, dt, false);
    // At position 0: q = -sqrt(2/3) (sin(-a) v + sin(a) w) = sqrt(1/2) (v - w).
    const double q = std::sqrt(0.5) * (m.model.terminal_current(2) - m.model.terminal_current(3));
    EXPECT_NEAR(m.model.torque(), 2.0 * 0.05 * std::sqrt(1.5) * m.model.terminal_current(4) * q, 1e-9);
    EXPECT_NEAR(m.model.state().Iq, q, 1e-12);
    EXPECT_NEAR(m.model.state().Id, std::sqrt(2.0 / 3.0) * 1.5 * m.model.terminal_current(1), 1e-12);
}

TEST(wfsm_history, accept_moves_present_values) {
    Machine m;
    m.first();
    sample(m.model, {30.0, 50.0, -80.0, 10.0}, 0.1, dt, false);
    const kzb::WfsmStep before = m.model.state();
    m.model.accept();
    const kzb::WfsmStep& s = m.model.state();
    EXPECT_EQ(s.time_previous, before.time);
    EXPECT_EQ(s.position_previous, before.position);
    EXPECT_EQ(s.Iamp_previous, before.Iamp);
    EXPECT_EQ(s.beta_previous, before.beta);
    EXPECT_EQ(s.Id_previous, before.Id);
    EXPECT_EQ(s.Iq_previous, before.Iq);
    EXPECT_EQ(s.flux_previous, before.flux);
    EXPECT_EQ(s.current_previous, before.terminal_current);
    EXPECT_EQ(s.step_count, before.step_count + 1);
}

}  // namespace
}  // namespace kzb_test::wfsm_step_test
