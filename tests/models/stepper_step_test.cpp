// The two-phase stepping motor: binding, the step's equation, inductances, magnet flux, torque, histories.
#include "coil_files.h"

namespace kzb_test::stepper_step_test {
namespace {

using kzb::Calc_Eq_sm;
using StepperLookups = OwnDirectory;

constexpr double degree = pi / 180.0;

void feed(Calc_Eq_sm& model, const std::vector<double>& v, double position, double time) {
    model.step(v[0], v[1], v[2], v[3], position, time, 1.0, 1.0, 1.0, 1.0);
}

TEST(stepper_bind, takes_resistance_four_coils_and_pole_pairs) {
    // 5 poles are two and a half pairs: cut toward zero.
    for (const auto& [poles, pairs] : {std::pair{4, 2}, {5, 2}, {1, 0}, {-5, -2}, {2147483647, 1073741823}}) {
        KZB_STORE store;
        stepper_file(store, coupled(4, 0.02, 0.0), always(0.0), always(0.0), nodes(0.0, 1.0, 2), poles);
        Calc_Eq_sm model;
        model.bind(store);
        EXPECT_EQ(store.motor, "2-PhaseStepping");
        EXPECT_EQ(model.pole_pairs(), pairs);
        EXPECT_EQ(model.resistance(), 0.5);  // RA+
        EXPECT_EQ(model.circuit().element_count, 4);
        EXPECT_EQ(model.circuit().network.pattern, 4);
    }
}

TEST(stepper_bind, folds_turns_and_corrections) {
    KZB_STORE store;
    stepper_file(store, coupled(4, 0.02, 0.0), always(0.0), always(0.0));
    kzb::put_double(store, "control", "turns_in_coil", 4.0);
    Calc_Eq_sm model;
    model.set_turns1(8.0);
    model.set_turns2(2.0);
    model.set_correction_flux(3.0);
    model.set_correction_magnet(5.0);
    model.set_correction_steel(7.0);
    model.set_correction_inductance(11.0);
    model.set_correction_torque(13.0);
    model.bind(store);
    EXPECT_EQ(model.corrections().correction_flux, 105.0);        // 1/2 * 3 * 2 * 5 * 7
    EXPECT_EQ(model.corrections().correction_inductance, 154.0);  // 7 * 11 * 2
    EXPECT_EQ(model.corrections().correction_torque, 6370.0);     // 5 * 13 * 49 * 2
}

// dt R i_k + sum over c of (2 L - L')_kc i_c = sum over c of L_kc I_c + dt d_k
TEST(stepper_step, follows_the_discrete_equation_of_coupled_coils) {
    const auto element = [](std::size_t r, std::size_t c, double degrees) {
        return r == c ? 0.02 + 1e-4 * degrees : 1e-3 * static_cast<double>(1 + 2 * c) - 2e-5 * degrees;
    };
    KZB_STORE store;
    stepper_file(
        store, [&](const std::vector<double>& x) { return element(row_of(x[2], 4), column_of(x[2], 4), x[1]); },
        always(0.0), always(0.0));
    Calc_Eq_sm model;
    model.bind(store);
    const double dt = 2e-4;
    std::vector<double> i(4, 0.0);
    for (int s = 1; s <= 6; ++s) {
        std::vector<double> v(4);
        for (std::size_t k = 0; k < 4; ++k) {
            v[k] = 20.0 * std::cos(0.3 * s + static_cast<double>(k));
        }
        const double now = 3.0 * s;
        const double before = s == 1 ? now : 3.0 * (s - 1);
        feed(model, v, now * degree, s * dt);
        model.accept();
        std::vector<std::vector<double>> a(4, std::vector<double>(4));
        std::vector<double> b(4);
        for (std::size_t r = 0; r < 4; ++r) {
            b[r] = dt * v[r];
            for (std::size_t c = 0; c < 4; ++c) {
                a[r][c] = 2 * element(r, c, now) - element(r, c, before) + (r == c ? dt * 0.5 : 0.0);
                b[r] += element(r, c, now) * i[c];
            }
        }
        i = solved(a, b);
        for (std::size_t k = 0; k < 4; ++k) {
            EXPECT_NEAR(model.current_output(static_cast<int>(k) + 1), i[k], 1e-11) << s;
        }
    }
    EXPECT_GT(std::fabs(i[0]), 0.1);
}

TEST(stepper_step, a_coil_without_a_positive_signal_carries_no_current) {
    KZB_STORE store;
    stepper_file(store, coupled(4, 0.02, 0.004), always(0.0), always(0.0));
    Calc_Eq_sm model;
    model.bind(store);
    model.step(10.0, 10.0, 10.0, 10.0, 0.0, 1e-3, 0.0, 2.0, -1.0, 0.0);
    const double expected[4] = {0.0, 0.01 / 0.0205, 0.0, 0.0};
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(model.current_output(k + 1), expected[k], 1e-14);
    }
}

TEST(stepper_step, only_the_first_phase_counts_turns_in_its_inductances) {
    KZB_STORE store;
    stepper_file(
        store, [](const std::vector<double>& x) { return 1000.0 * x[2] + x[1] + x[0]; }, always(0.0), always(0.0));
    kzb::put_double(store, "control", "turns_in_coil", 10.0);
    Calc_Eq_sm model;
    model.set_turns2(20.0);
    model.set_correction_inductance(3.0);
    model.bind(store);
    const double start[4] = {1.0, 4.0, 7.0, 2.0};
    for (int k = 0; k < 4; ++k) {
        model.set_initial_current(k + 1, start[k]);
    }
    feed(model, {0, 0, 0, 0}, 30.0 * degree, 0.0);
    for (std::size_t r = 0; r < 4; ++r) {
        for (std::size_t c = 0; c < 4; ++c) {
            const double current = r < 2 ? 6.0 : 5.0;  // 2 |1 - 4|, and |7 - 2| alone
            const auto number = static_cast<double>(4 * c + r);
            EXPECT_NEAR(model.circuit().inductance[4 * r + c], 3.0 * (1000.0 * number + 30.0 + current), 1e-10);
        }
    }
    EXPECT_EQ(model.phase_current_memo(), 5.0);
}

TEST(stepper_step, the_same_change_in_both_halves_of_a_phase_changes_no_lookup) {
    const auto run = [](double common) {
        KZB_STORE store;
        stepper_file(
            store, [](const std::vector<double>& x) { return 0.02 + 0.001 * x[0] + 1e-4 * x[2]; }, always(0.0),
            [](const std::vector<double>& x) { return x[0] - 2.0 * x[2]; });
        Calc_Eq_sm model;
        model.bind(store);
        for (int k = 1; k <= 4; ++k) {
            model.set_current(k, k == 2 || k == 3 ? -1.0 + common : 2.0 + common);
            model.set_current(k, k == 2 || k == 3 ? -1.0 + common : 2.0 + common);
        }
        std::vector<double> seen = {model.evaluate_torque()};
        seen.insert(seen.end(), model.circuit().inductance.begin(), model.circuit().inductance.end());
        return seen;
    };
    EXPECT_EQ(run(0.0), run(64.0));
}

TEST(stepper_step, voltage_lags_by_one_accepted_step) {
    KZB_STORE store;
    // A spline through points of a line is the line: coil k gives (k + 1) * angle / 100.
    stepper_file(
        store, coupled(4, 0.02, 0.0), [](const std::vector<double>& x) { return (x[1] + 1.0) * x[0] / 100.0; },
        always(0.0));
    Calc_Eq_sm model;
    model.set_correction_flux(2.0);
    model.bind(store);
    feed(model, {1, 1, 1, 1}, 10.0 * degree, 1e-2);
    EXPECT_NE(model.current_output(1), 0.0);
    for (int k = 1; k <= 4; ++k) {
        EXPECT_EQ(model.voltage_new()[static_cast<std::size_t>(k - 1)], 0.0);
        EXPECT_NEAR(model.magnet_flux_of(k), 0.2 * k, 1e-13);
    }
    model.accept();
    feed(model, {1, 1, 1, 1}, 30.0 * degree, 2e-2);
    for (int k = 1; k <= 4; ++k) {
        EXPECT_EQ(model.voltage(k), 0.0);
        EXPECT_NEAR(model.voltage_new()[static_cast<std::size_t>(k - 1)], 0.4 * k / 0.01, 1e-9);
    }
    model.accept();
    for (int k = 1; k <= 4; ++k) {
        EXPECT_NEAR(model.voltage(k), 40.0 * k, 1e-9);
    }
    feed(model, {1, 1, 1, 1}, 30.0 * degree, 3e-2);
    EXPECT_NEAR(model.voltage(1), 40.0, 1e-9);
    EXPECT_EQ(model.voltage(0), 0.0);
    EXPECT_EQ(model.voltage(5), 0.0);
    EXPECT_EQ(model.magnet_flux_of(0), 180042.0);
    EXPECT_EQ(model.magnet_flux_of(5), 180042.0);
}

TEST(stepper_step, without_a_time_step_the_accepted_currents_stay) {
    KZB_STORE store;
    stepper_file(store, coupled(4, 0.02, 0.0), always(0.0), always(0.0));
    Calc_Eq_sm model;
    model.bind(store);
    model.set_initial_current(3, 7.0);
    feed(model, {500, 500, 500, 500}, 0.0, 0.0);
    EXPECT_EQ(model.circuit().current, (std::vector<double>{0.0, 0.0, 7.0, 0.0}));
    EXPECT_EQ(model.current_output(3), 0.0);  // of the last solve
}

// Magnet factor 0.89: 0.11 of the flux is missing.
TEST(stepper_torque, a_warm_magnet_takes_its_part) {
    KZB_STORE store;
    stepper_file(
        store, coupled(4, 0.02, 0.0), [](const std::vector<double>& x) { return 0.1 * (x[1] + 1.0); },
        [](const std::vector<double>& x) { return 10.0 * x[0] + x[1] + 1000.0 * x[2]; });
    kzb::put_double(store, "control", "turns_in_coil", 10.0);
    Calc_Eq_sm model;
    model.set_turns2(20.0);
    model.set_correction_torque(3.0);
    model.bind(store);
    model.set_temperature_correction(true);
    model.set_magnet_temperature(393.15);
    const double i[4] = {1.5, 0.25, -2.0, 0.75};
    for (int k = 0; k < 4; ++k) {
        model.set_current(k + 1, i[k]);
    }
    model.set_position(20.0 * degree);
    // Two pole pairs: the coils of A see sin(2 x), those of B, half a pole pitch on, sin(2 x - 90 degrees) = -cos(2 x).
    // The flux correction is the folded one: 2 (turns2).
    const double s = std::sin(40.0 * degree);
    const double c = std::cos(40.0 * degree);
    const double term = 2.0 * 0.11 * 2.0 * (s * (0.1 * i[0] - 0.2 * i[1]) - c * (0.3 * i[2] - 0.4 * i[3]));
    const double table = 10.0 * 2.0 * (i[0] - i[1]) + 20.0 + 1000.0 * 2.0 * (i[2] - i[3]);
    EXPECT_NEAR(model.evaluate_torque(), 3.0 * table - term, 1e-9);
    EXPECT_NEAR(model.magnet().flux_temperature_delta[3], 0.11 * 0.4 * 2.0, 1e-14);
}

TEST(stepper_torque, a_step_takes_terminal_currents_and_the_evaluation_solved_ones_for_the_magnet) {
    KZB_STORE store;
    stepper_file(store, coupled(4, 0.02, 0.0), always(0.5), always(1.0));
    Calc_Eq_sm model;
    model.bind(store);
    model.set_temperature_correction(true);
    model.set_magnet_temperature(393.15);
    model.set_initial_current(1, 3.0);
    feed(model, {0, 0, 0, 0}, 45.0 * degree, 0.0);  // no solve: current is 3 A, terminal currents are 0
    EXPECT_EQ(model.torque(), 1.0);
    EXPECT_NEAR(model.evaluate_torque(), 1.0 - 2.0 * 0.11 * 0.5 * 3.0, 1e-14);
}

TEST(stepper_torque, evaluation_updates_flux_and_inductance) {
    KZB_STORE store;
    stepper_file(
        store, [](const std::vector<double>& x) { return 0.01 + 0.001 * x[0]; },
        [](const std::vector<double>& x) { return x[0] / 100.0; }, always(1.0));
    Calc_Eq_sm model;
    model.bind(store);
    model.set_position(30.0 * degree);
    model.set_current(1, 5.0);
    model.set_current(1, 6.0);  // 5 A are the previous current now
    model.evaluate_torque();
    EXPECT_NEAR(model.magnet_flux_of(2), 0.3, 1e-14);
    EXPECT_NEAR(model.circuit().inductance[0], 0.015, 1e-15);
    EXPECT_NEAR(model.circuit().inductance[8], 0.01, 1e-15);
    EXPECT_EQ(model.current_output(1), 6.0);
    EXPECT_EQ(model.circuit().current_prev[0], 5.0);
}

TEST(stepper_history, induced_voltage_is_the_change_of_linkage) {
    KZB_STORE store;
    stepper_file(
        store, coupled(4, 0.02, 0.003), [](const std::vector<double>& x) { return (x[1] + 1.0) * x[0] / 100.0; },
        always(0.0));
    Calc_Eq_sm model;
    model.bind(store);
    feed(model, {1, -2, 3, 5}, 10.0 * degree, 1e-2);
    const auto linkage = [&](std::size_t k, double degrees) {
        double sum = 0.01 * static_cast<double>(k + 1) * degrees;
        for (std::size_t j = 0; j < 4; ++j) {
            sum += (j == k ? 0.02 : 0.003) * model.circuit().current[j];
        }
        return sum;
    };
    std::vector<double> first;
    for (std::size_t k = 0; k < 4; ++k) {
        first.push_back(linkage(k, 10.0));
    }
    model.accept();
    EXPECT_EQ(model.induced_voltage(1), 0.0);
    feed(model, {1, -2, 3, 5}, 14.0 * degree, 3e-2);
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_NEAR(model.induced_voltage(static_cast<int>(k) + 1), (linkage(k, 14.0) - first[k]) / 2e-2, 1e-10);
    }
    EXPECT_NEAR(model.induced_voltage(5), 180042.0 / 2e-2, 1e-6);
    EXPECT_EQ(model.induced_voltage(0), 0.0);
    EXPECT_EQ(model.induced_voltage(6), 0.0);
}

