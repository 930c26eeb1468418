// Iron loss of the wound-field model: tables, the equivalent current, filters of the terminal voltages.
#include <gtest/gtest.h>

#include "wfsm_files.h"

namespace kzb_test::wfsm_losses_test {
namespace {

constexpr double dt = 1e-3;

// The loss tables hold f of their coordinates (speed, two armature axes, field); one material unless told.
void loss_tables(KZB_STORE& store, const WoundField& w, const std::function<double(const std::vector<double>&)>& eddy,
                 const std::function<double(const std::vector<double>&)>& hysteresis, double first_amplitude = 0.0) {
    const Axis wide = nodes(-200.0, 200.0, 2);
    const std::vector<Axis> axes = w.current_type == 0
                                       ? std::vector<Axis>{nodes(0, 6000, 2), wide, wide, nodes(-50, 50, 2)}
                                       : std::vector<Axis>{nodes(0, 6000, 2), nodes(-400, 400, 2),
                                                           nodes(first_amplitude, 200, 2), nodes(-50, 50, 2)};
    kzb::put_int(store, "hysloss", "numMat", 1);
    kzb::put_int(store, "hysloss", "matID1", 7);
    table(store, "eddyloss", "eddyloss7", axes, eddy);
    table(store, "hysloss", "hysloss7", axes, hysteresis);
}

double none(const std::vector<double>&) {
    return 0.0;
}

void evaluate(Calc_Eq_wfsm& model, double d, double q, double field, double position, double time) {
    const auto i = phases_of(d, q, 2.0 * position);
    const Four all{i[0], i[1], i[2], field};
    model.evaluate(all.data(), position, time);
}

// Coordinate `k` of the point at which the loss tables are looked up.
double coordinate(int current_type, std::size_t k, double d, double q, double field) {
    const WoundField w{.current_type = current_type};
    KZB_STORE store;
    linear_file(store, w);
    kzb::put_double(store, "control", "turns_in_coil", 1.0);
    kzb::put_double(store, "control", "turns_in_field_coil", 1.0);
    // Negative first nodes: nothing is scaled.
    loss_tables(
        store, w, [k](const std::vector<double>& x) { return x[k]; }, none, -1.0);
    Calc_Eq_wfsm model;
    model.set_turns_coil2(3.0);
    model.set_turns_coil2_fieldcoil(5.0);
    model.bind(store);
    model.set_loss_mode(1, 0);
    evaluate(model, d, q, field, -0.2, 2.0 * dt);
    return model.eddy_loss();
}

// -0.2 rad in 2 ms are 100 rad/s backwards, 100 / (2 pi) * 60 rpm.
TEST(wfsm_losses, tables_over_d_and_q_have_q_first_and_turns_on_the_field_alone) {
    EXPECT_NEAR(coordinate(0, 0, 3.0, -4.0, 2.0), 3000.0 / pi, 1e-9);
    EXPECT_NEAR(coordinate(0, 1, 3.0, -4.0, 2.0), -4.0, 1e-9);
    EXPECT_NEAR(coordinate(0, 2, 3.0, -4.0, 2.0), 3.0, 1e-9);
    EXPECT_NEAR(coordinate(0, 3, 3.0, -4.0, 2.0), 10.0, 1e-9);
    // A negative field current turns both signs.
    EXPECT_NEAR(coordinate(0, 1, 3.0, -4.0, -2.0), 4.0, 1e-9);
    EXPECT_NEAR(coordinate(0, 2, 3.0, -4.0, -2.0), -3.0, 1e-9);
    EXPECT_NEAR(coordinate(0, 3, 3.0, -4.0, -2.0), 10.0, 1e-9);
}

TEST(wfsm_losses, tables_over_phase_and_amplitude_see_no_turns) {
    const double beta = std::atan(0.75) * 180.0 / pi;
    EXPECT_NEAR(coordinate(1, 1, -3.0, 4.0, 2.0), beta, 1e-9);
    EXPECT_NEAR(coordinate(1, 2, -3.0, 4.0, 2.0), 5.0 * std::sqrt(2.0 / 3.0), 1e-9);
    EXPECT_NEAR(coordinate(1, 3, -3.0, 4.0, 2.0), 2.0, 1e-9);
    EXPECT_NEAR(coordinate(1, 1, -3.0, 4.0, -2.0), beta + 180.0, 1e-9);
    EXPECT_NEAR(coordinate(1, 3, -3.0, 4.0, -2.0), 2.0, 1e-9);
}

TEST(wfsm_losses, below_the_third_axis_of_the_eddy_table_both_losses_shrink) {
    const WoundField w{.current_type = 1};
    KZB_STORE store;
    linear_file(store, w);
    loss_tables(
        store, w, [](const auto&) { return 12.0; }, [](const auto&) { return 20.0; }, 8.0);
    Calc_Eq_wfsm model;
    model.bind(store);
    model.set_loss_mode(1, 0);
    evaluate(model, 0.0, 2.0 * std::sqrt(1.5), 5.0, 0.0, dt);
    EXPECT_NEAR(model.eddy_loss(), 3.0, 1e-12);
    EXPECT_NEAR(model.hysteresis_loss(), 5.0, 1e-12);
    evaluate(model, 0.0, 8.1 * std::sqrt(1.5), 5.0, 0.0, dt);
    EXPECT_NEAR(model.eddy_loss(), 12.0, 1e-12);
}

TEST(wfsm_losses, materials_are_summed) {
    const WoundField w{.current_type = 1};
    KZB_STORE store;
    linear_file(store, w);
    loss_tables(
        store, w, [](const auto&) { return 12.0; }, [](const auto&) { return 20.0; });
    kzb::put_int(store, "hysloss", "numMat", 2);
    kzb::put_int(store, "hysloss", "matID2", 9);
    const std::vector<Axis> axes(4, nodes(0, 100, 2));
    constant(store, "eddyloss", "eddyloss9", axes, 100.0);
    constant(store, "hysloss", "hysloss9", axes, 200.0);
    Calc_Eq_wfsm model;
    model.bind(store);
    model.set_loss_mode(1, 0);
    evaluate(model, 0.0, 5.0, 5.0, 0.0, dt);
    EXPECT_NEAR(model.eddy_loss(), 112.0, 1e-12);
    EXPECT_NEAR(model.hysteresis_loss(), 220.0, 1e-12);
}

// Current-driven, no voltage is known: the losses are told, no current is split off.
TEST(wfsm_losses, evaluation_splits_no_current) {
    const WoundField w{};
    KZB_STORE store;
    linear_file(store, w);
    loss_tables(
        store, w, [](const auto&) { return 60.0; }, none);
    Calc_Eq_wfsm model;
    model.bind(store);
    model.set_loss_mode(1, 0);
    for (int n = 0; n < 3; ++n) {
        evaluate(model, 1.0, 5.0, 5.0, 0.0, n * dt);
        EXPECT_EQ(model.eddy_loss(), 60.0);
        EXPECT_NEAR(model.terminal_current(1), phases_of(1.0, 5.0, 0.0)[0], 1e-12);
    }
}

// A machine at standstill with a constant loss of 60 W, driven by 100 V on its q axis at position 0.
struct Driven {
    explicit Driven(double watt = 60.0, int pwm = 0) {
        linear_file(store, machine);
        loss_tables(
            store, machine, [watt](const auto&) { return watt; }, none);
        model.set_initial_current(4, 5.0);
        model.bind(store);
        model.set_loss_mode(1, pwm);
    }
    WoundField machine;
    KZB_STORE store;
    Calc_Eq_wfsm model;
};

Four q_voltage(double volt) {
    const auto v = phases_of(0.0, volt * std::sqrt(1.5), 0.0);
    return {v[0], v[1], v[2], 10.0};
}

// Before the first voltage A = 0. Then U = V - R i: on the q axis, of amplitude 100 - 0.5 i_q, A = 2 (60 / 3) / U.
TEST(wfsm_losses, loss_current_is_in_phase_with_the_inner_voltage_and_acts_a_step_later) {
    Driven m;
    sample(m.model, {}, 0.0, 0.0);
    EXPECT_EQ(m.model.losses().iron_current[1], 0.0);
    EXPECT_FALSE(m.model.losses().loss_started);
    sample(m.model, q_voltage(100.0), 0.0, dt);
    EXPECT_TRUE(m.model.losses().loss_started);
    const kzb::WfsmStep first = m.model.state();
    EXPECT_EQ(first.current, first.terminal_current);  // nothing was kept yet
    const double inner = 100.0 - 0.5 * first.Iamp;
    const double a = 2.0 * (60.0 / 3.0) / inner;
    const auto expected = phases_of(0.0, a * std::sqrt(1.5), 0.0);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(m.model.losses().iron_current[k], expected[k], 1e-9);
    }
    sample(m.model, q_voltage(100.0), 0.0, 2 * dt);
    const kzb::WfsmStep second = m.model.state();
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(second.current[k], second.terminal_current[k] - expected[k], 1e-9);
    }
    EXPECT_EQ(second.current[3], second.terminal_current[3]);
    // What is accepted is the terminal current; the torque is that of the coil current.
    EXPECT_EQ(second.current_previous, second.terminal_current);
    EXPECT_NE(second.current_previous, second.current);
    const double q = std::sqrt(0.5) * (second.current[1] - second.current[2]);
    EXPECT_NEAR(second.torque, linear_torque(m.machine, second.current[3], q), 1e-9);
    EXPECT_NEAR(second.flux[1], linear_flux(m.machine, {second.Id, second.Iq, second.terminal_current[3], 0.0}, 1),
                1e-12);
}

