// Ports of a generic model: their counts and labels.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "interface/generic_machine.h"
#include "interface/other_machines.h"

namespace kzb_test::generic_ports_test {
namespace {

using testing::ElementsAre;

constexpr std::size_t label_size = 128;
using Buffer = std::array<char, label_size + 1>;

// The labels; each buffer must stay untouched behind its 128 bytes.
std::vector<std::string> labels(int (*get)(char**, int, KZB_CALC*), int ports, KZB_CALC* calc) {
    const auto count = static_cast<std::size_t>(ports);
    std::vector<Buffer> buffers(count);
    std::vector<char*> pointers;
    for (Buffer& buffer : buffers) {
        buffer.fill('#');
        pointers.push_back(buffer.data());
    }
    EXPECT_EQ(get(pointers.data(), static_cast<int>(label_size * count), calc), 0);
    std::vector<std::string> texts;
    for (const Buffer& buffer : buffers) {
        EXPECT_EQ(buffer[label_size], '#');
        texts.emplace_back(buffer.data());
    }
    return texts;
}

TEST(GenericPorts, labels_stand_in_port_order) {
    ModelFile file;
    generic_machine(file);
    add_generic_outputs(file);
    add_generic_iron_loss(file);
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcGetNumOfInputPortsForGenericModel(calc), 6);
    EXPECT_THAT(labels(kzbcalcGetInputLabelsForGenericModel, 6, calc),
                ElementsAre("Electrical Terminal1 [V]/[A]", "Electrical Terminal2 [V]/[A]", "Temperature Terminal1 [K]",
                            "Temperature Terminal2 [K]", "Displacement1 [deg]/[m]", "Displacement2 [deg]/[m]"));
    ASSERT_EQ(kzbcalcGetNumOfOutputPortsForGenericModel(calc), 17);
    EXPECT_THAT(
        labels(kzbcalcGetOutputLabelsForGenericModel, 17, calc),
        ElementsAre("I_FEMCoil1 [A]", "I_FEMCoil2 [A]", "I_Constant_Resitance1 [A]", "I_Constant_Resitance2 [A]",
                    "I_Constant_Resitance3 [A]", "I_Constant_Inductance1 [A]", "I_Constant_Capacitance1 [A]",
                    "V_Probe1 [V]", "V_Probe2 [V]", "V_Probe3 [V]", "Torque1 [Nm]/Force1 [N]",
                    "Torque2 [Nm]/Force2 [N]", "P_Ironloss1 [W]", "Flux_FEMCoil1 [wb]", "Flux_FEMCoil2 [wb]",
                    "User_Specifed_Value1", "User_Specifed_Value2"));
}

TEST(GenericPorts, model_without_iron_loss_has_no_port_of_it) {
    ModelFile file;
    generic_machine(file);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcGetNumOfOutputPortsForGenericModel(calc), 14);
    const std::vector<std::string> texts = labels(kzbcalcGetOutputLabelsForGenericModel, 14, calc);
    EXPECT_EQ(texts[11], "Torque2 [Nm]/Force2 [N]");
    EXPECT_EQ(texts[12], "Flux_FEMCoil1 [wb]");
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);
}

TEST(GenericPorts, size_must_have_128_bytes_for_each_label) {
    ModelFile file;
    generic_machine(file);
    Calculator calc(file);
    char text[14][label_size];
    char* pointers[14];
    for (std::size_t i = 0; i < 14; ++i) {
        std::memset(text[i], '#', label_size);
        pointers[i] = text[i];
    }
    for (const int size : {6 * 128 - 1, 128, 0, -1, -2147483647 - 1}) {
        EXPECT_EQ(kzbcalcGetInputLabelsForGenericModel(pointers, size, calc), 180063) << size;
    }
    for (const int size : {14 * 128 - 1, 128, 0, -1, -2147483647 - 1}) {
        EXPECT_EQ(kzbcalcGetOutputLabelsForGenericModel(pointers, size, calc), 180063) << size;
    }
    for (const auto& buffer : text) {
        EXPECT_EQ(std::count(std::begin(buffer), std::end(buffer), '#'), 128);
    }
    // More room than labels: the rest stays.
    EXPECT_EQ(kzbcalcGetInputLabelsForGenericModel(pointers, 2147483647, calc), 0);
    EXPECT_STREQ(text[5], "Displacement2 [deg]/[m]");
    EXPECT_EQ(text[6][0], '#');
}

TEST(GenericPorts, null_buffers_are_passed_over_and_a_null_array_is_refused) {
    ModelFile file;
    generic_machine(file);
    Calculator calc(file);
    char last[label_size];
    char* pointers[6] = {nullptr, nullptr, nullptr, nullptr, nullptr, last};
    EXPECT_EQ(kzbcalcGetInputLabelsForGenericModel(pointers, 6 * 128, calc), 0);
    EXPECT_STREQ(last, "Displacement2 [deg]/[m]");
    EXPECT_EQ(kzbcalcGetInputLabelsForGenericModel(nullptr, 6 * 128, calc), 180063);
    EXPECT_EQ(kzbcalcGetOutputLabelsForGenericModel(nullptr, 14 * 128, calc), 180063);
}

