// The switched reluctance motor: binding, the step's equation, inductances, torque, flux, histories.
#include "coil_files.h"

namespace kzb_test::sr_step_test {
namespace {

using kzb::Calc_Eq_sr;
using SrLookups = OwnDirectory;

constexpr double degree = pi / 180.0;
const std::vector<double> all_on = {1.0, 1.0, 1.0, 1.0, 1.0};

TEST(sr_bind, takes_the_phases_the_resistance_and_the_application) {
    for (const int phases : {3, 4, 5}) {
        KZB_STORE store;
        sr_file(store, phases, coupled(static_cast<std::size_t>(phases), 0.01, 0.0), always(0.0));
        Calc_Eq_sr model;
        model.bind(store, phases);
        EXPECT_EQ(store.motor, "SR");
        EXPECT_EQ(model.circuit().network.pattern, phases + 5);
        EXPECT_EQ(model.circuit().network.port_count, 2 * phases);
        EXPECT_EQ(model.circuit().phase_count, phases);
        EXPECT_EQ(model.flux().size(), static_cast<std::size_t>(phases));
        EXPECT_EQ(model.resistance(), 0.5);  // RU
    }
}

TEST(sr_bind, a_resistance_that_was_set_stays) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.01, 0.0), always(0.0));
    Calc_Eq_sr model;
    model.set_resistance_base(2.0);
    model.bind(store, 3);
    EXPECT_EQ(model.circuit().R_base, 2.0);
    const double v[3] = {};
    model.step(v, 0.0, 1e-3, all_on.data());
    EXPECT_EQ(model.resistance(), 2.0);
}

TEST(sr_bind, folds_turns_and_corrections) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.01, 0.0), always(0.0));
    kzb::put_double(store, "control", "turns_in_coil", 4.0);
    Calc_Eq_sr model;
    model.set_turns1(8.0);
    model.set_turns2(2.0);
    model.set_correction_flux(3.0);
    model.set_correction_magnet(5.0);
    model.set_correction_steel(7.0);
    model.set_correction_inductance(11.0);
    model.set_correction_torque(13.0);
    model.bind(store, 3);
    EXPECT_EQ(model.corrections().turns1, 2.0);
    EXPECT_EQ(model.corrections().turns2, 0.5);
    EXPECT_EQ(model.corrections().correction_flux, 105.0);        // 1/2 * 3 * 2 * 5 * 7
    EXPECT_EQ(model.corrections().correction_inductance, 154.0);  // 7 * 11 * 2
    EXPECT_EQ(model.corrections().correction_torque, 6370.0);     // 5 * 13 * 49 * 2
}

TEST(sr_bind, turns_without_meaning_are_ratios_of_one) {
    for (const double file_turns : {0.0, 35.0}) {
        KZB_STORE store;
        sr_file(store, 3, coupled(3, 0.01, 0.0), always(0.0));
        kzb::put_double(store, "control", "turns_in_coil", file_turns);
        Calc_Eq_sr model;
        model.set_turns1(file_turns == 0.0 ? 20.0 : 0.0);
        model.bind(store, 3);
        EXPECT_EQ(model.corrections().turns1, 1.0);
        EXPECT_EQ(model.corrections().turns2, 1.0);
    }
}

TEST(sr_step, a_first_step_with_a_time_step_is_solved) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), always(0.0));
    Calc_Eq_sr model;
    model.bind(store, 3);
    const double v[3] = {10.0, -4.0, 0.0};
    model.step(v, 0.0, 1e-3, all_on.data());
    // L' = L on a first step: i = dt v / (dt R + L)
    EXPECT_NEAR(model.current_output(1), 0.01 / 0.0205, 1e-14);
    EXPECT_NEAR(model.current_output(2), -0.004 / 0.0205, 1e-14);
    EXPECT_EQ(model.current_output(3), 0.0);
    EXPECT_EQ(model.current_output(4), 0.0);
    EXPECT_EQ(model.voltage(1), 0.0);
}

TEST(sr_step, a_first_step_starts_from_what_was_set) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), always(0.0));
    Calc_Eq_sr model;
    model.bind(store, 3);
    model.set_initial_time(5.0);
    model.set_initial_current(2, 3.0);
    model.set_current(1, 50.0);
    model.set_current(1, 60.0);  // moves 50 to the previous value, which nobody set as an initial one
    const double v[3] = {};
    model.step(v, 0.0, 5.001, all_on.data());
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_NEAR(model.current_output(2), 0.02 * 3.0 / 0.0205, 1e-12);  // 5.001 - 5.0 is rounded
}