TEST(stepper_history, only_the_first_element_of_the_last_row_is_told) {
    KZB_STORE store;
    stepper_file(
        store, [](const std::vector<double>& x) { return x[2]; }, always(0.0), always(0.0));
    Calc_Eq_sm model;
    model.bind(store);
    feed(model, {0, 0, 0, 0}, 0.0, 1e-3);
    for (int row = 1; row <= 4; ++row) {
        EXPECT_NEAR(model.inductance_element(row, 1), 3.0, 1e-15);
        EXPECT_EQ(model.inductance_element(row, 2), 0.0);
    }
    EXPECT_EQ(model.inductance_element(0, 1), 0.0);
    EXPECT_EQ(model.inductance_element(5, 1), 0.0);
}

TEST_F(StepperLookups, come_in_the_order_of_the_step) {
    KZB_STORE store;
    stepper_file(store, coupled(4, 0.02, 0.0), always(0.4), always(1.0));
    Calc_Eq_sm model;
    model.set_interpolation("Cubic");
    model.bind(store);
    model.set_initial_current(1, 3.0);
    model.set_initial_current(4, 8.0);
    store.debug_lines = true;
    feed(model, {1, 2, 3, 4}, 30.0 * degree, 1e-3);
    const std::vector<Lookup> made = lookups();
    ASSERT_EQ(made.size(), 25U);
    for (std::size_t k = 0; k < 8; ++k) {
        EXPECT_EQ(made[k].name, "flux Spline");
        EXPECT_EQ(made[k].at[1], static_cast<double>(k / 2));
    }
    for (std::size_t k = 0; k < 16; ++k) {
        EXPECT_EQ(made[8 + k].name, "inductance Cubic");
        EXPECT_EQ(made[8 + k].at[0], k < 8 ? 3.0 : 8.0);
        EXPECT_EQ(made[8 + k].at[2], static_cast<double>(4 * (k % 4) + k / 4));
    }
    EXPECT_EQ(made[24].name, "torque_ibeta Cubic");
    EXPECT_NEAR(made[24].at[0], model.current_output(1) - model.current_output(2), 1e-9);
    EXPECT_NEAR(made[24].at[1], 30.0, 1e-9);
    model.evaluate_torque();
    const std::vector<Lookup> again = lookups();
    ASSERT_EQ(again.size(), 25U);
    EXPECT_EQ(again[8].name, "torque_ibeta Cubic");
    EXPECT_EQ(again[9].name, "inductance Cubic");
}

