// What no caller should do: models without a store, broken files, numbers that are none.
#include <gtest/gtest.h>

#include <limits>

#include "im_files.h"

namespace kzb_test::im_safety_test {
namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

void use_everything(Calc_Eq_im_transient& model, double displacement, double time, double value) {
    const double v[3] = {value, -value, 0.5 * value};
    double x[4] = {value, value, value, value};
    double d[4];
    model.step_voltage_driven(v, displacement, time, v);
    model.step_current_driven(v, displacement, time);
    model.observe_state(time, displacement, x);
    model.voltage_derivative(v, time, displacement, d, x);
    model.current_derivative(v, time, displacement, d, x);
    model.execute(v, displacement, time, v, value, x);
    model.torque_from_currents(v, displacement, time, value, x);
    model.compute_torque();
    model.accept();
}

TEST(im_safety, a_model_without_a_store_stays_as_it_is) {
    Calc_Eq_im_transient model;
    use_everything(model, 0.1, 0.2, 10.0);
    EXPECT_EQ(model.torque(), 0.0);
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_EQ(model.induced_voltage(1), 0.0);
    EXPECT_EQ(model.electrical_speed(), 0.0);
    double d[4] = {1.0, 1.0, 1.0, 1.0};
    const double x[4] = {1.0, 1.0, 1.0, 1.0};
    model.voltage_derivative(x, 1.0, 1.0, d, x);
    for (const double each : d) {
        EXPECT_EQ(each, 0.0);
    }
    KZB_STORE store;
    im_constants_file(store);
    model.bind(store, 1);
    model.reset();
    use_everything(model, 0.1, 0.2, 10.0);
    EXPECT_EQ(model.torque(), 0.0);
}

TEST(im_safety, numbers_that_are_none_run_through) {
    for (const bool constants : {true, false}) {
        for (const double bad : {nan_value, infinite, -infinite, 1e308, 0.0}) {
            KZB_STORE store;
            constants ? im_constants_file(store) : im_tables_file(store);
            Calc_Eq_im_transient model;
            model.bind(store, 1);
            model.set_user_copper_loss_enabled(true);
            use_everything(model, 0.1, 0.1, bad);
            use_everything(model, bad, 0.2, 1.0);
            use_everything(model, 0.1, bad, 1.0);
            model.set_slip_omega(bad);
            use_everything(model, 0.1, 0.3, 1.0);
            EXPECT_EQ(model.state().step_count, 5);
        }
    }
}

TEST(im_safety, an_empty_store_makes_a_machine_without_numbers) {
    KZB_STORE store;
    Calc_Eq_im_transient model;
    model.bind(store, 1);
    use_everything(model, 0.1, 0.1, 1.0);
    use_everything(model, 0.2, 0.2, 1.0);
    EXPECT_EQ(model.inductance_type(), 0);
    EXPECT_TRUE(std::isnan(im_value(store, "L11_table")));  // leakage 0 / 0
    EXPECT_EQ(model.state().step_count, 3);
}

TEST(im_safety, a_category_without_tables_gives_the_value_of_no_value) {
    KZB_STORE store;
    im_control(store, 4, 0);
    kzb::put_double(store, "InductionParam_HigherAccuracy", "any", 1.0);
    Calc_Eq_im_transient model;
    model.bind(store, 1);
    EXPECT_EQ(model.inductance_type(), 1);
    use_everything(model, 0.1, 0.1, 1.0);
    EXPECT_EQ(model.state().inductances.m_Ls, kzb::KZB_NO_VALUE);
    EXPECT_EQ(model.secondary_resistance(), kzb::KZB_NO_VALUE);
    EXPECT_EQ(store.error, kzb::lookup_no_table);
}

TEST(im_safety, tables_of_any_dimension_are_looked_up) {
    for (const int dim : {1, 3, 6, 9}) {
        KZB_STORE store;
        im_tables_file(store);
        const std::vector<Axis> axes(static_cast<std::size_t>(dim), nodes(0.0, 1.0, 2));
        for (const char* const key :
             {"L11_table", "M12_table", "M21_table", "L22_table", "R2_table", "ironloss_table"}) {
            constant(store, "InductionParam_HigherAccuracy", key, axes, 0.5);
        }
        constant(store, "equivalent_resistance_table", "copper_loss", axes, 0.25);
        constant(store, "loss_table", "iron_loss", axes, 0.25);
        Calc_Eq_im_transient model;
        model.bind(store, 1);
        model.set_user_copper_loss_enabled(true);
        use_everything(model, 0.1, 0.1, 1.0);
        EXPECT_EQ(model.state().inductances.m_Ls, 0.5) << dim;
        EXPECT_EQ(model.resistances().R_equivalent, 0.25) << dim;
        EXPECT_EQ(model.iron_loss(), 0.25) << dim;
    }
}

TEST(im_safety, inductances_of_zero_divide_by_the_smallest_pivot) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.set_resistance(1e-300);
    model.bind(store, 0);
    for (const char* const key : {"L11_table", "M12_table", "M21_table", "L22_table"}) {
        im_fill(store, key, 0.0);
    }
    use_everything(model, 0.1, 0.1, 1.0);
    EXPECT_EQ(model.state().inductances.m_Ls, 0.0);
}

TEST(im_safety, phases_out_of_range_are_left_alone) {
    Calc_Eq_im_transient model;
    for (const int phase : {-2147483647 - 1, -1, 0, 7, 2147483647}) {
        model.set_current(phase, 1.0);
        model.set_initial_current(phase, 1.0);
        EXPECT_EQ(model.current_output(phase), 0.0);
        EXPECT_EQ(model.induced_voltage(phase), 0.0);
    }
    EXPECT_EQ(model.state().current_latest, kzb::SixCurrents{});
    EXPECT_EQ(model.state().current_accepted, kzb::SixCurrents{});
}

TEST(im_safety, two_stores_of_one_revision_are_told_apart) {
    KZB_STORE first;
    im_tables_file(first);
    KZB_STORE second;
    ImTableValues m;
    m.l11 = 0.5;
    im_tables_file(second, m);
    ASSERT_EQ(first.revision, second.revision);
    Calc_Eq_im_transient model;
    const double x[4] = {};
    model.bind(first, 0);
    model.observe_state(1.0, 0.0, x);
    model.bind(second, 0);
    model.observe_state(1.0, 0.0, x);
    EXPECT_EQ(model.state().inductances.m_Ls, 0.5);
}

}  // namespace
}  // namespace kzb_test::im_safety_test
