// The linear solenoid: binding, the step's equation, magnet flux, force, histories.
#include "coil_files.h"

namespace kzb_test::solenoid_step_test {
namespace {

using kzb::Calc_Eq_solenoid;
using SolenoidLookups = OwnDirectory;

TEST(solenoid_bind, takes_resistance_limits_and_one_coil) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.0), always(0.0));
    kzb::put_double(store, "parameter", "DispLimitMax", 0.03);
    kzb::put_double(store, "parameter", "DispLimitMin", -0.01);
    Calc_Eq_solenoid model;
    model.bind(store);
    EXPECT_EQ(store.motor, "LinearSolenoid");
    EXPECT_EQ(model.resistance(), 0.5);
    EXPECT_EQ(model.circuit().element_count, 1);
    EXPECT_EQ(model.circuit().phase_count, 1);
    EXPECT_EQ(model.upper_limit(), 0.03);
    EXPECT_EQ(model.lower_limit(), -0.01);
    // Nothing holds the plunger to its stroke.
    model.step(0.0, 0.5, 1e-3, 1.0);
    EXPECT_EQ(model.position(), 0.5);
}

TEST(solenoid_bind, folds_turns_and_corrections) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.0), always(0.0));
    kzb::put_double(store, "control", "turns_in_coil", 4.0);
    Calc_Eq_solenoid model;
    model.set_turns1(8.0);
    model.set_turns2(2.0);
    model.set_correction_flux(3.0);
    model.set_correction_magnet(5.0);
    model.set_correction_steel(7.0);
    model.set_correction_inductance(11.0);
    model.set_correction_force(13.0);
    model.bind(store);
    EXPECT_EQ(model.corrections().correction_flux, 105.0);        // 1/2 * 3 * 2 * 5 * 7
    EXPECT_EQ(model.corrections().correction_inductance, 154.0);  // 7 * 11 * 2
    EXPECT_EQ(model.corrections().correction_torque, 6370.0);     // 5 * 13 * 49 * 2
}

// Constant L: i_n = v / R * (1 - q^n), q = L / (L + dt R), which tends to v / R * (1 - exp(-t R / L)).
TEST(solenoid_step, current_rises_as_of_a_coil_with_resistance) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.0), always(0.0));
    Calc_Eq_solenoid model;
    model.bind(store);
    const double dt = 1e-4;
    const double q = 0.02 / (0.02 + dt * 0.5);
    for (int n = 1; n <= 1000; ++n) {
        model.step(10.0 - model.voltage(1), 0.1, n * dt, 1.0);
        model.accept();
        EXPECT_NEAR(model.current_output(1), 20.0 * (1.0 - std::pow(q, n)), 1e-10);
        // dt R / (2 L) of the time constant, times the largest value of x exp(-x) = 1 / e, times 20 A
        EXPECT_NEAR(model.current_output(1), 20.0 * (1.0 - std::exp(-n * dt * 25.0)), 20.0 * dt * 25.0 / 2.0 * 0.37);
    }
    EXPECT_EQ(model.current_output(2), 0.0);
}

// (2 L - L' + dt R) i = L I + dt v, with L linear over the position.
TEST(solenoid_step, follows_the_discrete_equation_with_moving_plunger) {
    KZB_STORE store;
    const auto l = [](double x) { return 0.02 + 0.3 * x; };
    solenoid_file(
        store, [&](const std::vector<double>& x) { return l(x[1]); }, always(0.0), always(0.0));
    Calc_Eq_solenoid model;
    model.bind(store);
    double i = 0.0;
    const double dt = 1e-4;
    for (int n = 1; n < 6; ++n) {
        const double now = l(1e-3 * n);
        const double before = n == 1 ? now : l(1e-3 * (n - 1));
        model.step(7.0, 1e-3 * n, n * dt, 1.0);
        model.accept();
        i = (now * i + dt * 7.0) / (2 * now - before + dt * 0.5);
        EXPECT_NEAR(model.current_output(1), i, 1e-12);
    }
    EXPECT_GT(i, 0.1);
}

TEST(solenoid_step, inductance_takes_the_size_of_the_accepted_current) {
    KZB_STORE store;
    solenoid_file(
        store, [](const std::vector<double>& x) { return 1.0 + x[0] + x[1] / 10.0; }, always(0.0), always(0.0));
    kzb::put_double(store, "control", "turns_in_coil", 10.0);
    Calc_Eq_solenoid model;
    model.set_turns2(20.0);
    model.set_correction_inductance(3.0);
    model.bind(store);
    model.set_initial_current(1, -4.0);
    model.step(0.0, 0.5, 0.0, 1.0);
    EXPECT_NEAR(model.inductance_element(1, 1), 3.0 * (1.0 + 8.0 + 0.05), 1e-12);
    for (const auto& [row, column] : {std::pair{1, 2}, {2, 1}, {0, 1}, {1, 0}}) {
        EXPECT_EQ(model.inductance_element(row, column), 0.0);
    }
}

