// What binding takes from a file of constants and from one of tables.
#include <gtest/gtest.h>

#include "im_files.h"

namespace kzb_test::im_bind_test {
namespace {

constexpr const char* tables_category = "InductionParam_HigherAccuracy";

TEST(im_bind, constants_become_tables_of_one_value) {
    KZB_STORE store;
    im_constants_file(store);  // X1 1.0, X2 1.2, b0 0.04, 50 Hz
    Calc_Eq_im_transient model;
    model.bind(store, 0);

    const double w = 2 * (4 * std::atan(1.0)) * 50.0;
    const double leakage = (1.2 + 1.0) / w * 0.5;
    const double magnetising = 1 / 0.04 / w;
    const struct {
        const char* key;
        double value;
    } expected[] = {{"R2_table", 0.4},
                    {"L11_table", magnetising + leakage},
                    {"L22_table", magnetising + leakage},
                    {"M12_table", magnetising},
                    {"M21_table", magnetising}};
    const KZB_CATEGORY* const category = kzb::find_category(store, tables_category);
    ASSERT_NE(category, nullptr);
    ASSERT_EQ(category->tables.size(), 5U);
    for (const auto& e : expected) {
        const KZB_TABLE* const table = kzb::find_table(store, tables_category, e.key);
        ASSERT_NE(table, nullptr) << e.key;
        EXPECT_EQ(table->dim, 2);
        EXPECT_EQ(table->sizes, (std::vector<int>{2, 2}));
        for (int axis = 1; axis <= 2; ++axis) {
            EXPECT_EQ(kzb::table_get_axis_value(table, axis, 0), -100.0);
            EXPECT_EQ(kzb::table_get_axis_value(table, axis, 1), 100.0);
        }
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(im_value(store, e.key, i / 2, i % 2), e.value) << e.key;
        }
    }
}

TEST(im_bind, tables_of_the_file_are_left_as_they_are) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    EXPECT_EQ(model.inductance_type(), 1);
    EXPECT_EQ(im_value(store, "L11_table"), 0.125);
    EXPECT_EQ(kzb::table_rows(store, tables_category, "L11_table", 1), 3);
}

TEST(im_bind, inductance_type_is_untested_until_bound) {
    KZB_STORE constants;
    im_constants_file(constants);
    KZB_STORE tables;
    im_tables_file(tables);
    Calc_Eq_im_transient model;
    EXPECT_EQ(model.inductance_type(), -1);
    EXPECT_EQ(model.inductance_type(constants), 0);
    EXPECT_EQ(model.inductance_type(tables), 1);
    model.bind(constants, 0);
    EXPECT_EQ(model.inductance_type(), 0);
    // The category made for the constants does not change what the model has found.
    EXPECT_EQ(model.inductance_type(constants), 0);
    EXPECT_EQ(model.inductance_type(tables), 0);
    // Bound once more, the model finds the tables that it made itself.
    model.bind(constants, 0);
    EXPECT_EQ(model.inductance_type(), 1);
}

TEST(im_bind, selects_the_application_with_the_callers_word) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.set_application("Word");
    model.bind(store, 0);
    EXPECT_EQ(store.motor, "IM");
    EXPECT_EQ(store.application, "Word");
}

TEST(im_bind, secondary_resistance_is_the_first_value_of_its_table) {
    KZB_STORE store;
    im_tables_file(store);
    table(store, tables_category, "R2_table", im_axes(),
          [](const std::vector<double>& x) { return 1.0 + x[0] / 64.0 + x[1]; });
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    EXPECT_EQ(model.resistances().Rr_base, 0.0);  // 1 - 64/64 + 0
    EXPECT_EQ(model.secondary_resistance(), 0.0);

    constant(store, tables_category, "R2_table", {nodes(0, 1, 2)}, 3.0);
    model.bind(store, 0);
    EXPECT_EQ(model.resistances().Rr_base, 3.0);
    constant(store, tables_category, "R2_table", {nodes(0, 1, 2), nodes(0, 1, 2), nodes(0, 1, 2)}, 4.0);
    model.bind(store, 0);
    EXPECT_EQ(model.resistances().Rr_base, 4.0);
    kzb::delete_table(store, tables_category, "R2_table");
    model.bind(store, 0);
    EXPECT_EQ(model.resistances().Rr_base, 0.0);
}

TEST(im_bind, primary_resistance_of_the_file_counts_where_none_was_set) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient from_file;
    from_file.bind(store, 0);
    EXPECT_EQ(from_file.resistances().Rs_DC, 0.5);
    EXPECT_EQ(from_file.resistances().Rs, 0.5);

    Calc_Eq_im_transient set;
    set.set_resistance(0.75);
    set.bind(store, 0);
    EXPECT_EQ(set.resistances().Rs_DC, 0.75);
    // What the voltage equation takes comes with the first step.
    EXPECT_EQ(set.resistances().Rs, 0.0);
}