TEST(sr_step, follows_the_discrete_equation_of_coupled_phases) {
    // L[r][c] over the angle, linear between nodes of one degree.
    const auto element = [](std::size_t r, std::size_t c, double degrees) {
        return r == c ? 0.02 + 1e-4 * degrees : 1e-3 * static_cast<double>(1 + c) - 2e-5 * degrees;
    };
    for (const std::size_t n : {3U, 4U, 5U}) {
        KZB_STORE store;
        sr_file(
            store, static_cast<int>(n),
            [&](const std::vector<double>& x) { return element(row_of(x[2], n), column_of(x[2], n), x[1]); },
            always(0.0));
        Calc_Eq_sr model;
        model.bind(store, static_cast<int>(n));
        const double dt = 2e-4;
        std::vector<double> i(n, 0.0);
        for (int s = 1; s <= 6; ++s) {
            std::vector<double> v(5);
            for (std::size_t k = 0; k < n; ++k) {
                v[k] = 20.0 * std::cos(0.3 * s + static_cast<double>(k));
            }
            const double now = 3.0 * s;
            const double before = s == 1 ? now : 3.0 * (s - 1);
            model.step(v.data(), now * degree, s * dt, all_on.data());
            model.accept();
            std::vector<std::vector<double>> a(n, std::vector<double>(n));
            std::vector<double> b(n);
            for (std::size_t r = 0; r < n; ++r) {
                b[r] = dt * v[r];
                for (std::size_t c = 0; c < n; ++c) {
                    a[r][c] = 2 * element(r, c, now) - element(r, c, before) + (r == c ? dt * 0.5 : 0.0);
                    b[r] += element(r, c, now) * i[c];
                }
            }
            i = solved(a, b);
            for (std::size_t k = 0; k < n; ++k) {
                EXPECT_NEAR(model.current_output(static_cast<int>(k) + 1), i[k], 1e-11) << n << " " << s;
            }
        }
        EXPECT_GT(std::fabs(i[0]), 0.1);
    }
}

TEST(sr_step, a_phase_without_a_positive_signal_carries_no_current) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.004), always(0.0));
    Calc_Eq_sr model;
    model.bind(store, 3);
    const double v[3] = {10.0, 10.0, 10.0};
    const double signals[3] = {1.0, 0.0, -1.0};
    model.step(v, 0.0, 1e-3, signals);
    EXPECT_NEAR(model.current_output(1), 0.01 / 0.0205, 1e-14);
    EXPECT_NEAR(model.current_output(2), 0.0, 1e-14);
    EXPECT_NEAR(model.current_output(3), 0.0, 1e-14);
}

TEST(sr_step, resistance_follows_the_coil_temperature) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), always(0.0));
    Calc_Eq_sr model;
    model.bind(store, 3);
    model.set_temperature_correction(true);
    model.set_coil_temperature(393.15);
    const double v[3] = {10.0, 0.0, 0.0};
    model.step(v, 0.0, 1e-3, all_on.data());
    // 100 K at 3810 ppm: 1.381 * 0.5 Ohm
    EXPECT_NEAR(model.resistance(), 0.6905, 1e-15);
    EXPECT_NEAR(model.current_output(1), 0.01 / (0.02 + 1e-3 * 0.6905), 1e-14);
}

TEST(sr_step, rows_of_the_inductance_see_the_current_of_their_phase) {
    KZB_STORE store;
    // 1000 element + angle + |i| / 1000 is linear: the lookup gives it anywhere.
    sr_file(
        store, 3, [](const std::vector<double>& x) { return 1000.0 * x[2] + x[1] + x[0] / 1000.0; }, always(0.0));
    kzb::put_double(store, "control", "turns_in_coil", 10.0);
    Calc_Eq_sr model;
    model.set_turns2(20.0);
    model.set_correction_inductance(3.0);
    model.bind(store, 3);
    const double start[3] = {1.0, -2.0, 3.0};
    for (int k = 0; k < 3; ++k) {
        model.set_initial_current(k + 1, start[k]);
    }
    const double v[3] = {};
    model.step(v, 30.0 * degree, 0.0, all_on.data());
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            const double expected = 3.0 * (1000.0 * (3 * c + r) + 30.0 + 2.0 * std::fabs(start[r]) / 1000.0);
            EXPECT_NEAR(model.inductance_element(r + 1, c + 1), expected, 1e-10);
        }
    }
    for (const auto& [row, column] : {std::pair{0, 1}, {1, 0}, {4, 1}, {1, 4}, {-2147483647, 2147483647}}) {
        EXPECT_EQ(model.inductance_element(row, column), 0.0);
    }
}