TEST(solenoid_step, without_a_positive_signal_no_current_flows) {
    for (const double signal : {0.0, -1.0}) {
        KZB_STORE store;
        solenoid_file(store, always(0.02), always(0.0), always(0.0));
        Calc_Eq_solenoid model;
        model.bind(store);
        model.step(10.0, 0.0, 1e-3, signal);
        EXPECT_NEAR(model.current_output(1), 0.0, 1e-14);
    }
}

TEST(solenoid_step, voltage_is_the_change_of_magnet_flux_and_none_at_first) {
    KZB_STORE store;
    solenoid_file(
        store, always(0.02), [](const std::vector<double>& x) { return 0.4 * x[0]; }, always(0.0), nodes(-1.0, 1.0, 9));
    Calc_Eq_solenoid model;
    model.set_correction_flux(2.0);
    model.bind(store);
    model.step(1.0, 0.1, 1e-3, 1.0);
    EXPECT_EQ(model.voltage(1), 0.0);
    EXPECT_NE(model.current_output(1), 0.0);
    model.accept();
    model.step(1.0, 0.15, 3e-3, 1.0);
    // A spline through points of a line is the line: 2 * 0.4 * 0.05 / 0.002
    EXPECT_NEAR(model.voltage(1), 20.0, 1e-10);
    EXPECT_NEAR(model.magnet_flux_of(1), 0.12, 1e-14);
    EXPECT_EQ(model.voltage(2), 0.0);
    EXPECT_EQ(model.magnet_flux_of(0), 180042.0);
    EXPECT_EQ(model.magnet_flux_of(2), 180042.0);
}

TEST(solenoid_step, without_a_time_step_accepted_currents_stay) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.1), always(0.0));
    Calc_Eq_solenoid model;
    model.bind(store);
    model.step(10.0, 0.0, 1e-3, 1.0);
    const double i = model.current_output(1);
    model.accept();
    model.step(10.0, 0.0, 2e-3, 1.0);
    EXPECT_NE(model.current_output(1), i);
    for (const double time : {1e-3, 0.5e-3}) {
        model.step(500.0, 0.0, time, 1.0);
        EXPECT_EQ(model.circuit().current[0], i);
        EXPECT_EQ(model.current_output(1), i);
        EXPECT_EQ(model.induced_voltage(1), 0.0);
    }
}

TEST(solenoid_step, coil_flux_is_that_of_current_and_magnet) {
    KZB_STORE store;
    solenoid_file(
        store, [](const std::vector<double>& x) { return 0.02 + 0.001 * x[0]; },
        [](const std::vector<double>& x) { return 0.4 * x[0]; }, always(0.0));
    Calc_Eq_solenoid model;
    model.set_correction_flux(2.0);
    model.set_correction_inductance(3.0);
    model.bind(store);
    model.set_temperature_correction(true);
    model.set_magnet_temperature(393.15);  // factor 1 - 100 * 0.0011 = 0.89
    model.step(10.0, 0.1, 1e-3, 1.0);
    const double i = model.current_output(1);
    const double flux = (0.02 + 0.001 * i) * 3.0 * i + 0.89 * 0.04 * 2.0;
    EXPECT_NEAR(model.coil_flux(), flux, 1e-14);
    // Any phase gives the one coil's.
    for (const int phase : {1, 0, 7, -3}) {
        EXPECT_NEAR(model.induced_voltage(phase), flux / 1e-3, 1e-10);
    }
    model.accept();
    EXPECT_EQ(model.induced_voltage(1), 0.0);
    model.step(10.0, 0.1, 2e-3, 1.0);
    EXPECT_NEAR(model.induced_voltage(1), (model.coil_flux() - flux) / 1e-3, 1e-10);
}

// The force table is asked with the current's sign.
TEST(solenoid_force, takes_the_signed_current) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.3), [](const std::vector<double>& x) { return 10.0 * x[0] + x[1]; });
    kzb::put_double(store, "control", "turns_in_coil", 10.0);
    Calc_Eq_solenoid model;
    model.set_turns2(20.0);
    model.set_correction_force(3.0);
    model.bind(store);
    model.set_position(0.25);
    for (const double i : {5.0, -5.0}) {
        model.set_current(1, i);
        EXPECT_NEAR(model.evaluate_force(), 3.0 * (2.5 + 2.0 * i), 1e-12);
        EXPECT_EQ(model.force(), model.evaluate_force());
        // The ratio of turns 2 is part of the folded flux correction.
        EXPECT_NEAR(model.coil_flux(), 0.02 * i + 2.0 * 0.3, 1e-14);
    }
}

