// Outputs of a step: fluxes, losses, torque by its types, iron loss.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <limits>

#include "im_files.h"

namespace kzb_test::im_output_test {
namespace {

constexpr const char* tables_category = "InductionParam_HigherAccuracy";

// The torque type is read from the environment when a model is made.
Calc_Eq_im_transient& model_of_type(const char* type, std::unique_ptr<Calc_Eq_im_transient>& owner) {
    setenv("DORN_KZ_TORQUE_TYPE", type, 1);
    owner = std::make_unique<Calc_Eq_im_transient>();
    unsetenv("DORN_KZ_TORQUE_TYPE");
    return *owner;
}

void asymmetric(KZB_STORE& store) {
    im_fill(store, "L11_table", 0.125);
    im_fill(store, "M12_table", 0.09375);
    im_fill(store, "M21_table", 0.078125);
    im_fill(store, "L22_table", 0.140625);
}

// Two samples of a machine with constants, the inductances all different.
void run(Calc_Eq_im_transient& model, KZB_STORE& store, bool accept_last = false) {
    asymmetric(store);
    im_sample(model, {0.0, 0.0, 0.0}, 0.1, 0.0);
    im_sample(model, {300.0, -100.0, -200.0}, 0.2, 1e-3);
    const double v[3] = {250.0, -10.0, -240.0};
    model.step_voltage_driven(v, 0.3, 2e-3, im_all_driven);
    if (accept_last) {
        model.accept();
    }
}

TEST(im_output, total_flux_takes_m21_of_the_secondary_current) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    run(model, store);
    const auto before = model.state().flux_total_prev;
    const Two s = im_primary_of(model);
    const Two r = im_secondary_of(model);
    const auto flux = im_inverse_clarke({0.125 * s.alpha + 0.078125 * r.alpha, 0.125 * s.beta + 0.078125 * r.beta});
    for (int k = 0; k < 3; ++k) {
        const auto at = static_cast<std::size_t>(k);
        EXPECT_EQ(model.flux_total(k + 1), flux[at]);
        EXPECT_EQ(model.induced_voltage(k + 1), (flux[at] - before[at]) / (2e-3 - 1e-3));
    }
    EXPECT_NE(flux[0], 0.0);
    EXPECT_EQ(model.induced_voltage(0), 0.0);
    EXPECT_EQ(model.induced_voltage(4), 0.0);
    EXPECT_EQ(model.flux_total(4), 0.0);
}

TEST(im_output, at_the_accepted_time_the_induced_voltage_is_zero) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    run(model, store, true);
    EXPECT_NE(model.induced_voltage(1), 0.0);
    const double v[3] = {250.0, -10.0, -240.0};
    model.step_voltage_driven(v, 0.3, 2e-3, im_all_driven);
    EXPECT_EQ(model.induced_voltage(1), 0.0);
}

TEST(im_output, secondary_flux_stands_in_the_stationary_frame) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    run(model, store);
    EXPECT_NE(model.state().flux_angle, 0.0);
    const Two s = im_primary_of(model);
    const Two r = im_secondary_of(model);
    const double c = std::cos(model.state().flux_angle);
    const double n = std::sin(model.state().flux_angle);
    const double d = 0.09375 * (c * s.alpha + n * s.beta) + 0.140625 * (c * r.alpha + n * r.beta);
    const double q = 0.09375 * (c * s.beta - n * s.alpha) + 0.140625 * (c * r.beta - n * r.alpha);
    EXPECT_EQ(model.secondary_flux_d(), c * d - n * q);
    EXPECT_EQ(model.secondary_flux_q(), n * d + c * q);
    // Turned there and back: M12 i1 + L22 i2 of the stationary frame.
    EXPECT_NEAR(model.secondary_flux_d(), 0.09375 * s.alpha + 0.140625 * r.alpha, 1e-14);
    EXPECT_NEAR(model.secondary_flux_q(), 0.09375 * s.beta + 0.140625 * r.beta, 1e-14);
}