// The full machine, fed as a simulator does: the voltage less that of the accepted step.
double largest_difference(double dt, double& largest_current) {
    KZB_STORE store;
    const auto magnet = [](std::size_t k, double angle) {
        return 0.05 * std::cos(2.0 * angle - (k < 2 ? 0.0 : pi / 2)) * (k % 2 == 0 ? 1.0 : -1.0);
    };
    stepper_file(
        store, coupled(4, 0.02, 0.0),
        [&](const std::vector<double>& x) { return magnet(static_cast<std::size_t>(x[1]), x[0] * degree); },
        always(0.0), nodes(0.0, 360.0, 361, true));
    Calc_Eq_sm model;
    model.bind(store);
    const double speed = 80.0;
    const auto volts = [](double t, std::size_t k) {
        return 12.0 * std::cos(200.0 * t - 0.7 * static_cast<double>(k));
    };
    const auto slope = [&](double t, const std::vector<double>& psi) {
        std::vector<double> d(4);
        for (std::size_t k = 0; k < 4; ++k) {
            d[k] = volts(t, k) - 0.5 * (psi[k] - magnet(k, speed * t)) / 0.02;
        }
        return d;
    };
    // Starts with the magnet's linkage and no current.
    std::vector<double> psi(4);
    for (std::size_t k = 0; k < 4; ++k) {
        psi[k] = magnet(k, 0.0);
    }
    double difference = 0.0;
    for (int n = 0; n * dt < 0.04; ++n) {
        const double t = n * dt;
        if (n > 0) {
            psi = rk4(slope, psi, t - dt, dt);
        }
        std::vector<double> d(4);
        for (std::size_t k = 0; k < 4; ++k) {
            d[k] = volts(t, k) - model.voltage(static_cast<int>(k) + 1);
        }
        feed(model, d, speed * t, t);
        model.accept();
        for (std::size_t k = 0; k < 4; ++k) {
            const double i = (psi[k] - magnet(k, speed * t)) / 0.02;
            largest_current = std::max(largest_current, std::fabs(i));
            difference = std::max(difference, std::fabs(model.current_output(static_cast<int>(k) + 1) - i));
        }
    }
    return difference;
}