TEST(solenoid_force, a_warm_magnet_takes_its_part) {
    KZB_STORE store;
    solenoid_file(
        store, always(0.02), [](const std::vector<double>& x) { return 0.4 + 0.5 * x[0]; }, always(100.0),
        nodes(-1.0, 1.0, 9));
    Calc_Eq_solenoid model;
    model.bind(store);
    model.set_temperature_correction(true);
    model.set_magnet_temperature(393.15);  // factor 0.89
    model.step(10.0, 0.1, 1e-3, 1.0);
    // From position 0.0 before the first step; the previous delta of a first step is its own.
    const double i1 = model.current_output(1);
    const double delta1 = 0.11 * 0.45;
    EXPECT_NEAR(model.magnet().flux_temperature_delta[0], delta1, 1e-14);
    EXPECT_NEAR(model.force(), 100.0 - (2 * i1 * delta1 - i1 * delta1) / 0.1, 1e-12);
    model.accept();
    model.step(10.0, 0.3, 2e-3, 1.0);
    const double i2 = model.current_output(1);
    const double delta2 = 0.11 * 0.55;
    const double expected = 100.0 - ((2 * i2 - i1) * delta2 - i2 * delta1) / 0.2;
    EXPECT_NEAR(model.force(), expected, 1e-12);
    EXPECT_NEAR(model.evaluate_force(), expected, 1e-12);
}

TEST(solenoid_force, a_plunger_at_rest_or_a_magnet_at_base_temperature_has_no_temperature_term) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.4), always(100.0));
    Calc_Eq_solenoid model;
    model.bind(store);
    model.step(10.0, 0.1, 1e-3, 1.0);
    EXPECT_EQ(model.magnet().flux_temperature_delta[0], 0.0);
    EXPECT_EQ(model.force(), 100.0);
    model.accept();
    model.set_temperature_correction(true);
    model.set_magnet_temperature(393.15);
    model.step(10.0, 0.1, 2e-3, 1.0);
    EXPECT_NE(model.magnet().flux_temperature_delta[0], 0.0);
    EXPECT_EQ(model.force(), 100.0);
}

TEST_F(SolenoidLookups, come_in_the_order_of_the_step) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.4), always(100.0));
    Calc_Eq_solenoid model;
    model.set_interpolation("Cubic");
    model.bind(store);
    model.set_initial_current(1, -3.0);
    store.debug_lines = true;
    model.step(10.0, 0.1, 1e-3, 1.0);
    const std::vector<Lookup> made = lookups();
    const char* const names[] = {"flux Spline", "flux Spline",       "inductance Cubic",
                                 "force Cubic", "inductance Linear", "flux Linear"};
    ASSERT_EQ(made.size(), 6U);
    for (std::size_t k = 0; k < 6; ++k) {
        EXPECT_EQ(made[k].name, names[k]);
    }
    EXPECT_EQ(made[0].at, (std::vector<double>{0.1, 0.0}));
    EXPECT_EQ(made[2].at, (std::vector<double>{3.0, 0.1, 0.0}));
    EXPECT_NEAR(made[3].at[1], model.current_output(1), 1e-9);
    EXPECT_NEAR(made[4].at[0], std::fabs(model.current_output(1)), 1e-9);
}

TEST_F(SolenoidLookups, magnet_flux_is_counted_twice) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.4), always(100.0), nodes(-1.0, 1.0, 2));
    Calc_Eq_solenoid model;
    model.bind(store);
    const double before = store.timing[3];
    model.step(10.0, 0.1, 1e-3, 1.0);
    // "Spline" over two nodes makes one linear call; "Linear" over d axes 2^d - 1:
    // flux 2 * 1, inductance 7, force 3, flux of the coil 7 + 3
    EXPECT_EQ(store.timing[3] - before, 22.0);
}

