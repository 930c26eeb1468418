// Resistance, copper loss, iron loss and user parameters of the permanent-magnet model.
#include <gtest/gtest.h>

#include "pmsm_files.h"

namespace kzb_test::pmsm_losses_test {
namespace {

using kzb::Calc_Eq;
using kzb::Phases;

void drive(Calc_Eq& model, double amplitude, double beta, double position, double time) {
    const double d = -std::sin(beta * pi / 180.0) * amplitude * std::sqrt(1.5);
    const double q = std::cos(beta * pi / 180.0) * amplitude * std::sqrt(1.5);
    const Phases i = kzb::inverse_park({d, q, 0.0}, kzb::PhaseAngles(model.machine().number_of_poles * position * 0.5));
    model.set_position(position);
    model.set_time(time);
    for (std::size_t k = 0; k < 3; ++k) {
        model.set_current(static_cast<int>(k) + 1, i[k]);
    }
    model.torque_from_currents();
}

TEST(pmsm_losses, resistance_follows_temperature_with_correction_switched_off) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    model.set_own_coil_temperature(393.15);
    ASSERT_FALSE(model.temperature_correction());
    sample(model, {}, 0.0, 0.0, false);
    EXPECT_DOUBLE_EQ(model.resistance(1), 0.5 * 1.381);
    EXPECT_DOUBLE_EQ(model.resistance(3), 0.5 * 1.381);
}

// 0.1 Ohm per 1000 rpm of extra resistance; 100 rad/s are 3000 / pi rpm.
TEST(pmsm_losses, user_copper_loss_adds_a_resistance_over_speed) {
    KZB_STORE store;
    ld_lq_file(store);
    table(store, "equivalent_resistance_table", "copper_loss",
          {nodes(0, 100, 2), nodes(-180, 180, 2), nodes(0, 10000, 2), nodes(0, 800, 2), nodes(0, 20000, 2)},
          [](const std::vector<double>& x) { return x[2] * 1e-4 + x[3] * 1e-3 + x[4] * 1e-5 + x[0]; });
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    model.set_dc_voltage(400.0);
    model.set_carrier_frequency(10000.0);
    sample(model, {}, 0.0, 1e-3);
    sample(model, {}, -0.1, 2e-3, false);
    EXPECT_EQ(model.resistance(1), 0.5);  // off: not a word of the table
    model.set_user_copperloss_on(true);
    sample(model, {}, -0.1, 2e-3, false);
    const double expected = 0.5 + 100.0 / (2.0 * pi) * 60.0 * 1e-4 + 0.4 + 0.1;
    EXPECT_NEAR(model.resistance(1), expected, 1e-12);
    sample(model, {}, -0.1, 1e-3, false);  // no time passes: speed 0
    EXPECT_NEAR(model.resistance(1), 0.5 + 0.4 + 0.1, 1e-12);
}

TEST(pmsm_losses, copper_loss_is_that_of_the_accepted_current) {
    KZB_STORE store;
    ld_lq_file(store);
    constant(store, "equivalent_resistance_table", "copper_loss",
             {nodes(0, 100, 2), nodes(-180, 180, 2), nodes(0, 10000, 2), nodes(0, 800, 2), nodes(0, 20000, 2)}, 0.2);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    model.set_user_copperloss_on(true);
    drive(model, 10.0, 0.0, 0.0, 0.0);
    EXPECT_EQ(model.dc_copper_loss(), 0.0);
    model.accept();
    drive(model, 20.0, 0.0, 0.0, 0.0);
    EXPECT_NEAR(model.dc_copper_loss(), 1.5 * 0.5 * 100.0, 1e-10);  // 3/2 R i^2 of the peak
    EXPECT_NEAR(model.ac_copper_loss(), 1.5 * 0.2 * 100.0, 1e-10);
}

const std::vector<Axis> loss_axes = {nodes(0, 10000, 3), nodes(-180, 180, 3), nodes(4, 40, 4)};

void material_file(KZB_STORE& store) {
    ld_lq_file(store);
    kzb::put_int(store, "hysloss", "numMat", 2);
    kzb::put_int(store, "hysloss", "matID1", 7);
    kzb::put_int(store, "hysloss", "matID2", 12);
    table(store, "eddyloss", "eddyloss7", loss_axes, [](const std::vector<double>& x) { return x[0] * 0.01 + x[2]; });
    table(store, "hysloss", "hysloss7", loss_axes, [](const std::vector<double>& x) { return 2.0 * x[2]; });
    constant(store, "eddyloss", "eddyloss12", loss_axes, 3.0);
    constant(store, "hysloss", "hysloss12", loss_axes, 5.0);
}

TEST(pmsm_losses, material_losses_are_summed_and_taken_off_the_torque) {
    KZB_STORE store;
    material_file(store);
    constant(store, "correction", "ironloss", {nodes(0, 10000, 2), nodes(0, 40, 2)}, 1.5);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq, 1);
    sample(model, {}, 0.0, 1e-3);
    drive(model, 10.0, 0.0, -0.1, 2e-3);  // -100 rad/s
    const double rpm = 3000.0 / pi;
    const double eddy = 1.5 * (rpm * 0.01 + 10.0 + 3.0);
    const double hysteresis = 1.5 * (20.0 + 5.0);
    EXPECT_NEAR(model.eddy_loss(), eddy, 1e-10);
    EXPECT_NEAR(model.hysteresis_loss(), hysteresis, 1e-10);
    const double electromagnetic = 2.0 * 0.15 * 10.0 * std::sqrt(1.5);
    EXPECT_NEAR(model.torque(), electromagnetic - (eddy + hysteresis) / -100.0, 1e-10);
    EXPECT_EQ(model.corrections().correction_ironloss, 1.5);
}

