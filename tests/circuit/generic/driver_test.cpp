// The order of a run: when a step solves, what switches and inputs of the wrong number do, what a model without parts
// or without its application gives.
#include "circuit/generic/generic_files.h"

namespace kzb_test {
namespace {

using kzb::PortGroup;

// A coil of 2 Ohm and a saturating flux between source and ground.
struct OneCoil : GenericFile {
    explicit OneCoil(int coil_id = 1) {
        source(1, 1);
        terminal(2, 2);
        coil(coil_id, 1, 2, 2.0, 1, 1);
        add("table_axis_list;axis", {{"id", 1}, {"type", 1}, {"reference_id", 1}});
        add("flux_list;phase_list;phase", {{"index", 0}, {"reference_id", 1}});
        record_table("flux_list;flux_table", {{{-20.0, -10.0, 0.0, 10.0, 20.0}, false}, places(1)},
                     [](const auto& x) { return 0.1 * x[0]; });
    }
};

const kzb::KZFEMCoil& first_coil(const kzb::Calc_Eq_generic& model) {
    return *kzb::as_fem_coil(model.circuit().element_type_at(0).get());
}

TEST(GenericDriver, first_step_only_reads_the_tables_at_the_initial_currents) {
    OneCoil file;
    GenericRun run(file.store);
    run.model.set_current(PortGroup::coils, 1, 7.0);
    EXPECT_EQ(run.model.step({50.0}, {}, 123.0, {1.0}, run.status), 1);
    EXPECT_EQ(run.model.current(PortGroup::coils, 1), 7.0);
    EXPECT_DOUBLE_EQ(run.model.coil_flux(1), 0.7);  // 0.1 H * 7 A
    EXPECT_NEAR(first_coil(run.model).scaled_inductance(1), 0.1, 1e-12);
    EXPECT_EQ(run.model.pass_counts().passes, 0);
    // Nor does a second one at another time, as long as nothing was accepted.
    run.model.step({50.0}, {}, 124.0, {1.0}, run.status);
    EXPECT_EQ(run.model.current(PortGroup::coils, 1), 7.0);
}

TEST(GenericDriver, no_time_or_time_backwards_is_no_solve) {
    OneCoil file;
    GenericRun run(file.store);
    run.sample(0.0, {10.0});
    run.sample(1e-3, {10.0});
    const double current = run.model.current(PortGroup::coils, 1);
    const long long passes = run.model.pass_counts().passes;
    EXPECT_GT(current, 0.0);
    EXPECT_EQ(run.model.step({1000.0}, {}, 1e-3, {1.0}, run.status), 1);
    EXPECT_EQ(run.model.step({1000.0}, {}, 0.5e-3, {1.0}, run.status), 1);
    EXPECT_EQ(run.model.current(PortGroup::coils, 1), current);
    EXPECT_EQ(run.model.pass_counts().passes, passes);
}

// Without acceptance the previous values stay: one step of 2 ms, made twice, is one step of 2 ms.
TEST(GenericDriver, step_without_acceptance_starts_from_the_accepted_values) {
    OneCoil file;
    GenericRun run(file.store);
    run.sample(0.0, {10.0});
    run.model.step({10.0}, {}, 1e-3, {1.0}, run.status);
    run.model.step({10.0}, {}, 2e-3, {1.0}, run.status);
    // i = u dt / (L + R dt)
    EXPECT_NEAR(run.model.current(PortGroup::coils, 1), 10.0 * 2e-3 / (0.1 + 2.0 * 2e-3), 1e-9);
}

TEST(GenericDriver, switches_or_inputs_of_the_wrong_number_change_nothing) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.resistor(1, 1, 2, 4.0);
    GenericRun run(file.store);
    run.sample(0.0, {8.0});
    run.sample(1e-3, {8.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 2.0);
    run.sample(2e-3, {80.0, 80.0}, {}, {1.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 2.0);
    run.sample(3e-3, {8.0}, {}, {0.0, 0.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 2.0);
}

TEST(GenericDriver, model_without_branches_takes_one_pass) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 0);
    GenericRun run(file.store);
    run.sample(0.0, {5.0});
    EXPECT_EQ(run.sample(1e-3, {5.0}), 1);
    EXPECT_EQ(run.model.pass_counts().passes, 1);
    // The free node's row is empty: 0 over 1e-20.
    EXPECT_EQ(run.model.circuit().terminal_at(1)->potential, 0.0);
}

// A coil without resistance whose table gives half of its flux's slope as inductance: from 0 A the first pass goes to
// 2 A, twice the way to the solution, the second comes back by the same distance, and so on; all numbers are exact. Of
// passes that moved equally far the first stands.
TEST(GenericDriver, step_that_does_not_converge_ends_with_its_50th_pass_and_the_best_of_them) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.coil(1, 1, 2, 0.0, 1, 1);
    file.add("element_set_list;coil_set", {{"id", 1}, {"type", 0}, {"current_axis_no", 1}});
    file.put("element_set_list;0;coil_set;0;coil;0;", {{"coil_id", 1}});
    const GenericAxis current{{-16.0, 16.0}, false};
    file.record_table("flux_list;flux_table", {current, places(1)}, [](const auto& x) { return 0.5 * x[0]; });
    file.record_table("inductance_list;diff_inductance_table", {current, places(1)}, [](const auto&) { return 0.25; });
    GenericRun run(file.store);
    run.sample(0.0, {0.0});
    // 512 V for 1/1024 s: 0.5 Vs, which are 1 A.
    EXPECT_EQ(run.sample(1.0 / 1024.0, {512.0}), 1);
    EXPECT_EQ(run.model.current(PortGroup::coils, 1), 2.0);
    EXPECT_EQ(run.model.pass_counts().solved_steps, 1);
    EXPECT_EQ(run.model.pass_counts().passes, 50);
    EXPECT_EQ(run.model.pass_counts().most_passes, 50);
    EXPECT_EQ(run.model.pass_counts().unconverged_steps, 1);
}

TEST(GenericDriver, store_without_the_application_still_opens_with_result_0) {
    OneCoil file;
    kzb::put_int(file.store, "control", "motor_type", 10000);
    GenericRun run(file.store);
    EXPECT_EQ(run.result, 0);
    run.sample(0.0, {10.0});
    run.sample(1e-3, {10.0});
    EXPECT_NEAR(run.model.current(PortGroup::coils, 1), 10.0 * 1e-3 / (0.1 + 2.0 * 1e-3), 1e-9);
}

// 0 or below is refused with 0; capacitance and flux correction answer 0 for a value that they take as well.
TEST(GenericDriver, setters_refuse_zero_and_two_of_them_answer_0_for_success) {
    OneCoil file;
    file.capacitor(2, 1, 2, 1e-3);
    file.resistor(3, 1, 2, 1.0);
    GenericRun run(file.store);
    EXPECT_EQ(run.model.set_value(PortGroup::resistors, 1, "resistance", 0.0), 0);
    EXPECT_EQ(run.model.set_value(PortGroup::resistors, 1, "resistance", -1.0), 0);
    EXPECT_EQ(run.model.value(PortGroup::resistors, 1, "resistance"), 1.0);
    EXPECT_EQ(run.model.set_value(PortGroup::resistors, 1, "resistance", 2.0), 1);
    EXPECT_EQ(run.model.value(PortGroup::resistors, 1, "resistance"), 2.0);
    EXPECT_EQ(run.model.set_value(PortGroup::capacitors, 1, "capacitance", 2e-3), 0);
    EXPECT_EQ(run.model.value(PortGroup::capacitors, 1, "capacitance"), 2e-3);
    EXPECT_EQ(run.model.set_value(PortGroup::coils, 1, "coef_flux", 1.5), 0);
    EXPECT_EQ(run.model.value(PortGroup::coils, 1, "coef_flux"), 1.5);
    EXPECT_EQ(run.model.set_coil_temperature(1, 0.0), 0);
    EXPECT_EQ(run.model.set_coil_temperature(1, 300.0), 1);
    // However small, a positive value is taken.
    EXPECT_EQ(run.model.set_coil_temperature(1, 1e-3), 1);
    EXPECT_EQ(run.model.coil_temperature(1), 1e-3);
    EXPECT_EQ(run.model.set_value(PortGroup::resistors, 1, "resistance", 1e-9), 1);
    EXPECT_EQ(run.model.value(PortGroup::resistors, 1, "resistance"), 1e-9);
    EXPECT_EQ(run.model.set_value(PortGroup::resistors, 2, "resistance", 2.0), 0);
    EXPECT_EQ(run.model.value(PortGroup::resistors, 0, "resistance"), 0.0);
}

TEST(GenericDriver, coil_without_a_group_is_reported) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.coil(1, 1, 2, 1.0, 0, 1);
    file.coil(2, 1, 2, 1.0, 1, 1);
    GenericRun run(file.store);
    const auto messages = run.model.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].first, 180032);
    EXPECT_EQ(messages[0].second,
              "The circuit included in the specified kzb file is invalid.Modify the input mqd file to link FEM coil "
              "component is linked with FEM coil condition using DORN-Studio and recreate kzb file.");
}

}  // namespace
}  // namespace kzb_test