// A driven coil with a magnet in motion, fed as a simulator does: the voltage less that of the last step.
double largest_difference(double dt, double& largest_current) {
    KZB_STORE store;
    const auto l = [](double x) { return 0.02 + 0.2 * x; };
    const auto psi_m = [](double x) { return 0.1 * std::sin(20.0 * x); };
    solenoid_file(
        store, [&](const std::vector<double>& x) { return l(x[1]); },
        [&](const std::vector<double>& x) { return psi_m(x[0]); }, always(0.0), nodes(-0.1, 0.1, 201));
    Calc_Eq_solenoid model;
    model.bind(store);
    const auto plunger = [](double t) { return 0.02 * std::sin(60.0 * t); };
    const auto slope = [&](double t, const std::vector<double>& psi) {
        return std::vector<double>{12.0 - 0.5 * (psi[0] - psi_m(plunger(t))) / l(plunger(t))};
    };
    std::vector<double> psi = {0.0};
    double difference = 0.0;
    for (int n = 1; n * dt < 0.1; ++n) {
        const double t = n * dt;
        psi = rk4(slope, psi, t - dt, dt);
        model.step(12.0 - model.voltage(1), plunger(t), t, 1.0);
        model.accept();
        const double i = (psi[0] - psi_m(plunger(t))) / l(plunger(t));
        largest_current = std::max(largest_current, std::fabs(i));
        difference = std::max(difference, std::fabs(model.current_output(1) - i));
    }
    return difference;
}

// First order: implicit Euler, and the magnet's voltage lags by one step.
TEST(solenoid_physics, converges_to_the_coil_equation) {
    double current = 0.0;
    const double coarse = largest_difference(2e-5, current);
    const double fine = largest_difference(1e-5, current);
    EXPECT_GT(current, 2.0);
    EXPECT_LT(fine, 0.02 * current);
    EXPECT_NEAR(fine / coarse, 0.5, 0.05);
}

TEST(solenoid_safety, nothing_happens_to_a_model_without_a_store) {
    Calc_Eq_solenoid model;
    model.step(1.0, 1.0, 1.0, 1.0);
    model.set_current(1, 2.0);
    model.accept();
    EXPECT_EQ(model.evaluate_force(), 0.0);
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_EQ(model.voltage(1), 0.0);
    EXPECT_EQ(model.magnet_flux_of(1), 180042.0);
}

TEST(solenoid_safety, a_file_without_tables_is_stepped) {
    KZB_STORE store;
    Calc_Eq_solenoid model;
    model.bind(store);
    model.step(1.0, 1.0, 1e-3, 1.0);
    model.accept();
    model.evaluate_force();
    EXPECT_EQ(model.upper_limit(), 0.0);
}

TEST(solenoid_safety, odd_numbers_do_no_harm) {
    for (const double odd : odd_numbers()) {
        KZB_STORE store;
        solenoid_file(store, always(0.02), always(0.4), always(100.0));
        Calc_Eq_solenoid model;
        model.bind(store);
        for (const int phase : odd_phases()) {
            model.set_initial_current(phase, odd);
            model.set_current(phase, odd);
            EXPECT_EQ(model.current_output(phase), 0.0);
            EXPECT_EQ(model.magnet_flux_of(phase), 180042.0);
        }
        model.set_initial_current(1, odd);
        model.step(odd, odd, 1e-3, 1.0);
        model.accept();
        model.step(odd, odd, odd, odd);
        model.evaluate_force();
    }
}

TEST(solenoid_history, reset_forgets_everything) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.4), always(100.0));
    Calc_Eq_solenoid model;
    model.set_turns2(3.0);
    model.bind(store);
    model.step(1.0, 0.1, 1e-3, 1.0);
    model.accept();
    model.reset();
    EXPECT_EQ(model.magnet_flux_of(1), 180042.0);
    EXPECT_EQ(model.voltage(1), 0.0);
    EXPECT_EQ(model.force(), 0.0);
    EXPECT_EQ(model.coil_flux(), 0.0);
    EXPECT_EQ(model.corrections().turns2, 0.0);
    EXPECT_EQ(model.circuit().step_count, 1);
    EXPECT_TRUE(model.circuit().network.terminals.empty());
}

TEST_F(SolenoidLookups, a_dump_writes_what_the_coil_has) {
    KZB_STORE store;
    solenoid_file(store, always(0.02), always(0.4), always(-100.0));
    Calc_Eq_solenoid model;
    model.bind(store);
    model.set_debug_dump(true);
    model.set_current(1, -5.0);
    model.accept();
    model.set_debug_dump(true);
    model.step(10.0, 0.25, 0.0, 1.0);
    EXPECT_EQ(text_of("KZsolenoid.txt"),
              "##### time = 0.0000E+00 (         2 step)#####\nAngle For Flux Reference [deg]\n 2.5000E-01\n"
              "Flux Linkage\n 4.0000E-01 \nCurrent For Inductance Referenece\n 5.0000E+00\n"
              "Inductance Matrix\n 2.0000E-02 \n\n\n\nCurrent For Force Reference\n-5.0000E+00  0.0000E+00\n"
              "Force\n-1.0000E+02\n\n");
}

}  // namespace
}  // namespace kzb_test::solenoid_step_test