TEST(GenericPorts, model_without_ports_needs_no_buffers) {
    ModelFile file;
    file.integer("control", "motor_type", 10008);
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    EXPECT_EQ(kzbcalcGetNumOfInputPortsForGenericModel(calc), 0);
    EXPECT_EQ(kzbcalcGetNumOfOutputPortsForGenericModel(calc), 0);
    EXPECT_EQ(kzbcalcGetInputLabelsForGenericModel(nullptr, 0, calc), 0);
    EXPECT_EQ(kzbcalcGetOutputLabelsForGenericModel(nullptr, 0, calc), 0);
    EXPECT_EQ(kzbcalcGetOutputLabelsForGenericModel(nullptr, -1, calc), 180063);
    EXPECT_EQ(kzbcalcGetOutputValuesForGenericModel(nullptr, 0, calc), 0);
}

// Every group has a number of its own, so that none stands for another; beyond nine the labels grow a digit.
TEST(GenericPorts, each_group_counts_its_own_components) {
    ModelFile file;
    file.integer("control", "motor_type", 10008);
    add_terminal(file, 100, 2, "ground");
    for (int k = 1; k <= 3; ++k) {
        add_source(file, k, "source");
    }
    int id = 1;
    for (int k = 1; k <= 2; ++k, ++id) {
        add_coil(file, id, 1, 100, 1.0, 0, "coil");
    }
    for (int k = 1; k <= 4; ++k, ++id) {
        add_resistor(file, id, 1, 100, 1.0, "resistor");
    }
    for (int k = 1; k <= 5; ++k, ++id) {
        add_inductor(file, id, 1, 100, 1.0, "inductor");
    }
    for (int k = 1; k <= 6; ++k, ++id) {
        add_capacitor(file, id, 1, 100, 1.0, "capacitor");
    }
    for (int k = 1; k <= 12; ++k, ++id) {
        add_probe(file, id, 1, 100, "probe");
    }
    for (int k = 1; k <= 7; ++k) {
        add_motion(file, k, 1, 1, 0, 360.0, "motion");
    }
    constexpr const char* count = "num_user_specified_parameter";
    file.integer(count, count, 10);
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcGetNumOfInputPortsForGenericModel(calc), 3 + 2 + 7);
    // Coil currents, resistors, inductors, capacitors, probes, forces, no iron loss, fluxes, user values.
    ASSERT_EQ(kzbcalcGetNumOfOutputPortsForGenericModel(calc), 2 + 4 + 5 + 6 + 12 + 7 + 0 + 2 + 10);
    const std::vector<std::string> texts = labels(kzbcalcGetOutputLabelsForGenericModel, 48, calc);
    EXPECT_EQ(texts[2 + 4 + 5 + 6 + 12 - 1], "V_Probe12 [V]");
    EXPECT_EQ(texts[2 + 4 + 5 + 6 + 12 + 7 - 1], "Torque7 [Nm]/Force7 [N]");
    EXPECT_EQ(texts[47], "User_Specifed_Value10");
    EXPECT_EQ(kzbcalcGetNumberOfUserSpecifiedParameters(calc), 10);
}

// Eight groups that count as the status that refuses them, and the user parameters.
TEST(GenericPorts, machines_of_fixed_ports_count_an_unusable_number) {
    ModelFile rotary;
    rotary_frame(rotary, 3, 0.5);
    add_harmonic(rotary, 4e-3, -1e-3, 0.1, 1.0);
    rotary.integer("num_user_specified_parameter", "num_user_specified_parameter", 1)
        .integer("user_specified_parameter1", "table_id", 1)
        .integer("user_specified_parameter1", "output_port_id", 1)
        .table("user_specified_parameter_table", "user_specified_parameter_table1",
               {currents, betas, every(5.0, 0.0, 180.0)}, constant(7.0), {3});
    Calculator calc(rotary);
    ASSERT_EQ(calc.status, 0);
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcGetNumberOfUserSpecifiedParameters(calc), 1);
    EXPECT_EQ(kzbcalcGetNumOfOutputPortsForGenericModel(calc), 1440313);  // 8 * 180039 + 1

    ModelFile wound;
    wound_field_machine(wound, 2e-3, 0.0, 0.1, 0.5, 5.0);
    Calculator field(wound);
    EXPECT_EQ(kzbcalcGetNumOfOutputPortsForGenericModel(field), 1440312);
    EXPECT_EQ(kzbcalcGetNumOfInputPortsForGenericModel(field), 180039);
}

}  // namespace
}  // namespace kzb_test::generic_ports_test
