// A sample of a generic model takes nothing from the heap once a run has had its first samples, in either form of its
// tables.
#include <gtest/gtest.h>

#include <cmath>

#include "interface/allocation_counter.h"
#include "interface/generic_accessors.h"
#include "interface/generic_machine.h"
#include "interface/other_machines.h"

namespace kzb_test::generic_allocation_test {
namespace {

// One sample through the calls by id and those of arrays, every getter included.
double run_generic_sample(KZB_CALC* calc, int k) {
    double values[32];
    for (int i = 0; i < 32; ++i) {
        values[i] = 5.0 + 4.0 * std::cos(0.2 * k - 2.0 * i);
    }
    const int inputs = kzbcalcGetNumOfInputPortsForGenericModel(calc);
    const int outputs = kzbcalcGetNumOfOutputPortsForGenericModel(calc);
    kzbcalcSetTime(1e-4 * k, calc);
    kzbcalcSetInputValuesForGenericModel(values, inputs, calc);
    for (int id = 1; id <= 2; ++id) {
        kzbcalcSetPowerSupplyForGenericModel(id, values[id - 1], calc);
        kzbcalcSetPowerSupplySwitchForGenericModel(id, 1, calc);
        kzbcalcSetDisplacementForGenericModel(id, 0.3 * k, calc);
        kzbcalcSetCoilTemperatureForGenericModel(id, 300.0, calc);
    }
    kzbcalcSetUserInputParameter(1, 0.5 * k, calc);
    kzbcalcExecute(calc);
    double sum = 0.0;
    for (const GenericGetter& row : generic_getters) {
        for (int id = 1; id <= 3; ++id) {
            sum += row.get(id, calc);
        }
    }
    sum += kzbcalcGetIronloss(calc) + kzbcalcGetUserSpecifiedParameter(2, calc);
    EXPECT_EQ(kzbcalcGetOutputValuesForGenericModel(values, outputs, calc), 0);
    for (int i = 0; i < outputs; ++i) {
        sum += values[i];
    }
    kzbcalcUpdate(calc);
    return sum;
}

void expect_no_generic_allocation(ModelFile& file, const std::string& name) {
    for (const int interpolation : {0, 1, 2, 3, 4}) {
        SCOPED_TRACE(testing::Message() << name << " interpolation " << interpolation);
        Calculator calc(file);
        ASSERT_EQ(calc.status, 0);
        ASSERT_EQ(kzbcalcSetInterpolationType(interpolation, calc), 0);
        kzbcalcSetTemperatureCorrectionCalc(calc);
        kzbcalcSetIronlossCalc(calc);
        kzbcalcSetData(calc);
        int k = 0;
        for (; k < 3; ++k) {
            run_generic_sample(calc, k);
        }
        const long before = allocations;
        double sum = 0.0;
        for (; k < 53; ++k) {
            sum += run_generic_sample(calc, k);
        }
        const long after = allocations;
        EXPECT_EQ(after, before);
        EXPECT_NE(sum, 0.0);
    }
}

TEST(Allocation, sample_of_a_generic_model_of_coil_sets_allocates_nothing) {
    ModelFile file;
    generic_machine(file);
    add_generic_outputs(file);
    add_generic_iron_loss(file);
    expect_no_generic_allocation(file, "single coils");
}

// Three coils in star on three sources, as one set over amplitude, phase and angle.
TEST(Allocation, sample_of_a_generic_model_of_three_phases_allocates_nothing) {
    ModelFile file;
    file.integer("control", "motor_type", 10008).number("parameter", "RU", 0.0);
    for (int id = 1; id <= 3; ++id) {
        add_source(file, id, "phase");
    }
    add_terminal(file, 4, 0, "star");
    for (int id = 1; id <= 3; ++id) {
        add_coil(file, id, id, 4, 0.5, 3, "coil");
    }
    add_motion(file, 1, 1, 1, 3, 360.0, "rotor");
    add_record(file, "element_set_list;coil_set",
               {{"id", 1},
                {"type", 1},
                {"motion_id", 1},
                {"current_axis_no", 1},
                {"phase_axis_no", 2},
                {"number_of_poles", 2}});
    for (int k = 0; k < 3; ++k) {
        add_record(file, "element_set_list;coil_set;coil", {{"coil_id", k + 1}, {"phase_diff", 120.0 * k}});
    }
    const auto table = [&](const char* path, int rows, const std::function<double(const Point&)>& value) {
        file.table(record_name(path, 0).c_str(), "table",
                   {amplitudes, betas, every(30.0, 0.0, 360.0), every(1.0, 0.0, rows - 1.0)}, value, {3});
    };
    // Flux of phase k of a round machine: L a cos(phase + angle - 120 k), a good way to the real thing.
    table("flux_list;flux_table", 3,
          [](const Point& x) { return 1e-3 * x[0] * std::cos((x[1] + x[2] - 120.0 * x[3]) * rad_per_deg); });
    table("inductance_list;diff_inductance_table", 9,
          [](const Point& x) { return static_cast<int>(x[3]) % 4 == 0 ? 2e-3 : -0.5e-3; });
    table("torque_force_list;torque_table", 1, constant(2.0));
    expect_no_generic_allocation(file, "three phases");
}

TEST(Allocation, sample_of_a_generic_model_of_table_axes_allocates_nothing) {
    ModelFile file;
    generic_machine(file);
    add_generic_outputs(file);
    add_generic_iron_loss(file);
    add_record(file, "table_axis_list;axis",
               {{"id", 1},
                {"type", 1},
                {"reference_id", 1},
                {"correction_expression", "v * gain"},
                {"correction_variable", "v"}});
    add_record(file, "table_axis_list;axis", {{"id", 2}, {"type", 0}, {"definition", "i2 * half + 0 * sin(angle)"}});
    add_record(file, "table_axis_list;axis", {{"id", 3}, {"type", 2}, {"reference_id", 1}});
    add_record(file, "table_axis_list;axis", {{"id", 4}, {"type", 2}, {"reference_id", 2}});
    add_record(file, "input_parameter_list;input_parameter", {{"type", 3}, {"name", "half"}, {"value", 0.5}});
    add_record(file, "user_defined_equation_list;user_defined_equation",
               {{"type", 1}, {"name", "i2"}, {"reference_id", 2}});
    add_record(file, "user_defined_equation_list;user_defined_equation",
               {{"type", 2}, {"name", "angle"}, {"reference_id", 1}});
    add_record(file, "correction_parameter_list;correction_parameter", {{"name", "gain"}, {"value", 1.5}});
    for (int coil = 1; coil <= 2; ++coil) {
        add_record(file, "flux_list;phase_list;phase",
                   {{"index", coil - 1},
                    {"reference_id", coil},
                    {"correction_expression", "v * gain"},
                    {"correction_variable", "v"}});
        add_record(file, "torque_force_list;phase_list;phase",
                   {{"index", coil - 1}, {"correction_expression", "v + 1"}, {"correction_variable", "v"}});
    }
    expect_no_generic_allocation(file, "table axes");
}

// The switch between a running and a floating source, and the settings between samples.
TEST(Allocation, settings_of_a_generic_model_allocate_nothing) {
    ModelFile file;
    generic_machine(file);
    add_generic_outputs(file);
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetData(calc);
    char text[17][128];
    char* labels[17];
    for (int i = 0; i < 17; ++i) {
        labels[i] = text[i];
    }
    const auto make_calls = [&](int k) {
        for (const GenericSetter& row : generic_setters) {
            EXPECT_EQ(row.set(1, 1.0, calc), 0) << row.name;
        }
        for (const GenericLookup& row : generic_lookups) {
            EXPECT_EQ(row.find(row.names[0].c_str(), calc), 1);
        }
        kzbcalcSetPowerSupplyTypeForGenericModel(1, k % 2, calc);
        kzbcalcSetPowerSupplySwitchForGenericModel(1, k / 2 % 2, calc);
        EXPECT_EQ(kzbcalcGetInputLabelsForGenericModel(labels, static_cast<int>(sizeof text), calc), 0);
        EXPECT_EQ(kzbcalcGetOutputLabelsForGenericModel(labels, static_cast<int>(sizeof text), calc), 0);
        kzbcalcSetTime(1e-4 * k, calc);
        kzbcalcExecute(calc);
        kzbcalcUpdate(calc);
    };
    int k = 0;
    for (; k < 8; ++k) {
        make_calls(k);
    }
    const long before = allocations;
    for (; k < 40; ++k) {
        make_calls(k);
    }
    const long after = allocations;
    EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace kzb_test::generic_allocation_test