// First order: implicit Euler, and the magnet's voltage lags by one step.
TEST(stepper_physics, converges_to_the_coil_equations) {
    double current = 0.0;
    const double coarse = largest_difference(2e-5, current);
    const double fine = largest_difference(1e-5, current);
    EXPECT_GT(current, 2.0);
    EXPECT_LT(fine, 0.02 * current);
    EXPECT_NEAR(fine / coarse, 0.5, 0.05);
}

TEST(stepper_safety, nothing_happens_to_a_model_without_a_store) {
    Calc_Eq_sm model;
    feed(model, {1, 1, 1, 1}, 1.0, 1.0);
    model.set_current(1, 2.0);
    model.accept();
    EXPECT_EQ(model.evaluate_torque(), 0.0);
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_EQ(model.inductance_element(1, 1), 0.0);
    EXPECT_EQ(model.magnet_flux_of(1), 180042.0);
    model.set_time(2.0);
    EXPECT_EQ(model.induced_voltage(6), 0.0);
    model.induced_voltage(1);
}

TEST(stepper_safety, a_file_without_tables_is_stepped) {
    KZB_STORE store;
    Calc_Eq_sm model;
    model.bind(store);
    feed(model, {1, 1, 1, 1}, 1.0, 1e-3);
    model.accept();
    model.evaluate_torque();
}

