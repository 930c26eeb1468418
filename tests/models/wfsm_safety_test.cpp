// Files and calls without sense: no crash, no hang, a plain answer.
#include <gtest/gtest.h>

#include <limits>

#include "support/quiet.h"
#include "wfsm_files.h"

namespace kzb_test::wfsm_safety_test {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

// Everything that an interface may call, in one sample.
void exercise(Calc_Eq_wfsm& model) {
    const Four voltages[] = {{10.0, -5.0, -5.0, 3.0}, {nan, 1.0, infinite, -infinite}, {1e308, -1e308, 0.0, 1e308}};
    const Four signals[] = {{1.0, 1.0, 1.0, 1.0}, {0.0, nan, 0.0, 0.0}, {0.0, 0.0, 0.0, 0.0}};
    const double positions[] = {0.1, nan, infinite, -1e300};
    int error = -1;
    double time = 0.0;
    for (const Four& v : voltages) {
        for (const Four& s : signals) {
            for (const double position : positions) {
                time += 1e-3;
                model.step(v.data(), position, time, s.data(), error);
                model.step(v.data(), position, time, s.data(), error);
                model.evaluate(v.data(), position, time);
                model.accept();
            }
        }
    }
    for (const double t : {nan, infinite, -1.0, 0.0}) {
        model.step(voltages[0].data(), 0.1, t, signals[0].data(), error);
        model.evaluate(voltages[0].data(), 0.1, t);
        model.accept();
    }
    for (const int coil : {std::numeric_limits<int>::min(), -1, 0, 1, 4, 5, std::numeric_limits<int>::max()}) {
        model.induced_voltage(coil);
        model.stored_induced_voltage(coil);
        model.terminal_current(coil);
        model.coil_flux(coil);
        model.inductance(coil, coil);
        model.set_initial_current(coil, nan);
    }
    model.set_initial_time(nan);
    model.step(voltages[0].data(), 0.1, time, signals[0].data(), error);
}

TEST(wfsm_safety, unbound_model_answers_with_nothing) {
    Calc_Eq_wfsm model;
    int error = 7;
    const Four v{1.0, 2.0, 3.0, 4.0};
    EXPECT_FALSE(model.step(v.data(), 0.0, 0.0, v.data(), error));
    EXPECT_EQ(error, 0);
    model.evaluate(v.data(), 0.0, 0.0);
    EXPECT_EQ(model.torque(), 0.0);
    EXPECT_EQ(model.terminal_current(1), 0.0);
    EXPECT_EQ(model.user_parameter_count(), 0);
    exercise(model);
}

TEST(wfsm_safety, empty_store) {
    KZB_STORE store;
    Calc_Eq_wfsm model;
    EXPECT_FALSE(model.bind(store));
    model.set_loss_mode(1, 1);
    exercise(model);
}

TEST(wfsm_safety, each_table_missing_in_turn) {
    const Environment few("DORN_KZ_DEBUG_NITR", "9");
    for (const int missing : {0, 1, 2}) {
        KZB_STORE store;
        linear_file(store);
        const char* const names[][2] = {
            {"current_flux", "flux"}, {"harmonic_inductance", "inductance"}, {"harmonic_torque", "torque_ibeta"}};
        kzb::delete_table(store, names[missing][0], names[missing][1]);
        Calc_Eq_wfsm model;
        EXPECT_TRUE(model.bind(store));
        exercise(model);
    }
}

TEST(wfsm_safety, tables_of_other_shapes) {
    const QuietErrors quiet;
    const Environment few("DORN_KZ_DEBUG_NITR", "9");
    for (const int dim : {1, 2, 4, 6, 9}) {
        KZB_STORE store;
        wfsm_basics(store, {.current_type = dim % 2});
        const std::vector<Axis> axes(static_cast<std::size_t>(dim), nodes(0, 10, 2));
        for (const auto& [category, key] : {std::pair{"current_flux", "flux"},
                                            {"harmonic_inductance", "inductance"},
                                            {"harmonic_torque", "torque_ibeta"},
                                            {"hysloss", "hysloss0"}}) {
            table(store, category, key, axes, [](const std::vector<double>& x) { return x[0] + 1.0; });
        }
        kzb::put_int(store, "hysloss", "numMat", 1);
        Calc_Eq_wfsm model;
        model.bind(store);
        model.set_loss_mode(1, 1);
        exercise(model);
    }
}

TEST(wfsm_safety, number_of_materials_without_backing_is_bounded) {
    KZB_STORE store;
    linear_file(store);
    kzb::put_int(store, "hysloss", "numMat", std::numeric_limits<int>::max());
    Calc_Eq_wfsm model;
    model.bind(store);
    model.set_loss_mode(1, 0);
    sample(model, {1.0, 2.0, 3.0, 4.0}, 0.0, 0.0);
    sample(model, {1.0, 2.0, 3.0, 4.0}, 0.0, 1e-3);
}

// No element: nothing is solved, the currents stay, no voltage is induced.
TEST(wfsm_safety, unknown_connection_has_no_network) {
    const Environment few("DORN_KZ_DEBUG_NITR", "9");
    for (const int connection : {2, 1000}) {
        KZB_STORE store;
        linear_file(store, {.connection = connection, .positions = 9});
        Calc_Eq_wfsm model;
        model.set_initial_current(4, 5.0);
        model.bind(store);
        EXPECT_EQ(model.network().elements.size(), 0U);
        for (int n = 0; n < 4; ++n) {
            EXPECT_TRUE(sample(model, {50.0, 0.0, 0.0, 9.0}, n * 0.1, n * 1e-3));
            EXPECT_EQ(model.terminal_current(4), 5.0);
            EXPECT_EQ(model.stored_induced_voltage(4), 0.0);
        }
        exercise(model);
    }
}

TEST(wfsm_safety, machine_without_poles) {
    const Environment few("DORN_KZ_DEBUG_NITR", "9");
    for (const int type : {-1, 0, 1}) {
        KZB_STORE store;
        linear_file(store, {.poles = 0, .current_type = type});
        Calc_Eq_wfsm model;
        model.bind(store);
        exercise(model);
    }
}

// Currents that are no number never settle; the passes are counted all the same.
TEST(wfsm_safety, passes_without_a_number_end) {
    const QuietErrors quiet;
    const Environment passes("DORN_KZ_DEBUG_NITR", "300");
    const Environment relaxation("DORN_KZ_DEBUG_ACCEL", "nan");
    KZB_STORE store;
    linear_file(store, {.positions = 9});
    Calc_Eq_wfsm model;
    model.set_initial_current(1, 3.0);
    model.bind(store);
    EXPECT_TRUE(sample(model, {1.0, 2.0, 3.0, 4.0}, 0.0, 0.0, false));
    // The first change, 0, is a number: its estimate is the best though it is none itself.
    EXPECT_TRUE(std::isnan(model.terminal_current(1)));
    const Environment plain("DORN_KZ_DEBUG_ACCEL", "1");
    Calc_Eq_wfsm start;
    start.set_initial_current(1, nan);
    start.bind(store);
    EXPECT_TRUE(sample(start, {1.0, 2.0, 3.0, 4.0}, 0.0, 0.0, false));
    EXPECT_TRUE(std::isnan(start.terminal_current(1)));
    EXPECT_EQ(start.terminal_current(4), 0.0);
}

TEST(wfsm_safety, tables_with_numbers_beyond_all_bounds) {
    const QuietErrors quiet;
    const Environment few("DORN_KZ_DEBUG_NITR", "9");
    for (const double value : {nan, infinite, -infinite, 1e308, 5e-324}) {
        KZB_STORE store;
        wfsm_basics(store);
        const std::vector<Axis> four(4, nodes(0, 10, 2));
        constant(store, "current_flux", "flux", {four[0], four[1], four[2], four[3], components(4)}, value);
        constant(store, "harmonic_inductance", "inductance", {four[0], four[1], four[2], four[3], components(16)},
                 value);
        constant(store, "harmonic_torque", "torque_ibeta", four, value);
        Calc_Eq_wfsm model;
        model.bind(store);
        exercise(model);
    }
}

TEST(wfsm_safety, binding_to_another_store_forgets_the_first) {
    KZB_STORE first;
    linear_file(first, {.lf = 1.0});
    KZB_STORE second;
    linear_file(second, {.lf = 3.0});
    second.revision = first.revision;
    Calc_Eq_wfsm model;
    const Four i{1.0, -1.0, 0.0, 2.0};
    model.bind(first);
    model.evaluate(i.data(), 0.0, 0.0);
    EXPECT_NEAR(model.field_inductance(), 1.0, 1e-12);
    model.bind(second);
    model.evaluate(i.data(), 0.0, 0.0);
    EXPECT_NEAR(model.field_inductance(), 3.0, 1e-12);
}

TEST(wfsm_safety, table_replaced_while_stepping_is_seen) {
    KZB_STORE store;
    linear_file(store);
    Calc_Eq_wfsm model;
    model.bind(store);
    sample(model, {1.0, 2.0, -3.0, 4.0}, 0.0, 0.0);
    linear_file(store, {.lf = 7.0});
    sample(model, {1.0, 2.0, -3.0, 4.0}, 0.0, 1e-3);
    EXPECT_NEAR(model.field_inductance(), 7.0, 1e-12);
}

}  // namespace
}  // namespace kzb_test::wfsm_safety_test
