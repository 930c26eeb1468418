// Force, user-specified values, iron loss, motions and expressions.
#include "circuit/generic/generic_files.h"

namespace kzb_test {
namespace {

constexpr double pi = 3.14159265358979323846;

// A linear motion as only axis; nothing of a circuit but a ground.
struct MovingFile : GenericFile {
    explicit MovingFile(int motion_type = 0, double limit = 2.0, bool table_axes = true) {
        terminal(1, 2);
        add("motion_condition_list;motion_condition", {{"id", 1},
                                                       {"type", motion_type},
                                                       {"axis_no", 1},
                                                       {"forcetable_id", 1},
                                                       {"coef_force", 3.0},
                                                       {"max_displacement", limit},
                                                       {"name", std::string("plunger")}});
        if (table_axes) {
            add("table_axis_list;axis", {{"id", 1}, {"type", 2}, {"reference_id", 1}});
        }
    }
    void step(GenericRun& run, double position, double time = 0.0) {
        run.model.step({}, {position}, time, {}, run.status);
    }
    void param(int table_id, int resolution = 0) {
        const int i = kzb::get_int(store, "num_user_specified_parameter", "num_user_specified_parameter") + 1;
        kzb::put_int(store, "num_user_specified_parameter", "num_user_specified_parameter", i);
        put("user_specified_parameter" + std::to_string(i), {{"table_id", table_id},
                                                             {"output_port_id", i},
                                                             {"reference_resolution", resolution},
                                                             {"coef_output_port", 5.0}});
    }
};

const GenericAxis travel{{0.0, 1.0, 2.0}, false};

double position_of(const std::vector<double>& x) {
    return x[0];
}

// A table of one row has no use of its index: the force is that of the position alone.
TEST(GenericForce, one_row_does_not_use_the_index) {
    MovingFile file;
    file.record_table("torque_force_list;torque_table", {travel, places(1)}, position_of);
    GenericRun run(file.store);
    file.step(run, 1.5);
    EXPECT_DOUBLE_EQ(run.model.force(1), 1.5);
    EXPECT_EQ(run.model.force(2), 0.0);
}

TEST(GenericForce, coefficient_acts_in_the_coil_set_form_alone) {
    for (const bool table_axes : {true, false}) {
        MovingFile file(0, 2.0, table_axes);
        file.record_table("torque_force_list;torque_table", {travel, places(2)},
                          [](const auto& x) { return x[0] + 10.0 * x[1]; });
        file.put(
            "torque_force_list;0;phase_list;0;phase;0;",
            {{"index", 0}, {"correction_expression", std::string("2 * f")}, {"correction_variable", std::string("f")}});
        GenericRun run(file.store);
        file.step(run, 1.5);
        EXPECT_DOUBLE_EQ(run.model.force(1), table_axes ? 2.0 * 1.5 : 3.0 * 1.5);
        run.model.set_force_correction(1, 4.0);
        EXPECT_DOUBLE_EQ(run.model.force(1), table_axes ? 2.0 * 1.5 : 4.0 * 1.5);
        EXPECT_EQ(run.model.force_correction(1), 4.0);
    }
}

// Two motions share a table: the coefficient of the last one counts.
TEST(GenericForce, of_one_id_given_twice_is_the_last) {
    MovingFile file(0, 2.0, false);
    file.add("motion_condition_list;motion_condition",
             {{"id", 2}, {"type", 0}, {"forcetable_id", 1}, {"coef_force", 7.0}, {"max_displacement", 2.0}});
    file.record_table("torque_force_list;torque_table", {travel, places(1)}, position_of);
    GenericRun run(file.store);
    run.model.step({}, {1.5, 0.0}, 0.0, {}, run.status);
    EXPECT_EQ(run.model.force_correction(1), 7.0);
    EXPECT_DOUBLE_EQ(run.model.force(1), 7.0 * 1.5);
}

TEST(GenericOutput, coefficient_acts_in_the_coil_set_form_alone) {
    for (const bool table_axes : {true, false}) {
        MovingFile file(0, 2.0, table_axes);
        file.param(1);
        file.record_table("output_list;output_table", {travel, places(2)}, position_of);
        kzb::put_string(file.store, "user_specified_parameter1", "correction_expression", "v + 100");
        kzb::put_string(file.store, "user_specified_parameter1", "correction_variable", "v");
        GenericRun run(file.store);
        file.step(run, 0.5);
        EXPECT_DOUBLE_EQ(run.model.user_parameter(1), table_axes ? 100.5 : 2.5);
        EXPECT_EQ(run.model.user_parameter(2), 0.0);
    }
}

// With one table the row is table_id - 1. Row 3 of three reaches the lookup, where the last row is held: 2 + 7. Row 4
// and row -1 are 0.
TEST(GenericOutput, row_one_past_the_last_reaches_the_lookup) {
    MovingFile file;
    for (const int table_id : {3, 4, 5, 0}) {
        file.param(table_id);
    }
    file.record_table("output_list;output_table", {travel, places(3)}, [](const auto& x) { return x[1] + 7.0; });
    GenericRun run(file.store);
    file.step(run, 0.5);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(1), 9.0);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(2), 9.0);
    EXPECT_EQ(run.model.user_parameter(3), 0.0);
    EXPECT_EQ(run.model.user_parameter(4), 0.0);
}