TEST(wfsm_losses, no_loss_or_no_voltage_no_current) {
    Driven nothing(0.0);
    sample(nothing.model, {}, 0.0, 0.0);
    sample(nothing.model, q_voltage(100.0), 0.0, dt);
    EXPECT_EQ(nothing.model.losses().iron_current[1], 0.0);
    Driven low;
    sample(low.model, {}, 0.0, 0.0);
    sample(low.model, q_voltage(0.9e-5), 0.0, dt);
    EXPECT_FALSE(low.model.losses().loss_started);
    EXPECT_EQ(low.model.losses().iron_current[1], 0.0);
}

TEST(wfsm_losses, loss_once_started_goes_on_at_small_voltages) {
    Driven m;
    sample(m.model, {}, 0.0, 0.0);
    sample(m.model, q_voltage(1.0), 0.0, dt, false);
    ASSERT_TRUE(m.model.losses().loss_started);
    // Without current at the first sample the inner voltage is that of the terminals, 1e-7 V.
    Driven again;
    sample(again.model, {}, 0.0, 0.0, false);
    sample(again.model, q_voltage(1.0), 0.0, 0.0, false);
    sample(again.model, q_voltage(1e-7), 0.0, 0.0, false);
    const auto expected = phases_of(0.0, 40.0 / 1e-7 * std::sqrt(1.5), 0.0);
    EXPECT_NEAR(again.model.losses().iron_current[1], expected[1], 1e-3);
}

