// The parameter update at the head of every step: lookups, temperature, the additional resistance, the flux angle.
#include <gtest/gtest.h>

#include "im_files.h"

namespace kzb_test::im_parameters_test {
namespace {

constexpr const char* tables_category = "InductionParam_HigherAccuracy";
const double no_voltage[3] = {0.0, 0.0, 0.0};

// Tables that are linear in slip frequency f and current i, each with factors of its own.
void linear_tables(KZB_STORE& store) {
    im_tables_file(store);
    const struct {
        const char* key;
        double base;
    } keys[] = {{"L11_table", 8.0}, {"M12_table", 16.0}, {"M21_table", 32.0}, {"L22_table", 64.0}, {"R2_table", 128.0}};
    for (const auto& k : keys) {
        table(store, tables_category, k.key, im_axes(),
              [base = k.base](const std::vector<double>& x) { return base + x[0] / 16.0 + x[1] / 4.0; });
    }
}

TEST(im_parameters, tables_stand_over_signed_slip_frequency_and_peak_current) {
    KZB_STORE store;
    linear_tables(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_slip_omega(-32.0 * im_two_pi);
    // The state's current: 4 A along alpha has the peak 4 sqrt(2/3).
    const double x[4] = {4.0, 0.0, 0.0, 0.0};
    model.observe_state(1.0, 0.0, x);
    const double part = -32.0 / 16.0 + 4.0 * std::sqrt(2.0 / 3.0) / 4.0;
    const kzb::ImInductances& l = model.state().inductances;
    EXPECT_DOUBLE_EQ(l.m_Ls, 8.0 + part);
    EXPECT_DOUBLE_EQ(l.m_Msr, 16.0 + part);
    EXPECT_DOUBLE_EQ(l.m_Mrs, 32.0 + part);
    EXPECT_DOUBLE_EQ(l.m_Lr, 64.0 + part);
    EXPECT_DOUBLE_EQ(model.resistances().Rr_base, 128.0 + part);
    EXPECT_EQ(model.resistances().Rr, model.resistances().Rr_base);
    EXPECT_EQ(model.resistances().Rs, 0.5);
}

TEST(im_parameters, a_slip_below_1e_20_gives_the_node_of_zero_exactly) {
    KZB_STORE store;
    im_tables_file(store);
    // Any weight on a neighbour of the middle node would show.
    table(store, tables_category, "L11_table", im_axes(),
          [](const std::vector<double>& x) { return x[0] == 0.0 ? 0.1 : 1e300; });
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double x[4] = {};
    for (const double omega : {0.0, 9e-21, -9e-21}) {
        model.set_slip_omega(omega);
        model.observe_state(1.0, 0.0, x);
        EXPECT_EQ(model.slip_frequency(), 0.0);
        EXPECT_EQ(model.state().inductances.m_Ls, 0.1) << omega;
    }
    model.set_slip_omega(1e-20);
    EXPECT_EQ(model.slip_frequency(), 1e-20 / im_two_pi);
}

// A lookup over two axes counts one call per row and one between them: 2 + 1 linear, 4 + 1 cubic; one axis counts 1.
TEST(im_parameters, every_update_counts_five_lookups_of_the_chosen_method) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    double x[4] = {};
    model.execute(no_voltage, 0.0, 1.0, im_all_driven, 0.0, x);
    EXPECT_EQ(store.timing[kzb::slot_linear_calls], 10.0 * 3.0);  // observed and derived
    model.torque_from_currents(no_voltage, 0.0, 1.0, 0.0, x);
    EXPECT_EQ(store.timing[kzb::slot_linear_calls], 20.0 * 3.0);
    model.set_interpolation("Cubic");
    model.execute(no_voltage, 0.0, 1.0, im_all_driven, 0.0, x);
    EXPECT_EQ(store.timing[kzb::slot_linear_calls], 20.0 * 3.0);
    EXPECT_EQ(store.timing[kzb::slot_cubic_calls], 10.0 * 5.0);

    KZB_STORE constants;
    im_constants_file(constants);
    constant(constants, "equivalent_resistance_table", "copper_loss", {nodes(0, 1, 2)}, 1.0);
    constant(constants, "loss_table", "iron_loss", {nodes(0, 1, 2)}, 1.0);
    Calc_Eq_im_transient other;
    other.bind(constants, 1);
    other.set_user_copper_loss_enabled(true);
    other.step_voltage_driven(no_voltage, 0.0, 1.0, im_all_driven);
    EXPECT_EQ(constants.timing[kzb::slot_linear_calls], 5.0 * 3.0 + 2.0);
    other.step_current_driven(no_voltage, 0.0, 1.0);
    EXPECT_EQ(constants.timing[kzb::slot_linear_calls], 2.0 * (5.0 * 3.0 + 2.0));
    // The torque alone looks nothing up: its iron loss is that of the step.
    other.compute_torque();
    EXPECT_EQ(constants.timing[kzb::slot_linear_calls], 2.0 * (5.0 * 3.0 + 2.0));
}

TEST(im_parameters, a_lookup_out_of_range_leaves_its_code_in_the_store) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_slip_omega(65.0 * im_two_pi);
    const double x[4] = {};
    model.observe_state(1.0, 0.0, x);
    EXPECT_EQ(store.error, kzb::lookup_above_range);
}

TEST(im_parameters, with_constants_the_table_follows_the_callers_resistance) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.step_voltage_driven(no_voltage, 0.0, 0.0, im_all_driven);
    model.set_secondary_resistance(0.625);
    EXPECT_EQ(model.secondary_resistance(), 0.625);
    EXPECT_EQ(im_value(store, "R2_table"), 0.4);
    const std::uint64_t revision = store.revision;
    for (int n = 1; n < 4; ++n) {
        im_sample(model, {10.0, -5.0, -5.0}, 0.0, n * 1e-3);
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(im_value(store, "R2_table", i / 2, i % 2), 0.625);
        }
        EXPECT_EQ(model.secondary_resistance(), 0.625);
    }
    // Names are not resolved anew for it.
    EXPECT_EQ(store.revision, revision);
}