TEST(im_output, copper_losses_are_sums_of_squares_times_resistance) {
    KZB_STORE store;
    im_constants_file(store);
    constant(store, "equivalent_resistance_table", "copper_loss", {nodes(0, 1, 2)}, 0.25);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_user_copper_loss_enabled(true);
    run(model, store);
    const auto square = [&](int k) { return model.current_output(k) * model.current_output(k); };
    const double primary = square(1) + square(2) + square(3);
    EXPECT_GT(primary, 0.0);
    EXPECT_EQ(model.primary_copper_loss(), primary * 0.5);
    EXPECT_EQ(model.user_copper_loss(), primary * 0.25);
    EXPECT_EQ(model.secondary_copper_loss(), (square(4) + square(5) + square(6)) * model.secondary_resistance());
}

TEST(im_output, torque_type_0_is_the_product_of_currents) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    run(model, store);
    const Two s = im_primary_of(model);
    const Two r = im_secondary_of(model);
    EXPECT_EQ(model.torque(), 4 * 0.5 * 0.09375 * (r.alpha * s.beta - r.beta * s.alpha));
    EXPECT_NE(model.torque(), 0.0);
    // Anew from the currents of the output, whoever set them.
    model.set_current(1, 0.0);
    model.set_current(2, 0.0);
    model.set_current(3, 0.0);
    EXPECT_EQ(model.compute_torque(), 0.0);
    EXPECT_EQ(model.torque(), 0.0);
}

TEST(im_output, torque_type_1_is_air_gap_power_over_synchronous_speed) {
    KZB_STORE store;
    im_tables_file(store);
    std::unique_ptr<Calc_Eq_im_transient> owner;
    Calc_Eq_im_transient& model = model_of_type("1", owner);
    EXPECT_EQ(model.torque_type(), 1);
    model.bind(store, 0);
    model.set_slip_omega(5.0);
    const double x[4] = {3.0, -4.0, 0.5, 0.25};
    model.observe_state(0.5, 2.0, x);
    const double w = 4.0 / 0.5;
    const double f = (w + 5.0) / im_two_pi;
    const double wsync = f * im_two_pi / (4 * 0.5);
    const double i = model.state().secondary_current;
    const double t = 3 / wsync * (i * i) * 0.5 * 0.375;
    const double s = 5.0 / im_two_pi / f;
    EXPECT_EQ(model.torque(), t / s);
    // Peak current: 3/2 I^2 R / (slip * synchronous speed), slip 5 / 13.
    EXPECT_NEAR(model.torque(), 1.5 * i * i * 0.375 / (5.0 / 13.0 * 6.5), 1e-9);
}

TEST(im_output, torque_type_1_without_slip_divides_by_zero) {
    KZB_STORE store;
    im_tables_file(store);
    std::unique_ptr<Calc_Eq_im_transient> owner;
    Calc_Eq_im_transient& model = model_of_type("1", owner);
    model.bind(store, 0);
    const double x[4] = {3.0, -4.0, 0.5, 0.25};
    model.observe_state(0.5, 2.0, x);
    EXPECT_EQ(model.torque(), std::numeric_limits<double>::infinity());
    model.observe_state(0.0, 2.0, x);  // no speed either: 0 / 0
    EXPECT_TRUE(std::isnan(model.torque()));
}

TEST(im_output, any_other_torque_type_keeps_the_torque) {
    KZB_STORE store;
    im_constants_file(store);
    std::unique_ptr<Calc_Eq_im_transient> owner;
    Calc_Eq_im_transient& model = model_of_type("2", owner);
    EXPECT_EQ(model.torque_type(), 2);
    model.bind(store, 0);
    run(model, store);
    EXPECT_EQ(model.torque(), 0.0);
}