TEST(sr_step, without_a_time_step_the_accepted_currents_stay) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), [](const std::vector<double>& x) { return x[1]; });
    Calc_Eq_sr model;
    model.bind(store, 3);
    const double v[3] = {10.0, 5.0, 0.0};
    model.step(v, 0.0, 1e-3, all_on.data());
    model.accept();
    const double i = model.current_output(1);
    const double more[3] = {500.0, 500.0, 500.0};
    for (const double time : {1e-3, 0.5e-3}) {
        model.step(more, 1.0, time, all_on.data());
        EXPECT_EQ(model.circuit().current[0], i);
        EXPECT_EQ(model.current_output(1), i);
        EXPECT_EQ(model.induced_voltage(1), 0.0);
    }
}

TEST(sr_step, without_a_time_step_terminal_currents_and_torque_are_those_of_the_last_solve) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), [](const std::vector<double>& x) { return x[1]; });
    Calc_Eq_sr model;
    model.bind(store, 3);
    model.set_initial_current(1, 7.0);
    const double v[3] = {};
    model.step(v, 0.0, 0.0, all_on.data());
    EXPECT_EQ(model.circuit().current[0], 7.0);
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_EQ(model.torque(), 0.0);
    EXPECT_NEAR(model.flux()[0], 0.14, 1e-15);  // flux takes the solved currents
}

TEST(sr_step, repeated_steps_of_a_sample_start_from_the_accepted_state) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.003), [](const std::vector<double>& x) { return x[0] + x[1]; });
    Calc_Eq_sr once;
    Calc_Eq_sr often;
    once.bind(store, 3);
    often.bind(store, 3);
    const double v[3] = {10.0, 5.0, -3.0};
    const double other[3] = {-99.0, 42.0, 1.0};
    for (int s = 1; s < 5; ++s) {
        once.step(v, 0.1 * s, 1e-3 * s, all_on.data());
        often.step(other, 0.3, 1e-3 * s + 2e-4, all_on.data());
        often.step(v, 0.1 * s, 1e-3 * s, all_on.data());
        once.accept();
        often.accept();
    }
    EXPECT_EQ(once.circuit().current, often.circuit().current);
    EXPECT_EQ(once.flux(), often.flux());
    EXPECT_EQ(once.torque(), often.torque());
}

// Torque table angle + 10000 j: the sum over phases shows angle and current of each.
TEST(sr_torque, phases_see_the_table_at_shifted_angles) {
    for (const int n : {3, 4, 5}) {
        KZB_STORE store;
        sr_file(
            store, n, coupled(static_cast<std::size_t>(n), 0.02, 0.0),
            [](const std::vector<double>& x) { return x[0] * x[0] + 1e4 * x[1]; }, nodes(-400.0, 400.0, 801));
        kzb::put_double(store, "control", "turns_in_coil", 10.0);
        Calc_Eq_sr model;
        model.set_turns2(20.0);
        model.set_correction_torque(3.0);
        model.bind(store, n);
        double currents = 0.0;
        for (int k = 1; k <= n; ++k) {
            model.set_current(k, 0.1 * k);
            currents += 0.1 * k;
        }
        model.set_position(12.0 * degree);
        double squares = 0.0;
        for (int k = 0; k < n; ++k) {
            const double a = 12.0 + k * 45.0 / n;  // 8 poles
            squares += a * a;
        }
        // Linear interpolation of a square over one degree lies up to 1/4 above it, for each phase.
        const double torque = model.evaluate_torque();
        EXPECT_GE(torque, 3.0 * (squares + 2e4 * currents) - 1e-6);
        EXPECT_LE(torque, 3.0 * (squares + 2e4 * currents + 0.25 * n) + 1e-6);
        EXPECT_EQ(model.torque(), torque);
    }
}