TEST(pmsm_losses, below_the_smallest_amplitude_both_losses_shrink) {
    KZB_STORE store;
    material_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq, 1);
    drive(model, 1.0, 0.0, 0.0, 0.0);
    EXPECT_NEAR(model.eddy_loss(), (4.0 + 3.0) / 4.0, 1e-12);
    EXPECT_NEAR(model.hysteresis_loss(), (8.0 + 5.0) / 4.0, 1e-12);
}

TEST(pmsm_losses, standstill_reports_the_loss_but_loses_no_torque) {
    KZB_STORE store;
    material_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq, 1);
    drive(model, 10.0, 0.0, 0.0, 1e-3);
    EXPECT_NEAR(model.eddy_loss(), 13.0, 1e-12);
    EXPECT_NEAR(model.torque(), 2.0 * 0.15 * 10.0 * std::sqrt(1.5), 1e-12);
}

TEST(pmsm_losses, one_table_replaces_the_materials_unless_the_older_method_is_chosen) {
    KZB_STORE store;
    material_file(store);
    table(store, "loss_table", "iron_loss",
          {nodes(0, 40, 2), nodes(-180, 180, 2), nodes(0, 10000, 2), nodes(0, 800, 2)},
          [](const std::vector<double>& x) { return x[0] + x[1] + x[2] + x[3]; });
    for (const bool old_method : {false, true}) {
        Calc_Eq model;
        model.set_use_old_ironloss(old_method ? 1 : 0);
        bind(model, store, kzb::ld_lq, 1);
        model.set_dc_voltage(300.0);
        drive(model, 10.0, 30.0, 0.0, 0.0);
        EXPECT_NEAR(model.eddy_loss(), old_method ? 13.0 : 340.0, 1e-11);
        EXPECT_NEAR(model.hysteresis_loss(), old_method ? 25.0 : 0.0, 1e-11);
    }
}

TEST(pmsm_losses, iron_loss_stays_out_when_it_was_not_asked_for) {
    KZB_STORE store;
    material_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq, 0);
    drive(model, 10.0, 0.0, 0.1, 1e-3);
    EXPECT_EQ(model.eddy_loss(), 0.0);
    EXPECT_EQ(model.hysteresis_loss(), 0.0);
}

void user_file(KZB_STORE& store, bool own_category, bool by_phase) {
    harmonic_file(store, {.by_phase_currents = by_phase});
    kzb::require_category(store, "user_specified_parameter_table");
    kzb::put_int(store, "num_user_specified_parameter", "num_user_specified_parameter", 2);
    const int ids[2] = {1, 4};
    const int ports[2] = {2, 1};
    for (int k = 0; k < 2; ++k) {
        const std::string category = "user_specified_parameter" + std::to_string(k + 1);
        kzb::put_int(store, category, "table_id", ids[k]);
        kzb::put_int(store, category, "output_port_id", ports[k]);
        const std::string name = "user_specified_parameter_table" + std::to_string(ids[k]);
        const std::string home = own_category ? name : "user_specified_parameter_table";
        const double weight = k == 0 ? 1.0 : 10.0;
        if (by_phase) {
            const Axis amperes = nodes(-100, 100, 3);
            table(store, home.c_str(), name, {amperes, amperes, amperes, nodes(0, 360, 3)},
                  [=](const std::vector<double>& x) { return weight * (x[0] + 10 * x[1] + 100 * x[2] + 1000 * x[3]); });
        } else {
            table(store, home.c_str(), name, {nodes(0, 100, 3), nodes(-180, 180, 3), nodes(0, 360, 3)},
                  [=](const std::vector<double>& x) { return weight * (x[0] + 1000.0 * x[1] + 1e6 * x[2]); });
        }
    }
}

TEST(pmsm_losses, user_parameters_go_to_their_output_ports) {
    for (const bool own_category : {true, false}) {
        KZB_STORE store;
        user_file(store, own_category, false);
        Calc_Eq model;
        bind(model, store, kzb::harmonic);
        ASSERT_EQ(model.user_parameter_count(), 2);
        EXPECT_EQ(model.user_parameters(), (std::vector<double>{0.0, 0.0}));
        drive(model, 20.0, 30.0, 0.25, 0.0);
        const double value = 20.0 + 30000.0 + 1e6 * 0.25 * 180.0 / pi;
        EXPECT_NEAR(model.user_parameters()[1], value, 1e-6);
        EXPECT_NEAR(model.user_parameters()[0], 10.0 * value, 1e-5);
    }
}

TEST(pmsm_losses, user_parameters_over_phase_currents) {
    KZB_STORE store;
    user_file(store, true, true);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    model.set_position(10.0 * pi / 180.0);
    model.set_current(1, 3.0);
    model.set_current(2, 4.0);
    model.set_current(3, -7.0);
    model.torque_from_currents();
    EXPECT_NEAR(model.user_parameters()[1], 3.0 + 40.0 - 700.0 + 10000.0, 1e-8);
}

TEST(pmsm_losses, user_parameters_need_kind_1_or_3) {
    KZB_STORE store;
    user_file(store, true, false);
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    EXPECT_EQ(model.user_parameter_count(), 0);
    model.torque_from_currents();
    EXPECT_TRUE(model.user_parameters().empty());
}

}  // namespace
}  // namespace kzb_test::pmsm_losses_test