TEST(im_output, any_other_torque_type_loses_the_iron_loss_again_and_again) {
    KZB_STORE store;
    im_constants_file(store);
    constant(store, "loss_table", "iron_loss", {nodes(0, 1, 2)}, 64.0);
    std::unique_ptr<Calc_Eq_im_transient> owner;
    Calc_Eq_im_transient& model = model_of_type("2", owner);
    model.bind(store, 1);
    const double v[3] = {1.0, 2.0, -3.0};
    // Electrical speed 2 * 8 / 1, mechanical 8: 64 W are 8 Nm.
    model.step_voltage_driven(v, 8.0, 1.0, im_all_driven);
    EXPECT_EQ(model.torque(), -8.0);
    model.step_voltage_driven(v, 8.0, 1.0, im_all_driven);
    EXPECT_EQ(model.torque(), -16.0);
    EXPECT_EQ(model.compute_torque(), -24.0);
    // The current-driven sample takes it twice: in its step and for its result.
    double state[4] = {};
    EXPECT_EQ(model.torque_from_currents(v, 8.0, 1.0, 0.0, state), -40.0);
    // At standstill nothing is taken.
    model.step_voltage_driven(v, 0.0, 1.0, im_all_driven);
    EXPECT_EQ(model.torque(), -40.0);
}

// 1000 current + 100 slip + 10 speed + voltage / 8 + carrier / 16.
void loss_table_file(KZB_STORE& store) {
    const Axis axis = nodes(0.0, 64.0, 2);
    table(store, "loss_table", "iron_loss", {axis, axis, axis, axis, axis}, [](const std::vector<double>& x) {
        return 1000.0 * x[0] + 100.0 * x[1] + 10.0 * x[2] + x[3] / 8.0 + x[4] / 16.0;
    });
}

TEST(im_output, iron_loss_by_current_slip_speed_voltage_and_carrier) {
    KZB_STORE store;
    im_tables_file(store);
    loss_table_file(store);
    table(store, tables_category, "ironloss_table", im_axes(),
          [](const std::vector<double>& x) { return 500.0 + x[0] + 10.0 * x[1]; });
    Calc_Eq_im_transient model;
    const double x[4] = {2.0 * std::sqrt(1.5), 0.0, 0.0, 0.0};  // peak 2 A
    const auto observe = [&](int flag, int old) {
        model.set_use_old_ironloss(old);
        model.bind(store, flag);
        model.set_slip_omega(-3.0 * im_two_pi);
        model.set_dc_voltage(48.0);
        model.set_carrier_frequency(32.0);
        model.observe_state(1.0, -2.0 * pi, x);  // electrical speed -2 Hz
        return model.iron_loss();
    };
    EXPECT_EQ(observe(0, 0), 0.0);
    EXPECT_NEAR(observe(1, 0), 2000.0 + 300.0 + 20.0 + 6.0 + 2.0, 1e-9);
    // The old form: signed slip and current.
    EXPECT_NEAR(observe(1, 1), 500.0 - 3.0 + 20.0, 1e-9);
    const double speed_mech = -4.0 * pi / 2.0;
    const Two s = im_primary_of(model);
    const Two r = im_secondary_of(model);
    const double air_gap = 4 * 0.5 * 0.09375 * (r.alpha * s.beta - r.beta * s.alpha);
    EXPECT_NEAR(model.torque(), air_gap - 517.0 / speed_mech, 1e-9);
    // Without "iron_loss" the file's own table serves the new form too.
    kzb::delete_table(store, "loss_table", "iron_loss");
    EXPECT_NEAR(observe(1, 0), 517.0, 1e-9);
    // A category without either table: enabled, and nothing to look up.
    kzb::delete_table(store, tables_category, "ironloss_table");
    EXPECT_EQ(observe(1, 0), 0.0);
    EXPECT_TRUE(model.ironloss_enabled());
}

}  // namespace
}  // namespace kzb_test::im_output_test