TEST_F(SrLookups, five_phases_are_a_fifth_of_the_pole_pitch_apart) {
    KZB_STORE store;
    sr_file(store, 5, coupled(5, 0.02, 0.0), always(0.0), nodes(-1000.0, 1000.0, 3), 6);
    Calc_Eq_sr model;
    model.bind(store, 5);
    model.set_position(0.0);
    store.debug_lines = true;
    model.evaluate_torque();
    const std::vector<Lookup> made = lookups();
    ASSERT_EQ(made.size(), 30U);
    for (std::size_t k = 0; k < 5; ++k) {
        EXPECT_NEAR(made[k].at[0], 12.0 * static_cast<double>(k), 1e-9);  // 360 / 6 / 5
    }
}

TEST(sr_torque, a_change_of_the_number_of_poles_acts_at_once) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), [](const std::vector<double>& x) { return x[0]; });
    Calc_Eq_sr model;
    model.bind(store, 3);
    EXPECT_NEAR(model.evaluate_torque(), 45.0, 1e-12);  // 0 + 15 + 30 degrees
    kzb::put_int(store, "control", "number_of_poles", 4);
    EXPECT_NEAR(model.evaluate_torque(), 90.0, 1e-12);
    const double v[3] = {};
    kzb::put_int(store, "control", "number_of_poles", 2);
    model.step(v, 0.0, 1e-3, all_on.data());
    EXPECT_NEAR(model.torque(), 180.0, 1e-12);
}

TEST(sr_torque, evaluation_takes_the_currents_that_were_set_and_updates_the_flux) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.001), [](const std::vector<double>& x) { return x[1]; });
    Calc_Eq_sr model;
    model.bind(store, 3);
    model.set_current(1, 4.0);
    model.set_current(2, -1.5);
    EXPECT_NEAR(model.evaluate_torque(), 2.5, 1e-13);
    EXPECT_NEAR(model.flux()[0], 0.02 * 4.0 - 0.001 * 1.5, 1e-15);
    EXPECT_NEAR(model.flux()[2], 0.001 * 2.5, 1e-15);
}

TEST(sr_history, induced_voltage_is_the_change_of_flux) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), always(0.0));
    Calc_Eq_sr model;
    model.bind(store, 3);
    const double v[3] = {10.0, 0.0, 0.0};
    model.step(v, 0.0, 1e-3, all_on.data());
    const double first = model.current_output(1);
    EXPECT_NEAR(model.induced_voltage(1), 0.02 * first / 1e-3, 1e-12);
    model.accept();
    EXPECT_EQ(model.induced_voltage(1), 0.0);  // time is the accepted one
    model.step(v, 0.0, 3e-3, all_on.data());
    EXPECT_NEAR(model.induced_voltage(1), 0.02 * (model.current_output(1) - first) / 2e-3, 1e-11);
    for (const int phase : {0, 4, 5, -1}) {
        EXPECT_EQ(model.induced_voltage(phase), 0.0);
    }
    model.set_time(2e-3);
    EXPECT_NEAR(model.induced_voltage(1), 0.02 * (model.current_output(1) - first) / 1e-3, 1e-11);
}

TEST_F(SrLookups, come_in_the_order_of_the_step) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), always(1.0));
    Calc_Eq_sr model;
    model.set_interpolation("Cubic");
    model.bind(store, 3);
    model.set_initial_current(2, 5.0);
    const double v[3] = {};
    store.debug_lines = true;
    model.step(v, 30.0 * degree, 1e-3, all_on.data());
    const std::vector<Lookup> made = lookups();
    ASSERT_EQ(made.size(), 21U);
    for (std::size_t k = 0; k < 9; ++k) {
        EXPECT_EQ(made[k].name, "inductance Cubic");
        EXPECT_EQ(made[k].at[0], k / 3 == 1 ? 5.0 : 0.0);
        EXPECT_NEAR(made[k].at[1], 30.0, 1e-9);
        EXPECT_EQ(made[k].at[2], static_cast<double>(3 * (k % 3) + k / 3));
        EXPECT_EQ(made[12 + k].name, "inductance Linear");
        EXPECT_EQ(made[12 + k].at[2], static_cast<double>(3 * (k % 3) + k / 3));
    }
    for (std::size_t k = 9; k < 12; ++k) {
        EXPECT_EQ(made[k].name, "torque_ibeta Cubic");
        EXPECT_NEAR(made[k].at[0], 30.0 + 15.0 * static_cast<double>(k - 9), 1e-8);
    }
    EXPECT_NEAR(made[10].at[1], model.current_output(2), 1e-9);
    EXPECT_NEAR(made[15].at[0], model.current_output(2), 1e-9);  // flux at the solved current
}