TEST(stepper_safety, odd_numbers_do_no_harm) {
    for (const double odd : odd_numbers()) {
        KZB_STORE store;
        stepper_file(store, coupled(4, 0.02, 0.001), always(0.1), always(1.0), nodes(0.0, 360.0, 9, true));
        Calc_Eq_sm model;
        model.bind(store);
        for (const int phase : odd_phases()) {
            model.set_initial_current(phase, odd);
            model.set_current(phase, odd);
            EXPECT_EQ(model.current_output(phase), 0.0);
            EXPECT_EQ(model.induced_voltage(phase), 0.0);
        }
        model.set_initial_current(1, odd);
        feed(model, {odd, 1.0, odd, 0.0}, odd, 1e-3);
        model.accept();
        model.step(odd, odd, odd, odd, odd, odd, odd, odd, odd, odd);
        model.evaluate_torque();
    }
}

TEST(stepper_history, reset_forgets_everything) {
    KZB_STORE store;
    stepper_file(store, coupled(4, 0.02, 0.001), always(0.1), always(1.0));
    Calc_Eq_sm model;
    model.set_turns2(3.0);
    model.bind(store);
    feed(model, {1, 1, 1, 1}, 0.1, 1e-3);
    model.accept();
    model.reset();
    EXPECT_EQ(model.magnet_flux_of(1), 180042.0);
    EXPECT_EQ(model.voltage(1), 0.0);
    EXPECT_EQ(model.torque(), 0.0);
    EXPECT_EQ(model.pole_pairs(), 0);
    EXPECT_EQ(model.corrections().turns2, 0.0);
    EXPECT_EQ(model.circuit().step_count, 1);
    EXPECT_TRUE(model.circuit().network.elements.empty());
}