// Two tables: rows count within each resolution.
TEST(GenericOutput, rows_of_two_tables_count_by_resolution) {
    MovingFile file;
    file.param(9, 0);
    file.param(9, 4);
    file.param(9, 0);
    file.param(9, 1);
    file.record_table("output_list;output_table", {travel, places(2)}, [](const auto& x) { return x[1]; });
    file.record_table(
        "output_list;output_table", {travel, places(2)}, [](const auto& x) { return 50.0 + x[1]; }, 1);
    GenericRun run(file.store);
    file.step(run, 0.5);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(1), 0.0);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(2), 50.0);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(3), 1.0);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(4), 51.0);
}

// Both parameters name port 2; the first one, row 0 with 3.0, is read there: 3 * 5, then 3 * 2.
TEST(GenericOutput, first_parameter_of_a_port_is_read_and_corrected) {
    MovingFile file(0, 2.0, false);
    file.param(1);
    file.param(2);
    kzb::put_int(file.store, "user_specified_parameter1", "output_port_id", 2);
    file.record_table("output_list;output_table", {travel, places(2)}, [](const auto& x) { return x[1] + 3.0; });
    GenericRun run(file.store);
    file.step(run, 0.5);
    EXPECT_EQ(run.model.user_parameter(1), 0.0);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(2), 15.0);
    run.model.set_user_parameter_correction(2, 2.0);
    EXPECT_DOUBLE_EQ(run.model.user_parameter(2), 6.0);
}

// An iron loss over the motion's speed: a linear one in its unit per second, any other in turns per minute.
TEST(GenericIronLoss, speed_of_a_motion_has_the_unit_of_its_kind) {
    for (const int type : {0, 1, 7}) {
        MovingFile file(type, type == 0 ? 2.0 : 360.0);
        file.table("ironloss", {{{-1e5, 1e5}, false}}, position_of);
        file.put("ironloss;0;axis_list;0;axis;0;",
                 {{"axis_no", 1}, {"physical_type", 3}, {"reference_type", 2}, {"reference_id", 1}});
        GenericRun run(file.store);
        run.model.set_iron_loss_enabled(true);
        file.step(run, 0.5, 0.0);
        EXPECT_EQ(run.model.iron_loss(), 0.0);
        run.model.update();
        file.step(run, 0.6, 1e-3);  // 100 per second
        EXPECT_NEAR(run.model.iron_loss(), type == 0 ? 100.0 : 100.0 / (2.0 * pi) * 60.0, 1e-8);
    }
}

TEST(GenericIronLoss, is_taken_when_switched_on) {
    MovingFile file;
    file.table("ironloss", {{{0.0, 100.0}, false}}, [](const auto&) { return 8.0; });
    GenericRun run(file.store);
    file.step(run, 0.5);
    EXPECT_EQ(run.model.iron_loss(), 0.0);
    run.model.set_iron_loss_enabled(true);
    file.step(run, 0.5);
    EXPECT_EQ(run.model.iron_loss(), 8.0);
}

TEST(GenericIronLoss, user_input_reaches_the_axis_by_its_number) {
    MovingFile file;
    file.table("ironloss", {{{0.0, 100.0}, false}, {{0.0, 100.0}, false}},
               [](const auto& x) { return x[0] + 2.0 * x[1]; });
    file.add("input_port_list;user_input", {{"id", 2}, {"loss_axis_no", 1}});
    file.add("input_port_list;user_input", {{"id", 1}, {"loss_axis_no", 2}});
    for (int i = 0; i < 2; ++i) {
        file.put("ironloss;0;axis_list;0;axis;" + std::to_string(i) + ";", {{"axis_no", i + 1}, {"reference_id", 77}});
    }
    GenericRun run(file.store);
    run.model.set_iron_loss_enabled(true);
    run.model.set_user_inputs({10.0, 20.0});
    file.step(run, 0.5);
    EXPECT_DOUBLE_EQ(run.model.iron_loss(), 20.0 + 2.0 * 10.0);
}