TEST_F(SrLookups, are_counted_one_by_one) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.0), always(1.0));
    Calc_Eq_sr model;
    model.bind(store, 3);
    const double v[3] = {1.0, 2.0, 3.0};
    const double before = store.timing[3];
    model.step(v, 0.3, 1e-3, all_on.data());
    // Linear over d axes makes 2^d - 1 calls: 18 lookups over three axes, 3 over two.
    EXPECT_EQ(store.timing[3] - before, 18.0 * 7.0 + 3.0 * 3.0);
}

// Largest difference between the model's currents and an integration of psi_k' = v_k - R i_k, psi_k = L_k(theta) i_k.
double largest_difference(double dt, double& largest_current) {
    const auto self = [](double degrees, double k) {
        return 0.02 + 0.008 * std::cos(4.0 * (degrees * degree) - k * 2.0 * pi / 3.0);
    };
    KZB_STORE store;
    sr_file(
        store, 3,
        [&](const std::vector<double>& x) {
            return row_of(x[2], 3) == column_of(x[2], 3) ? self(x[1], static_cast<double>(row_of(x[2], 3))) : 0.0;
        },
        always(0.0), nodes(0.0, 360.0, 721, true));
    Calc_Eq_sr model;
    model.bind(store, 3);
    const double speed = 150.0;  // rad/s
    const auto volts = [](double t, std::size_t k) { return 24.0 * std::cos(500.0 * t - static_cast<double>(k)); };
    const auto slope = [&](double t, const std::vector<double>& psi) {
        std::vector<double> d(3);
        for (std::size_t k = 0; k < 3; ++k) {
            d[k] = volts(t, k) - 0.5 * psi[k] / self(speed * t / degree, static_cast<double>(k));
        }
        return d;
    };
    std::vector<double> psi(3, 0.0);
    double difference = 0.0;
    for (int s = 1; s * dt < 0.02; ++s) {
        const double t = s * dt;
        psi = rk4(slope, psi, t - dt, dt);
        const double v[3] = {volts(t, 0), volts(t, 1), volts(t, 2)};
        model.step(v, speed * t, t, all_on.data());
        model.accept();
        for (std::size_t k = 0; k < 3; ++k) {
            const double i = psi[k] / self(speed * t / degree, static_cast<double>(k));
            largest_current = std::max(largest_current, std::fabs(i));
            difference = std::max(difference, std::fabs(model.current_output(static_cast<int>(k) + 1) - i));
        }
    }
    return difference;
}

// The step is implicit Euler, of first order: half the time step halves the difference. What the table's straight lines
// between nodes of half a degree add, 0.008 H * (4 * 0.5 degrees)^2 / 8 of 0.012 H, is 0.0001 of the current.
TEST(sr_physics, converges_to_the_phase_equations) {
    double current = 0.0;
    const double coarse = largest_difference(2e-5, current);
    const double fine = largest_difference(1e-5, current);
    EXPECT_GT(current, 2.0);
    EXPECT_LT(fine, 0.02 * current);
    EXPECT_NEAR(fine / coarse, 0.5, 0.05);
}

TEST(sr_safety, nothing_happens_to_a_model_without_a_store) {
    Calc_Eq_sr model;
    model.step(all_on.data(), 1.0, 1.0, all_on.data());
    model.set_initial_current(1, 2.0);
    model.set_current(1, 2.0);
    model.accept();
    EXPECT_EQ(model.evaluate_torque(), 0.0);
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_EQ(model.induced_voltage(1), 0.0);
    EXPECT_EQ(model.inductance_element(1, 1), 0.0);
}

TEST(sr_safety, a_file_without_tables_is_stepped) {
    KZB_STORE store;
    for (const int phases : {3, 4, 5, 0, 2, 6, -5, 2147483647}) {
        Calc_Eq_sr model;
        model.bind(store, phases);
        model.step(all_on.data(), 1.0, 1e-3, all_on.data());
        model.accept();
        model.evaluate_torque();
        EXPECT_EQ(model.circuit().phase_count, phases >= 3 && phases <= 5 ? phases : 0);
        EXPECT_EQ(store.error, phases >= 3 && phases <= 5 ? store.error : 0);
        store.error = 0;
    }
}

