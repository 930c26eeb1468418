// Files of generic models whose circuit can't be executed: refused when they are opened, and safe to terminate.
#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "interface/generic_accessors.h"
#include "interface/generic_machine.h"

namespace kzb_test::generic_faults_test {
namespace {

struct Fault {
    const char* what;
    std::function<void(ModelFile&)> spoil;
};

// Changes a record of the small machine.
std::function<void(ModelFile&)> with(const char* path, int place, const Fields& fields) {
    return [=](ModelFile& file) { put_fields(file, record_name(path, place), fields); };
}
// Appends a record.
std::function<void(ModelFile&)> also(const char* path, const Fields& fields) {
    return [=](ModelFile& file) { add_record(file, path, fields); };
}

constexpr int highest = std::numeric_limits<int>::max();
constexpr int lowest = std::numeric_limits<int>::min();
constexpr const char* element = "element_list;element";
constexpr const char* motion = "motion_condition_list;motion_condition";
constexpr const char* coil_set = "element_set_list;coil_set";

const Fault faults[] = {
    {"element without a first terminal", with(element, 0, {{"1st_terminal_id", 99}})},
    {"element without a second terminal", with(element, 0, {{"2nd_terminal_id", 0}})},
    {"element without its type", with(element, 2, {{"element_type_id", 99}})},
    {"element of nothing", also(element, {{"id", 50}})},
    {"source that has no port", [](ModelFile& file) { add_terminal(file, 9, 1, "loose"); }},
    {"source of two ports", also("input_port_list;source", {{"id", 3}, {"terminal_id", 1}})},
    {"port 0 of a source", with("input_port_list;source", 0, {{"id", 0}})},
    {"port of a source beyond their number", with("input_port_list;source", 0, {{"id", 3}})},
    {"highest port of a source", with("input_port_list;source", 1, {{"id", highest}})},
    {"lowest port of a coil", with("output_port_list;coil_fem", 0, {{"id", lowest}})},
    {"port of a coil beyond their number", with("output_port_list;coil_fem", 1, {{"id", 3}})},
    {"port 0 of a resistor", with("output_port_list;resistor", 2, {{"id", 0}})},
    {"port of a resistor beyond their number", with("output_port_list;resistor", 2, {{"id", 4}})},
    {"port of an inductor beyond their number", with("output_port_list;coil_const", 0, {{"id", 2}})},
    {"port of a capacitor below 1", with("output_port_list;capacitor", 0, {{"id", -1}})},
    {"port of a probe beyond their number", with("output_port_list;voltage_probe", 1, {{"id", 1000000}})},
    {"motion 0", with(motion, 0, {{"id", 0}})},
    {"motion beyond their number", with(motion, 1, {{"id", 3}})},
    {"lowest motion", with(motion, 1, {{"id", lowest}})},
    {"axis of a motion beyond the tables'", with(motion, 0, {{"axis_no", 5}})},
    {"highest axis of a motion", with(motion, 0, {{"axis_no", highest}})},
    {"coil set of an unknown type", with(coil_set, 0, {{"type", 2}})},
    {"coil set of a negative type", with(coil_set, 0, {{"type", -1}})},
    {"axis of a coil set beyond the tables'", with(coil_set, 0, {{"current_axis_no", 5}})},
    {"highest axis of a coil set", with(coil_set, 0, {{"current_axis_no", highest}})},
    {"coil set without a coil",
     [](ModelFile& file) {
         put_fields(file, "element_set_list;0;coil_set;0;coil;0;", {{"coil_id", 77}});
     }},
    {"moving coil set without a motion", with(coil_set, 0, {{"type", 1}, {"motion_id", 77}})},
    {"coil set that refers to none", with(coil_set, 0, {{"flg_ref_coil", 1}, {"ref_coil_set_id", 77}})},
    {"coil set that refers to itself", with(coil_set, 0, {{"flg_ref_coil", 1}, {"ref_coil_set_id", 1}})},
    {"coil sets that refer to each other",
     [](ModelFile& file) {
         put_fields(file, record_name(coil_set, 0), {{"type", 1}, {"flg_ref_coil", 1}, {"ref_coil_set_id", 2}});
         put_fields(file, record_name(coil_set, 1), {{"type", 1}, {"flg_ref_coil", 1}, {"ref_coil_set_id", 1}});
     }},
    {"table axis 0", also("table_axis_list;axis", {{"id", 0}, {"type", 1}, {"reference_id", 1}})},
    {"table axis beyond their number", also("table_axis_list;axis", {{"id", 2}, {"type", 1}, {"reference_id", 1}})},
    {"lowest table axis", also("table_axis_list;axis", {{"id", lowest}})},
    {"flux phase beyond the coils",
     [](ModelFile& file) {
         add_record(file, "table_axis_list;axis", {{"id", 1}, {"type", 1}, {"reference_id", 1}});
         add_record(file, "flux_list;phase_list;phase", {{"index", 2}, {"reference_id", 1}});
     }},
    {"flux phase below 0",
     [](ModelFile& file) {
         add_record(file, "table_axis_list;axis", {{"id", 1}, {"type", 1}, {"reference_id", 1}});
         add_record(file, "flux_list;phase_list;phase", {{"index", lowest}, {"reference_id", 2}});
     }},
    {"element of a type of an unknown kind", with("element_type_list;element_type", 2, {{"type", 1234}})},
    {"circuit too large for its dense system",
     [](ModelFile& file) {
         for (int id = 1000; id < 3001; ++id) {
             put_fields(file, record_name("terminal_list;terminal", id), {{"id", id}, {"type", 0}});
         }
     }},
};

class GenericFaults : public testing::TestWithParam<Fault> {};
INSTANTIATE_TEST_SUITE_P(GenericModel, GenericFaults, testing::ValuesIn(faults), [](const auto& fault) {
    std::string name = fault.param.what;
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
});

TEST_P(GenericFaults, refuse_the_file_and_leave_a_safe_handle) {
    ModelFile file;
    generic_machine(file);
    GetParam().spoil(file);
    Calculator calc(file);
    EXPECT_EQ(calc.status, 180001);
    EXPECT_EQ(kzbcalcCheckMotorType(calc), 10008);
    for (const GenericSetter& row : generic_setters) {
        EXPECT_EQ(row.set(1, 1.0, calc), 180039) << row.name;
    }
    for (const GenericGetter& row : generic_getters) {
        EXPECT_EQ(row.get(1, calc), 180039.0) << row.name;
    }
    for (const GenericArrayCall& row : generic_array_calls) {
        EXPECT_EQ(row.call(calc), 180039) << row.name;
    }
    EXPECT_EQ(kzbcalcSetData(calc), 180039);
    EXPECT_EQ(kzbcalcExecute(calc), 0);
    EXPECT_EQ(kzbcalcUpdate(calc), 180039);
    // The calculator's own destructor terminates the handle.
}

TEST(GenericFault, mode_is_tested_before_the_circuit) {
    ModelFile file;
    generic_machine(file);
    put_fields(file, record_name(element, 0), {{"1st_terminal_id", 99}});
    Calculator calc(file, 0);
    EXPECT_EQ(calc.status, 180030);
}

TEST(GenericFault, terminate_after_a_refusal_gives_0) {
    ModelFile file;
    generic_machine(file);
    put_fields(file, record_name(element, 0), {{"1st_terminal_id", 99}});
    KZB_CALC* handle = nullptr;
    ASSERT_EQ(kzbcalcInitialize(file.path().c_str(), 1, &handle), 180001);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(kzbcalcTerminate(handle), 0);
}

// Odd, but told: what these files state can be executed.
const Fault oddities[] = {
    {"the sound machine", [](ModelFile&) {}},
    {"port of a component that is none", with("output_port_list;resistor", 0, {{"component_id", 99}})},
    {"two ports of one number", with("output_port_list;resistor", 0, {{"id", 2}})},
    {"force table of another number", with(motion, 0, {{"forcetable_id", 99}})},
    {"motion of an unknown kind", with(motion, 0, {{"type", 7}})},
    {"limit of zero", with(motion, 0, {{"max_displacement", 0.0}})},
    // Such a type has the number 0, whatever the record says.
    {"element type of an unknown kind",
     [](ModelFile& file) {
         put_fields(file, record_name("element_type_list;element_type", 2), {{"type", 1234}});
         put_fields(file, record_name(element, 2), {{"element_type_id", 0}});
     }},
    {"coil of no group", with("element_type_list;element_type", 5, {{"type", 1}, {"group_id", 0}})},
    {"coil of no turns", with("element_type_list;element_type", 0, {{"turns", 0.0}})},
    {"user parameters without categories",
     [](ModelFile& file) {
         constexpr const char* count = "num_user_specified_parameter";
         file.integer(count, count, 3);
     }},
    {"highest number of user parameters",
     [](ModelFile& file) {
         constexpr const char* count = "num_user_specified_parameter";
         file.integer(count, count, highest);
     }},
    {"negative number of user parameters",
     [](ModelFile& file) {
         constexpr const char* count = "num_user_specified_parameter";
         file.integer(count, count, lowest);
     }},
    {"coil set without axes", with(coil_set, 0, {{"current_axis_no", 0}})},
    {"coil set with a lowest axis", with(coil_set, 0, {{"current_axis_no", lowest}})},
    {"iron loss without axes",
     [](ModelFile& file) {
         file.table("ironloss", "table", {{0.0, 1.0}}, constant(3.0));
     }},
    {"iron loss table of more axes than are told",
     [](ModelFile& file) {
         file.table("ironloss", "table", {{0.0, 1.0}, {0.0, 1.0}, {0.0, 1.0}}, constant(3.0));
         add_record(file, "ironloss;axis_list;axis", {{"axis_no", 1}});
     }},
    {"iron loss axes of any number",
     [](ModelFile& file) {
         file.table("ironloss", "table", {{0.0, 1.0}}, constant(3.0));
         for (const int axis : {0, -1, 7, highest, lowest}) {
             add_record(file, "ironloss;axis_list;axis",
                        {{"axis_no", axis}, {"reference_type", 0}, {"reference_id", lowest}});
         }
     }},
};

class GenericOddities : public testing::TestWithParam<Fault> {};
INSTANTIATE_TEST_SUITE_P(GenericModel, GenericOddities, testing::ValuesIn(oddities), [](const auto& fault) {
    std::string name = fault.param.what;
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
});

TEST_P(GenericOddities, are_stepped_and_answer) {
    ModelFile file;
    generic_machine(file);
    GetParam().spoil(file);
    Calculator calc(file);
    if (calc.status == 180001) {
        GTEST_FAIL() << "refused";
    }
    ASSERT_EQ(calc.status, 0);
    kzbcalcSetIronlossCalc(calc);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetData(calc);
    for (int k = 0; k < 4; ++k) {
        kzbcalcSetTime(1e-3 * k, calc);
        std::vector<double> inputs(static_cast<std::size_t>(kzbcalcGetNumOfInputPortsForGenericModel(calc)), 1.0);
        kzbcalcSetInputValuesForGenericModel(inputs.data(), static_cast<int>(inputs.size()), calc);
        EXPECT_EQ(kzbcalcExecute(calc), 0);
        const int ports = kzbcalcGetNumOfOutputPortsForGenericModel(calc);
        ASSERT_GE(ports, 0);
        std::vector<double> outputs(static_cast<std::size_t>(ports) + 1, -77.0);
        EXPECT_EQ(kzbcalcGetOutputValuesForGenericModel(outputs.data(), ports, calc), 0);
        EXPECT_EQ(outputs.back(), -77.0);
        EXPECT_EQ(kzbcalcUpdate(calc), 0);
    }
}

// A port whose component is none answers 0.0 and takes nothing.
TEST(GenericFault, port_without_a_component_is_0) {
    ModelFile file;
    generic_machine(file);
    put_fields(file, record_name("output_port_list;resistor", 0), {{"component_id", 99}});
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    EXPECT_EQ(kzbcalcSetResistanceForGenericModel(1, 7.0, calc), 0);
    EXPECT_EQ(kzbcalcSetInitialResistorCurrentForGenericModel(1, 7.0, calc), 0);
    EXPECT_EQ(kzbcalcGetResistanceForGenericModel(1, calc), 0.0);
    EXPECT_EQ(kzbcalcGetResistorCurrentForGenericModel(1, calc), 0.0);
    EXPECT_EQ(kzbcalcGetResistorIdFromNameForGenericModel("load", calc), 180052);
    EXPECT_EQ(kzbcalcGetResistorIdFromNameForGenericModel("bleeder", calc), 2);
}

// Force tables are told by their own number; a number without one gives 0.0, the last of a number stands.
TEST(GenericFault, force_without_a_table_is_0) {
    ModelFile file;
    generic_machine(file);
    put_fields(file, record_name(motion, 0), {{"forcetable_id", 2}, {"coef_force", 5.0}});
    put_fields(file, record_name(motion, 1), {{"forcetable_id", 2}, {"coef_force", 7.0}});
    Calculator calc(file);
    EXPECT_EQ(kzbcalcGetForceForGenericModel(1, calc), 0.0);
    EXPECT_EQ(kzbcalcGetCorrectionOfForceForGenericModel(1, calc), 0.0);
    EXPECT_EQ(kzbcalcGetCorrectionOfForceForGenericModel(2, calc), 7.0);
    EXPECT_EQ(kzbcalcSetCorrectionOfForceForGenericModel(1, 3.0, calc), 0);
    EXPECT_EQ(kzbcalcGetCorrectionOfForceForGenericModel(1, calc), 0.0);
    EXPECT_EQ(kzbcalcGetMotionReferTableIdForGeneric(1, calc), 2);
}

// The category of parameters is what makes the file offer its application; a model without it opens all the same.
TEST(GenericFault, file_without_the_application_opens) {
    ModelFile file;
    file.integer("control", "motor_type", 10008);
    add_source(file, 1, "supply");
    add_terminal(file, 2, 2, "ground");
    add_resistor(file, 1, 1, 2, 4.0, "load");
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    kzbcalcSetData(calc);
    for (int k = 0; k < 2; ++k) {
        kzbcalcSetTime(1e-3 * k, calc);
        kzbcalcSetPowerSupplyForGenericModel(1, 8.0, calc);
        kzbcalcExecute(calc);
        kzbcalcUpdate(calc);
    }
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc), 2.0, 1e-12);
}

}  // namespace
}  // namespace kzb_test::generic_faults_test