// The square of a tiny voltage is 0.0 as a double, and with it the resistance: no current.
TEST(wfsm_losses, voltage_without_a_square_draws_no_current) {
    Driven m;
    sample(m.model, {}, 0.0, 0.0, false);
    sample(m.model, q_voltage(1.0), 0.0, 0.0, false);
    sample(m.model, q_voltage(1e-170), 0.0, 0.0, false);
    EXPECT_EQ(m.model.losses().iron_current[1], 0.0);
}

// c = rpm * pole pairs / 60 * 5, a = 1 / c; the lag starts at 0 at time 0.
TEST(wfsm_losses, filtered_voltage_while_turning_forward) {
    Driven m(60.0, 1);
    ASSERT_TRUE(m.model.losses().voltage_filter_on);
    const double step = 0.1;  // rad per sample: 100 rad/s
    sample(m.model, {}, 0.0, 0.0);
    const double rpm = 100.0 / (2.0 * pi) * 60.0;
    const double a = 1.0 / (rpm * 2.0 / 60.0 * 5.0);
    double y = 0.0;
    double y_v = 0.0;
    for (int n = 1; n < 4; ++n) {
        const Four v{30.0, -20.0, -10.0, 10.0};
        sample(m.model, v, n * step, n * dt);
        y = (a * y / dt + 30.0) / (a / dt + 1.0);
        y_v = (a * y_v / dt - 20.0) / (a / dt + 1.0);
        // The loss current is along U = V_filtered - R i.
        const kzb::WfsmStep& s = m.model.state();
        const double u[3] = {y - 0.5 * s.terminal_current[0], y_v - 0.5 * s.terminal_current[1],
                             -y - y_v - 0.5 * s.terminal_current[2]};
        const double amplitude = std::sqrt((u[0] * u[0] + u[1] * u[1] + u[2] * u[2]) * 2.0 / 3.0);
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_NEAR(m.model.losses().iron_current[k], 40.0 / amplitude * u[k] / amplitude, 1e-9);
        }
    }
    // Backwards the voltage is seen as it is.
    sample(m.model, {30.0, -20.0, -10.0, 10.0}, 2.0 * step, 4 * dt);
    const kzb::WfsmStep& s = m.model.state();
    const double u0 = 30.0 - 0.5 * s.terminal_current[0];
    const double u1 = -20.0 - 0.5 * s.terminal_current[1];
    const double square = (u0 * u0 + u1 * u1 + (u0 + u1) * (u0 + u1)) * 2.0 / 3.0;
    EXPECT_NEAR(m.model.losses().iron_current[0], 40.0 * u0 / square, 1e-9);
}

