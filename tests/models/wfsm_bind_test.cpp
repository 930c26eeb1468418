// What binding the wound-field model reads from a file, its start values and its environment.
#include <gtest/gtest.h>

#include <limits>

#include "wfsm_files.h"

namespace kzb_test::wfsm_bind_test {
namespace {

TEST(wfsm_bind, answers_whether_the_file_offers_the_application) {
    KZB_STORE full;
    linear_file(full);
    Calc_Eq_wfsm model;
    EXPECT_TRUE(model.bind(full));
    EXPECT_EQ(model.machine().axis_count, 4);
    KZB_STORE bare;
    wfsm_basics(bare);
    Calc_Eq_wfsm other;
    EXPECT_FALSE(other.bind(bare));
    EXPECT_EQ(other.machine().axis_count, 0);
    EXPECT_EQ(other.machine().R, 0.5);
    EXPECT_EQ(other.machine().field_axis_floor, 0.0);
}

TEST(wfsm_bind, fixed_data) {
    KZB_STORE store;
    wfsm_basics(store, {.poles = 6, .beta_zero = 15.0});
    Calc_Eq_wfsm model;
    model.bind(store);
    EXPECT_EQ(model.machine().number_of_poles, 6.0);
    EXPECT_EQ(model.machine().beta_zero, 15.0);
    EXPECT_EQ(model.machine().angle_offset, 5.0);
}

TEST(wfsm_bind, current_types_other_than_0_and_1_are_none) {
    for (const auto& [stated, taken] : {std::pair{0, 0}, {1, 1}, {2, -1}, {-1, -1}, {100, -1}}) {
        KZB_STORE store;
        wfsm_basics(store, {.current_type = stated});
        Calc_Eq_wfsm model;
        model.bind(store);
        EXPECT_EQ(model.machine().current_type, taken);
    }
}

TEST(wfsm_bind, resistances_of_the_file_only_where_none_was_set) {
    KZB_STORE store;
    wfsm_basics(store);
    Calc_Eq_wfsm model;
    model.set_field_resistance(9.0);
    model.bind(store);
    EXPECT_EQ(model.resistance(), 0.5);
    EXPECT_EQ(model.field_resistance(), 9.0);
    EXPECT_EQ(model.network().resistance_of(1), 0.5);
    EXPECT_EQ(model.network().resistance_of(4), 9.0);
}

TEST(wfsm_bind, connection_by_setter_then_control_then_settings) {
    KZB_STORE store;
    kzb::put_int(store, "settings", "Winding_Pattern_Flag", 1);
    Calc_Eq_wfsm by_settings;
    by_settings.bind(store);
    EXPECT_EQ(by_settings.connection(), 1);
    EXPECT_EQ(by_settings.network().terminals.size(), 5U);
    kzb::put_int(store, "control", "Winding_Pattern_Flag", 0);
    Calc_Eq_wfsm by_control;
    by_control.bind(store);
    EXPECT_EQ(by_control.connection(), 0);
    EXPECT_EQ(by_control.network().terminals.size(), 6U);
    Calc_Eq_wfsm by_setter;
    by_setter.set_connection(1);
    by_setter.bind(store);
    EXPECT_EQ(by_setter.connection(), 1);
    kzb::put_int(store, "control", "Winding_Pattern_Flag", 4);
    Calc_Eq_wfsm unknown;
    unknown.bind(store);
    EXPECT_EQ(unknown.connection(), 4);
    EXPECT_TRUE(unknown.network().elements.empty());
}

TEST(wfsm_bind, turns_are_ratios_to_the_file) {
    for (const auto& [turns, file, ratio] : {std::tuple{50.0, 40.0, 1.25}, {0.0, 40.0, 1.0}, {50.0, 0.0, 1.0}}) {
        KZB_STORE store;
        wfsm_basics(store);
        kzb::put_double(store, "control", "turns_in_coil", file);
        Calc_Eq_wfsm model;
        model.set_turns_coil2(turns);
        model.set_turns_coil2_fieldcoil(30.0);
        model.bind(store);
        EXPECT_EQ(model.corrections().turns_coil2, ratio);
        EXPECT_EQ(model.corrections().turns_coil2_fieldcoil, 1.0);
    }
    KZB_STORE store;
    kzb::put_double(store, "control", "turns_in_field_coil", 60.0);
    Calc_Eq_wfsm model;
    model.set_turns_coil2_fieldcoil(30.0);
    model.bind(store);
    EXPECT_EQ(model.corrections().turns_coil2_fieldcoil, 0.5);
}

TEST(wfsm_bind, losses_stay_on_only_with_both_categories) {
    for (const bool eddy : {false, true}) {
        for (const bool hysteresis : {false, true}) {
            KZB_STORE store;
            if (eddy) {
                kzb::require_category(store, "eddyloss");
            }
            if (hysteresis) {
                kzb::require_category(store, "hysloss");
            }
            Calc_Eq_wfsm model;
            model.set_loss_mode(1, 1);
            model.set_pwm_frequency(5000.0);
            model.bind(store);
            EXPECT_EQ(model.ironloss_on(), eddy && hysteresis);
            EXPECT_EQ(model.losses().voltage_filter_on, eddy && hysteresis);
            EXPECT_EQ(model.pwm_frequency(), eddy && hysteresis ? 5000.0 : 0.0);
        }
    }
}

TEST(wfsm_bind, user_parameters_only_with_their_category) {
    KZB_STORE store;
    kzb::put_int(store, "num_user_specified_parameter", "num_user_specified_parameter", 3);
    Calc_Eq_wfsm model;
    model.bind(store);
    EXPECT_EQ(model.user_parameter_count(), 0);
    kzb::require_category(store, "user_specified_parameter_table");
    model.bind(store);
    EXPECT_EQ(model.user_parameter_count(), 3);
}

TEST(wfsm_bind, start_calls_take_their_fields_of_the_record) {
    kzb::ControlRecord record;
    record.coef_flux = 1.1;
    record.coef_flux_fieldcoil = 1.2;
    record.turns_coil2 = 13.0;
    record.turns_coil2_fieldcoil = 14.0;
    record.coef_torque_or_force = 1.5;
    record.coef_material = 1.6;
    record.base_coil_temperature = 301.0;
    record.base_field_coil_temperature = 302.0;
    record.coef_coil_temperature = 3000.0;
    record.coef_field_coil_temperature = 4000.0;
    Calc_Eq_wfsm model;
    EXPECT_EQ(model.own_coil_coefficient(), 1.0);
    EXPECT_EQ(model.field_coil_coefficient(), 1.0);
    model.start_corrections(record);
    model.start_temperatures(record);
    EXPECT_EQ(model.corrections().coef_flux, 1.1);
    EXPECT_EQ(model.corrections().coef_flux_fieldcoil, 1.2);
    EXPECT_EQ(model.corrections().turns_coil2, 13.0);
    EXPECT_EQ(model.corrections().turns_coil2_fieldcoil, 14.0);
    EXPECT_EQ(model.corrections().coef_torque, 1.5);
    EXPECT_EQ(model.corrections().coef_material, 1.6);
    EXPECT_EQ(model.own_base_coil_temperature(), 301.0);
    EXPECT_EQ(model.base_field_coil_temperature(), 302.0);
    EXPECT_EQ(model.own_coil_coefficient(), 3000.0);
    EXPECT_EQ(model.field_coil_coefficient(), 4000.0);
    EXPECT_EQ(model.own_coil_temperature(), 293.15);
    EXPECT_EQ(model.field_coil_temperature(), 293.15);
}

TEST(wfsm_bind, reset_goes_back_to_the_defaults) {
    KZB_STORE store;
    linear_file(store);
    Calc_Eq_wfsm model;
    model.set_connection(1);
    model.set_resistance(3.0);
    model.bind(store);
    sample(model, {1.0, 2.0, 3.0, 4.0}, 0.0, 1.0);
    model.reset();
    EXPECT_EQ(model.connection(), -1);
    EXPECT_EQ(model.resistance(), 0.0);
    EXPECT_EQ(model.field_resistance(), 0.0);
    EXPECT_EQ(model.state().step_count, 1);
    EXPECT_TRUE(model.network().elements.empty());
    EXPECT_FALSE(sample(model, {1.0, 2.0, 3.0, 4.0}, 0.0, 1.0));
}

TEST(wfsm_environment, defaults) {
    const Calc_Eq_wfsm model;
    EXPECT_EQ(model.tolerance(), 0.001);
    EXPECT_EQ(model.max_iterations(), 200);
    EXPECT_EQ(model.acceleration(), 1.0);
}

TEST(wfsm_environment, numbers_are_read_at_construction) {
    Calc_Eq_wfsm early;
    const Environment tolerance("DORN_KZ_DEBUG_ITR", " 2.5e-4");
    const Environment passes("DORN_KZ_DEBUG_NITR", "+17 passes");
    const Environment relaxation("DORN_KZ_DEBUG_ACCEL", "0.75");
    const Calc_Eq_wfsm late;
    EXPECT_EQ(early.tolerance(), 0.001);
    EXPECT_EQ(late.tolerance(), 2.5e-4);
    EXPECT_EQ(late.max_iterations(), 17);
    EXPECT_EQ(late.acceleration(), 0.75);
}

TEST(wfsm_environment, any_text_is_some_number) {
    for (const auto& [text, number, count] : {std::tuple{"", 0.0, 0},
                                              {"abc", 0.0, 0},
                                              {"-", 0.0, 0},
                                              {"+-3", 0.0, 0},
                                              {"1e3", 1000.0, 1},
                                              {"-4.9", -4.9, -4},
                                              {"1e999", std::numeric_limits<double>::infinity(), 1}}) {
        const Environment tolerance("DORN_KZ_DEBUG_ITR", text);
        const Environment passes("DORN_KZ_DEBUG_NITR", text);
        const Calc_Eq_wfsm model;
        EXPECT_EQ(model.tolerance(), number) << text;
        EXPECT_EQ(model.max_iterations(), count) << text;
    }
    for (const char* huge : {"1000001", "2147483647", "2147483648", "99999999999999999999"}) {
        const Environment passes("DORN_KZ_DEBUG_NITR", huge);
        EXPECT_EQ(Calc_Eq_wfsm().max_iterations(), 1000000) << huge;
    }
    const Environment passes("DORN_KZ_DEBUG_NITR", "-99999999999999999999");
    EXPECT_LT(Calc_Eq_wfsm().max_iterations(), 1);
}

}  // namespace
}  // namespace kzb_test::wfsm_bind_test