TEST(im_parameters, with_tables_the_table_rules) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_secondary_resistance(0.625);
    const double x[4] = {};
    model.observe_state(1.0, 0.0, x);
    EXPECT_EQ(model.secondary_resistance(), 0.375);
    EXPECT_EQ(im_value(store, "R2_table"), 0.375);
}

TEST(im_parameters, a_table_created_anew_is_taken_at_the_next_step) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.step_voltage_driven(no_voltage, 0.0, 1e-3, im_all_driven);
    constant(store, tables_category, "L11_table", im_axes(), 0.25);
    constant(store, tables_category, "R2_table", im_axes(), 0.25);
    model.step_voltage_driven(no_voltage, 0.0, 1e-3, im_all_driven);
    EXPECT_EQ(model.state().inductances.m_Ls, 0.25);
    EXPECT_EQ(im_value(store, "R2_table", 2, 2), 0.4);  // every value of the nine
}

TEST(im_parameters, resistances_follow_their_coils_temperatures) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_coil_temperature(393.15);
    model.set_coil_temperature_coefficient(4000.0);
    model.set_secondary_coil_temperature(343.15);
    model.set_base_secondary_coil_temperature(293.15);
    model.set_secondary_coil_coefficient(2000.0);
    const double x[4] = {};
    model.observe_state(1.0, 0.0, x);
    EXPECT_EQ(model.resistances().Rs, 0.5);
    EXPECT_EQ(model.resistances().Rr, 0.375);
    model.set_temperature_correction(true);
    model.observe_state(1.0, 0.0, x);
    // 1 + 100 K * 4000 ppm and 1 + 50 K * 2000 ppm
    EXPECT_EQ(model.resistances().Rs, 0.5 * ((393.15 - 293.15) * (4000.0 * 1e-6) + 1.0));
    EXPECT_NEAR(model.resistances().Rs, 0.7, 1e-15);
    EXPECT_EQ(model.resistances().Rr, 0.375 * (1.0 + 2000.0 * 1e-6 * (343.15 - 293.15)));
    EXPECT_NEAR(model.resistances().Rr, 0.4125, 1e-15);
    EXPECT_EQ(model.resistances().Rr_base, 0.375);
    EXPECT_EQ(model.resistances().Rs_DC, 0.5);
}

TEST(im_parameters, a_secondary_resistance_that_is_set_is_scaled_at_once) {
    Calc_Eq_im_transient model;
    model.set_secondary_coil_temperature(343.15);
    model.set_secondary_coil_coefficient(2000.0);
    model.set_temperature_correction(true);
    model.set_secondary_resistance(0.5);
    EXPECT_EQ(model.resistances().Rr_base, 0.5);
    EXPECT_NEAR(model.secondary_resistance(), 0.55, 1e-15);
}