TEST(wfsm_losses, filter_of_time_zero_is_empty) {
    kzb::VoltageFilter filter;
    EXPECT_EQ(filter.filter(5.0, 2.0, 10.0), (0.0 * 0.1 / 2.0 + 5.0) / (0.1 / 2.0 + 1.0));
    EXPECT_EQ(filter.filter(5.0, 0.0, 10.0), 0.0);
    // From empty again: dt is the whole time.
    EXPECT_NEAR(filter.filter(5.0, 1.0, 10.0), 5.0 / 1.1, 1e-12);
}

// A repeated step of one sample gives the filter no time to pass: the step fails, as a loss current without a number.
TEST(wfsm_losses, filter_without_time_is_an_error_of_the_step) {
    Driven m(60.0, 1);
    sample(m.model, {}, 0.0, 0.0);
    EXPECT_TRUE(sample(m.model, q_voltage(10.0), 0.1, dt, false));
    int error = 0;
    const Four v = q_voltage(10.0);
    const Four on{1.0, 1.0, 1.0, 1.0};
    EXPECT_FALSE(m.model.step(v.data(), 0.1, dt, on.data(), error));
    EXPECT_EQ(error, Calc_Eq_wfsm::error_infinite);
}

TEST(wfsm_losses, filter_needs_both_flags) {
    Calc_Eq_wfsm model;
    model.set_loss_mode(0, 1);
    EXPECT_FALSE(model.ironloss_on());
    EXPECT_FALSE(model.losses().voltage_filter_on);
    model.set_loss_mode(1, 0);
    EXPECT_TRUE(model.ironloss_on());
    EXPECT_FALSE(model.losses().voltage_filter_on);
    model.set_loss_mode(2, 1);
    EXPECT_FALSE(model.ironloss_on());
    model.set_loss_mode(1, 1);
    EXPECT_TRUE(model.losses().voltage_filter_on);
    model.set_loss_mode(1, 3);
    EXPECT_FALSE(model.losses().voltage_filter_on);
}

TEST(wfsm_losses, user_parameters_at_the_point_of_the_tables) {
    const WoundField w{};
    KZB_STORE store;
    linear_file(store, w);
    kzb::put_int(store, "num_user_specified_parameter", "num_user_specified_parameter", 2);
    kzb::require_category(store, "user_specified_parameter_table");
    const Axis wide = nodes(-400.0, 400.0, 2);
    for (int k = 1; k <= 2; ++k) {
        const std::string category = "user_specified_parameter" + std::to_string(k);
        kzb::put_int(store, category, "table_id", k + 4);
        kzb::put_int(store, category, "output_port_id", 3 - k);
        const std::string name = "user_specified_parameter_table" + std::to_string(k + 4);
        table(store, name.c_str(), name, {wide, wide, wide, wide},
              [k](const std::vector<double>& x) { return k == 1 ? x[0] + 10.0 * x[1] : x[2] + 10.0 * x[3]; });
    }
    Calc_Eq_wfsm model;
    model.bind(store);
    ASSERT_EQ(model.user_parameter_count(), 2);
    evaluate(model, 1.0, 2.0, 3.0, 0.1, dt);
    EXPECT_NEAR(model.user_parameters()[1], 21.0, 1e-9);
    EXPECT_NEAR(model.user_parameters()[0], 3.0 + 10.0 * 0.1 * 180.0 / pi, 1e-9);
}

}  // namespace
}  // namespace kzb_test::wfsm_losses_test