TEST(sr_safety, odd_numbers_do_no_harm) {
    for (const double odd : odd_numbers()) {
        KZB_STORE store;
        sr_file(store, 3, coupled(3, 0.02, 0.001), always(1.0), nodes(0.0, 360.0, 9, true));
        Calc_Eq_sr model;
        model.bind(store, 3);
        for (const int phase : odd_phases()) {
            model.set_initial_current(phase, odd);
            model.set_current(phase, odd);
            EXPECT_EQ(model.current_output(phase), 0.0);
            EXPECT_EQ(model.induced_voltage(phase), 0.0);
        }
        model.set_initial_current(1, odd);
        const double v[3] = {odd, 1.0, odd};
        const double signals[3] = {1.0, odd, 1.0};
        model.step(v, odd, 1e-3, signals);
        model.accept();
        model.step(v, odd, odd, signals);
        model.set_current(2, odd);
        model.evaluate_torque();
        kzb::put_int(store, "control", "number_of_poles", 0);
        model.evaluate_torque();
        // Nothing of it outlives the model: a fresh one on the same store steps as if nothing had been.
        kzb::put_int(store, "control", "number_of_poles", 8);
        KZB_STORE untouched;
        sr_file(untouched, 3, coupled(3, 0.02, 0.001), always(1.0), nodes(0.0, 360.0, 9, true));
        kzb::put_int(untouched, "control", "number_of_poles", 8);
        Calc_Eq_sr after;
        Calc_Eq_sr alone;
        for (Calc_Eq_sr* const fresh : {&after, &alone}) {
            fresh->bind(fresh == &after ? store : untouched, 3);
            fresh->step(all_on.data(), 0.3, 1e-3, all_on.data());
        }
        EXPECT_TRUE(std::isfinite(alone.current_output(1)));
        EXPECT_NE(alone.current_output(1), 0.0);
        for (const int coil : {1, 2, 3}) {
            EXPECT_EQ(after.current_output(coil), alone.current_output(coil));
        }
        EXPECT_EQ(after.evaluate_torque(), alone.evaluate_torque());
    }
}

TEST(sr_history, reset_forgets_everything) {
    KZB_STORE store;
    sr_file(store, 3, coupled(3, 0.02, 0.001), always(1.0));
    Calc_Eq_sr model;
    model.set_turns1(3.0);
    model.set_correction_steel(2.0);
    model.bind(store, 3);
    model.step(all_on.data(), 0.3, 1e-3, all_on.data());
    model.accept();
    model.reset();
    EXPECT_TRUE(model.circuit().current.empty());
    EXPECT_TRUE(model.flux().empty());
    EXPECT_TRUE(model.circuit().network.elements.empty());
    EXPECT_EQ(model.corrections().turns1, 0.0);
    EXPECT_EQ(model.corrections().correction_steel, 1.0);
    EXPECT_EQ(model.corrections().correction_torque, 1.0);
    EXPECT_EQ(model.circuit().step_count, 1);
    EXPECT_EQ(model.circuit().time, 0.0);
    EXPECT_EQ(model.circuit().time_prev, 0.0);
    EXPECT_EQ(model.torque(), 0.0);
    EXPECT_EQ(model.circuit().R_base, 0.0);
}

TEST_F(SrLookups, a_dump_writes_what_the_machine_has) {
    KZB_STORE store;
    sr_file(
        store, 3, [](const std::vector<double>& x) { return x[2] - 4.0; }, always(0.25));
    Calc_Eq_sr model;
    model.bind(store, 3);
    model.set_debug_dump(true);
    model.set_initial_current(1, 2.5);
    model.set_initial_current(2, 0.5);
    const double v[3] = {};
    model.step(v, 0.0, 0.0, all_on.data());
    std::string expected = "##### time = 0.0000E+00 (         1 step)#####\nInductance Matrix\n";
    // Element 3 c + r less 4, row by row, four to a line.
    const double rows[9] = {-4, -1, 2, -3, 0, 3, -2, 1, 4};
    for (int k = 0; k < 9; ++k) {
        expected += printed("% 10.4E ", rows[k]);
        expected += k % 4 == 3 ? "\n" : "";
    }
    expected += "\n\n\n\n\n\n";
    expected += "Current For Torque Reference\n 2.0000E+00  0.0000E+00\nTorque\n 7.5000E-01\n\n";
    EXPECT_EQ(text_of("KZSR.txt"), expected);
    model.step(v, 0.0, 0.0, all_on.data());
    EXPECT_EQ(text_of("KZSR.txt"), expected + expected);
}

}  // namespace
}  // namespace kzb_test::sr_step_test