// 1000 current + 100 slip + 10 speed + voltage / 8 + carrier / 16, by five axes.
void equivalent_resistance_file(KZB_STORE& store) {
    const Axis axis = nodes(0.0, 64.0, 2);
    table(store, "equivalent_resistance_table", "copper_loss", {axis, axis, axis, axis, axis},
          [](const std::vector<double>& x) {
              return 1000.0 * x[0] + 100.0 * x[1] + 10.0 * x[2] + x[3] / 8.0 + x[4] / 16.0;
          });
}

TEST(im_parameters, additional_resistance_by_current_slip_speed_voltage_and_carrier) {
    KZB_STORE store;
    im_tables_file(store);
    equivalent_resistance_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_slip_omega(-3.0 * im_two_pi);
    model.set_dc_voltage(48.0);
    model.set_carrier_frequency(32.0);
    // The accepted current, not that of the state: phase U alone 3 A, two-axis (sqrt(6), 0), peak 2 A.
    model.set_initial_current(1, 3.0);
    const double x[4] = {50.0, 0.0, 0.0, 0.0};
    // Electrical speed -2 * 2 pi: the displacement of four poles over one second.
    const auto observe = [&] { model.observe_state(1.0, -2.0 * pi, x); };
    observe();
    EXPECT_EQ(model.resistances().R_equivalent, 0.0);
    model.set_user_copper_loss_enabled(true);
    observe();
    EXPECT_NEAR(model.resistances().R_equivalent, 2000.0 + 300.0 + 20.0 + 6.0 + 2.0, 1e-9);
    EXPECT_EQ(model.resistance(), model.resistances().Rs + model.resistances().R_equivalent);
    model.set_coil_temperature(393.15);
    model.set_temperature_correction(true);
    observe();
    EXPECT_NEAR(model.resistances().R_equivalent, 2328.0 * 1.381, 1e-9);
    kzb::delete_table(store, "equivalent_resistance_table", "copper_loss");
    observe();  // the category alone: a lookup without its table
    EXPECT_EQ(model.resistances().R_equivalent, kzb::KZB_NO_VALUE * model.coil_factor());
    EXPECT_EQ(store.error, kzb::lookup_no_table);
}

TEST(im_parameters, no_additional_resistance_without_its_category) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_user_copper_loss_enabled(true);
    const double x[4] = {};
    model.observe_state(1.0, 0.0, x);
    EXPECT_EQ(model.resistances().R_equivalent, 0.0);
    EXPECT_EQ(store.error, 0);
    equivalent_resistance_file(store);
    kzb::put_double(store, "other", "key", 1.0);
    model.set_dc_voltage(8.0);
    model.observe_state(1.0, 0.0, x);
    EXPECT_EQ(model.resistances().R_equivalent, 1.0);
}

TEST(im_parameters, flux_angle_integrates_speed_and_slip_from_the_second_sample) {
    KZB_STORE store;
    im_constants_file(store);  // four poles
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_slip_omega(8.0);
    im_sample(model, {0.0, 0.0, 0.0}, 1.0, 0.25);
    EXPECT_EQ(model.state().flux_angle, 0.0);
    model.step_voltage_driven(no_voltage, 2.0, 0.5, im_all_driven);
    EXPECT_EQ(model.state().flux_angle, 4.0);  // (2 * 2 / 0.5 + 8) * 0.25
    // A sample that is stepped again advances it again.
    model.step_voltage_driven(no_voltage, 2.0, 0.5, im_all_driven);
    EXPECT_EQ(model.state().flux_angle, 8.0);
}

TEST(im_parameters, with_tables_the_flux_angle_advances_twice_per_sample) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_slip_omega(8.0);
    double x[4] = {};
    model.execute(no_voltage, 0.0, 0.25, im_all_driven, 0.0, x);
    // Zero by the first observation, then once by the derivative.
    EXPECT_EQ(model.state().flux_angle, 2.0);
    model.accept();
    model.execute(no_voltage, 0.0, 0.5, im_all_driven, 0.0, x);
    EXPECT_EQ(model.state().flux_angle, 6.0);
    model.accept();
    model.torque_from_currents(no_voltage, 0.0, 0.75, 0.0, x);
    EXPECT_EQ(model.state().flux_angle, 10.0);
}

}  // namespace
}  // namespace kzb_test::im_parameters_test