// The value of an axis of kind expression, on the grid {-5, 5}.
double axis_of(const std::string& definition, const std::string& correction = "") {
    MovingFile file(0, 2.0, false);
    file.add("table_axis_list;axis", {{"id", 1},
                                      {"type", 0},
                                      {"definition", definition},
                                      {"correction_expression", correction},
                                      {"correction_variable", std::string("c")}});
    file.add("input_parameter_list;input_parameter", {{"type", 3}, {"name", std::string("k")}, {"value", 2.5}});
    file.add("input_parameter_list;input_parameter", {{"type", 2}, {"name", std::string("no")}, {"value", 2.5}});
    file.add("user_defined_equation_list;user_defined_equation",
             {{"name", std::string("x")}, {"type", 2}, {"reference_id", 1}});
    file.record_table("flux_list;flux_table", {{{-5.0, 5.0}, false}, places(1)}, position_of);
    GenericRun run(file.store);
    file.step(run, 0.5);
    return run.model.tables().axes()[0];
}

TEST(GenericExpression, definition_reads_constants_and_positions) {
    EXPECT_DOUBLE_EQ(axis_of("k * x + 1"), 2.25);
}

TEST(GenericExpression, bad_one_is_0_and_one_that_is_no_number_is_the_first_node) {
    EXPECT_EQ(axis_of("k * ("), 0.0);
    EXPECT_EQ(axis_of("unknown + 1"), 0.0);
    EXPECT_EQ(axis_of("no + 1"), 0.0);  // a parameter of another type is no variable
    EXPECT_EQ(axis_of(""), 0.0);
    EXPECT_EQ(axis_of("0 / 0"), -5.0);
}

TEST(GenericExpression, empty_correction_leaves_the_axis_and_a_bad_one_makes_it_0) {
    EXPECT_DOUBLE_EQ(axis_of("x", ""), 0.5);
    EXPECT_DOUBLE_EQ(axis_of("x", "c * 3"), 1.5);
    EXPECT_EQ(axis_of("x", "c * *"), 0.0);
}

TEST(GenericExpression, correction_reads_parameters_beside_its_variable) {
    MovingFile file;
    file.record_table("torque_force_list;torque_table", {travel, places(1)}, position_of);
    file.add("correction_parameter_list;correction_parameter", {{"name", std::string("gain")}, {"value", 10.0}});
    file.put("torque_force_list;0;phase_list;0;phase;0;", {{"index", 0},
                                                           {"correction_expression", std::string("gain * f + f")},
                                                           {"correction_variable", std::string("f")}});
    GenericRun run(file.store);
    file.step(run, 1.5);
    EXPECT_DOUBLE_EQ(run.model.force(1), 10.0 * 1.5 + 1.5);
}

// What an expression assigns is forgotten: the second evaluation is as the first.
TEST(GenericExpression, assignment_doesnt_last) {
    kzb::Expression expression({"a", "b"}, "a = a + b");
    expression.values() = {1.0, 2.0};
    EXPECT_EQ(expression.evaluate(), 3.0);
    EXPECT_EQ(expression.evaluate(), 3.0);
}

TEST(GenericMotion, limit_is_the_period_of_a_motion_that_is_not_periodic) {
    MovingFile file(1, 90.0);
    GenericRun run(file.store);
    EXPECT_NEAR(run.model.motion_upper_limit(1), pi / 2.0, 1e-15);
    EXPECT_TRUE(run.model.motion_is_rotation(1));
    EXPECT_FALSE(run.model.motion_is_periodic(1));
    EXPECT_EQ(run.model.motion_upper_limit(2), 0.0);
    EXPECT_EQ(run.model.motion_by_name("plunger"), 1);
    EXPECT_EQ(run.model.motion_by_name(""), 0);
    EXPECT_EQ(run.model.motion_table_id(1), 1);
    // Only 1 makes a motion periodic.
    for (const int flag : {1, 2}) {
        kzb::put_int(file.store, "motion_condition_list;0;motion_condition;0;", "flg_periodic", flag);
        GenericRun periodic(file.store);
        EXPECT_EQ(periodic.model.motion_upper_limit(1) == 0.0, flag == 1);
    }
}

// A motion of another kind reaches the tables as 0.
TEST(GenericMotion, of_another_kind_stands_at_0) {
    MovingFile file(7);
    GenericRun run(file.store);
    file.step(run, 1.5);
    EXPECT_EQ(run.model.tables().axes()[0], 0.0);
    EXPECT_FALSE(run.model.motion_is_rotation(1));
}

TEST(GenericMotion, positions_of_the_wrong_number_change_nothing) {
    MovingFile file;
    GenericRun run(file.store);
    file.step(run, 1.5);
    run.model.step({}, {0.2, 0.3}, 0.0, {}, run.status);
    EXPECT_EQ(run.model.tables().axes()[0], 1.5);
}

}  // namespace
}  // namespace kzb_test