TEST(im_bind, connection_of_the_file_counts_where_none_was_set) {
    KZB_STORE store;
    ImConstants delta;
    delta.connection = 1;
    im_constants_file(store, delta);
    Calc_Eq_im_transient from_file;
    EXPECT_EQ(from_file.connection(), -1);
    from_file.bind(store, 0);
    EXPECT_EQ(from_file.connection(), 1);
    EXPECT_EQ(from_file.machine().number_of_poles, 4);
    Calc_Eq_im_transient set;
    set.set_connection(0);
    set.bind(store, 0);
    EXPECT_EQ(set.connection(), 0);
}

TEST(im_bind, network_has_four_elements_for_both_kinds_of_file) {
    for (const bool constants : {true, false}) {
        KZB_STORE store;
        constants ? im_constants_file(store) : im_tables_file(store);
        Calc_Eq_im_transient model;
        EXPECT_EQ(model.network(), nullptr);
        model.bind(store, 0);
        ASSERT_NE(model.network(), nullptr);
        EXPECT_EQ(model.network()->pattern, 12);
        EXPECT_EQ(model.network()->elements.size(), 4U);
        EXPECT_EQ(model.network()->resistance_of(1), 0.0);
    }
}

TEST(im_bind, iron_loss_counts_by_switch_form_and_data) {
    for (const int flag : {0, 1}) {
        for (const int old : {0, 1}) {
            for (const bool own : {false, true}) {
                for (const bool one : {false, true}) {
                    KZB_STORE store;
                    im_tables_file(store);
                    if (own) {
                        constant(store, tables_category, "ironloss_table", im_axes(), 1.0);
                    }
                    if (one) {
                        kzb::put_double(store, "loss_table", "any", 1.0);  // the category alone
                    }
                    Calc_Eq_im_transient model;
                    model.set_use_old_ironloss(old);
                    model.bind(store, flag);
                    const bool expected = flag != 0 && (old != 0 ? own : own || one);
                    EXPECT_EQ(model.ironloss_enabled(), expected) << flag << old << own << one;
                }
            }
        }
    }
}

TEST(im_bind, turns_become_ratios_that_nothing_reads) {
    KZB_STORE store;
    im_constants_file(store);
    kzb::put_double(store, "control", "turns_in_coil", 20.0);
    Calc_Eq_im_transient model;
    model.set_turns1(10.0);
    model.bind(store, 0);
    EXPECT_EQ(model.corrections().turns1, 0.5);
    EXPECT_EQ(model.corrections().turns2, 1.0);
    EXPECT_EQ(model.corrections().correction_flux, 0.5);  // turns2 * 1 * turns1 * 1 * 1
}

TEST(im_bind, corrections_reach_no_result) {
    const std::array<double, 3> v = {100.0, -50.0, -50.0};
    double torque[2];
    double current[2];
    for (const int n : {0, 1}) {
        KZB_STORE store;
        im_constants_file(store);
        Calc_Eq_im_transient model;
        if (n == 1) {
            model.set_correction_flux(2.0);
            model.set_correction_magnet(3.0);
            model.set_correction_steel(4.0);
            model.set_correction_inductance(5.0);
            model.set_correction_torque(6.0);
            model.set_turns1(7.0);
            model.set_turns2(8.0);
        }
        model.bind(store, 0);
        im_sample(model, v, 0.0, 0.0);
        im_sample(model, v, 0.1, 1e-3);
        im_sample(model, {-20.0, 90.0, -70.0}, 0.2, 2e-3);
        torque[n] = model.torque();
        current[n] = model.current_output(1);
    }
    EXPECT_NE(torque[0], 0.0);
    EXPECT_EQ(torque[0], torque[1]);
    EXPECT_EQ(current[0], current[1]);
}

TEST(im_bind, reset_brings_the_defaults_back) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.set_correction_flux(2.0);
    model.set_dc_voltage(300.0);
    model.set_carrier_frequency(1e4);
    model.bind(store, 0);
    im_sample(model, {100.0, -50.0, -50.0}, 0.1, 1e-3);
    EXPECT_EQ(model.state().step_count, 2);
    EXPECT_NE(model.current_output(1), 0.0);
    model.reset();
    EXPECT_EQ(model.state().step_count, 1);
    EXPECT_EQ(model.connection(), -1);
    EXPECT_EQ(model.inductance_type(), -1);
    EXPECT_EQ(model.corrections().correction_flux, 1.0);
    EXPECT_EQ(model.machine().dc_voltage, 0.0);
    EXPECT_EQ(model.machine().carrier_frequency, 0.0);
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_EQ(model.network(), nullptr);
}

TEST(im_bind, defaults_are_those_of_a_machine_without_a_file) {
    const Calc_Eq_im_transient model;
    EXPECT_EQ(model.secondary_coil_temperature(), 293.15);
    EXPECT_EQ(model.base_secondary_coil_temperature(), 293.15);
    EXPECT_EQ(model.secondary_coil_coefficient(), 3810.0);
    EXPECT_EQ(model.state().step_count, 1);
    EXPECT_EQ(model.torque_type(), 0);
    EXPECT_FALSE(model.ironloss_enabled());
    EXPECT_FALSE(model.user_copper_loss_enabled());
    EXPECT_EQ(model.copper_loss_secondary_current(), 0.0);
}

}  // namespace
}  // namespace kzb_test::im_bind_test