TEST_F(StepperLookups, a_dump_writes_one_record_a_step) {
    KZB_STORE store;
    stepper_file(
        store, [](const std::vector<double>& x) { return x[2] - 5.0; }, always(-0.25), always(2.0));
    kzb::put_double(store, "control", "turns_in_coil", 10.0);
    Calc_Eq_sm model;
    model.set_turns2(20.0);
    model.bind(store);
    model.set_debug_dump(true);
    model.set_correction_flux(1.0);
    const double start[4] = {1.0, 4.0, 7.0, 2.0};
    for (int k = 0; k < 4; ++k) {
        model.set_initial_current(k + 1, start[k]);
    }
    feed(model, {0, 0, 0, 0}, 0.0, 0.0);
    std::string expected =
        "##### time = 0.0000E+00 (         1 step)#####\nAngle For Flux Reference [deg]\n 0.0000E+00\n"
        "Flux Linkage\n-2.5000E-01 -2.5000E-01 -2.5000E-01 -2.5000E-01 \nCurrent For Inductance Referenece\n"
        " 3.0000E+00  5.0000E+00\nInductance Matrix\n";
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            expected += printed("% 10.4E ", 4 * c + r - 5.0);
        }
        expected += "\n";
    }
    expected += "Current For Torque Reference\n-3.0000E+00  5.0000E+00\nTorque\n 2.0000E+00\n\n";
    EXPECT_EQ(text_of("KZstep.txt"), expected);
}

}  // namespace
}  // namespace kzb_test::stepper_step_test
