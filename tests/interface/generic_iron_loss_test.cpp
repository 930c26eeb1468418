// Iron loss of a generic model: its table over user inputs, coil currents and speeds, from the file itself and from a
// text of measured points.
#include <gtest/gtest.h>

#include <cstdlib>

#include "interface/generic_machine.h"
#include "interface/measured_text.h"

namespace kzb_test::generic_iron_loss_test {
namespace {

constexpr double h = 1e-3;

void sample(KZB_CALC* calc, double time, double angle) {
    kzbcalcSetTime(time, calc);
    kzbcalcSetDisplacementForGenericModel(1, angle, calc);
    kzbcalcExecute(calc);
    kzbcalcUpdate(calc);
}

// With 2 A in coil 1 that stay: the supply gives 4 V on its 2 Ohm.
void prepare(KZB_CALC* calc) {
    kzbcalcSetInitialCoilCurrentForGenericModel(1, 2.0, calc);
    kzbcalcSetPowerSupplyForGenericModel(1, 4.0, calc);
    kzbcalcSetData(calc);
}

// 6 degrees in 1 ms are 1000 revolutions per minute.
void expect_loss_of_inputs(KZB_CALC* calc, double input) {
    sample(calc, 0.0, 0.0);
    EXPECT_NEAR(kzbcalcGetIronloss(calc), generic_iron_loss(input, 2.0, 0.0), 1e-9);
    for (int k = 1; k <= 3; ++k) {
        sample(calc, h * k, 6.0 * k);
        EXPECT_NEAR(kzbcalcGetIronloss(calc), generic_iron_loss(input, 2.0, 1000.0), 1e-6) << k;
    }
    kzbcalcSetUserInputParameter(1, input + 10.0, calc);
    sample(calc, 4 * h, 24.0);
    EXPECT_NEAR(kzbcalcGetIronloss(calc), generic_iron_loss(input + 10.0, 2.0, 1000.0), 1e-6);
    // No time passes: no speed.
    sample(calc, 4 * h, 30.0);
    EXPECT_NEAR(kzbcalcGetIronloss(calc), generic_iron_loss(input + 10.0, 2.0, 0.0), 1e-6);
}

class GenericIronLoss : public testing::Test {
  protected:
    GenericIronLoss() {
        generic_machine(file_);
        add_generic_iron_loss(file_);
    }
    ModelFile file_;
};

TEST_F(GenericIronLoss, follows_user_input_current_and_speed) {
    Calculator calc(file_);
    ASSERT_EQ(calc.status, 0);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 1);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    prepare(calc);
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 7.0, calc), 0);
    expect_loss_of_inputs(calc, 7.0);
}

TEST_F(GenericIronLoss, inputs_are_0_until_they_are_given) {
    Calculator calc(file_);
    kzbcalcSetIronlossCalc(calc);
    prepare(calc);
    expect_loss_of_inputs(calc, 0.0);
}

TEST_F(GenericIronLoss, is_0_and_its_inputs_are_refused_while_it_is_off) {
    Calculator calc(file_);
    prepare(calc);
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 7.0, calc), 180064);
    sample(calc, 0.0, 0.0);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
    // Switched on, it is in use once the data are set.
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 7.0, calc), 180064);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 7.0, calc), 0);
    sample(calc, h, 0.0);
    EXPECT_NEAR(kzbcalcGetIronloss(calc), generic_iron_loss(7.0, 2.0, 0.0), 1e-9);
}

// The number comes before the rule.
TEST_F(GenericIronLoss, user_inputs_are_numbered_from_1) {
    Calculator calc(file_);
    EXPECT_EQ(kzbcalcGetNumberOfUserInputParameters(calc), 1);
    for (const int index : {0, 2, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(kzbcalcSetUserInputParameter(index, 1.0, calc), 180065);
    }
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 1.0, calc), 180064);
}

TEST_F(GenericIronLoss, old_iron_loss_in_the_environment_keeps_it_off) {
    setenv("DORN_KZ_USE_OLD_IRONLOSS", "1", 1);
    Calculator calc(file_);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    prepare(calc);
    unsetenv("DORN_KZ_USE_OLD_IRONLOSS");
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 7.0, calc), 180064);
    sample(calc, 0.0, 0.0);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
    kzbcalcSetData(calc);
    sample(calc, h, 0.0);
    EXPECT_NEAR(kzbcalcGetIronloss(calc), generic_iron_loss(0.0, 2.0, 0.0), 1e-9);
}

TEST(GenericModelWithoutIronLoss, offers_none) {
    ModelFile file;
    generic_machine(file);
    add_record(file, "input_port_list;user_input", {{"id", 1}, {"loss_axis_no", 1}});
    Calculator calc(file);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 180040);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcGetNumberOfUserInputParameters(calc), 1);
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 1.0, calc), 180064);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
}

// ---- from a text of points

std::string number(double value) {
    return std::to_string(value);
}

// A full grid of the loss; columns: voltage, current of coil 1, speed, loss.
std::string points() {
    std::string text;
    for (const double input : {0.0, 1000.0}) {
        for (const double current : {-1000.0, 1000.0}) {
            for (const double rpm : {-1e5, 1e5}) {
                text += number(input) + ", " + number(current) + ", " + number(rpm) + ", " +
                        number(generic_iron_loss(input, current, rpm)) + "\n";
            }
        }
    }
    return text;
}

const std::string voltage_axis = "# reference_name=\"Voltage\",type=\"Input\",index=\"0\",periodic=\"0\"\n";
const std::string current_axis = "# reference_name=\"winding set\",type=\"Current\",index=\"1\",periodic=\"0\"\n";
const std::string speed_axis = "# reference_name=\"shaft\",type=\"Speed\",index=\"2\",periodic=\"0\"\n";

TEST(GenericIronLossFile, text_of_points_runs_as_the_model_of_its_own_table) {
    // The descriptions may come in any order: the index places them.
    for (const std::string& axes :
         {voltage_axis + current_axis + speed_axis, speed_axis + voltage_axis + current_axis}) {
        ModelFile file;
        generic_machine(file);
        const MeasuredModel model(file.path(), "$ measured\n" + axes + points(), kzb_add_loss_table);
        Calculator calc(model.path());
        ASSERT_EQ(calc.status, 0);
        EXPECT_EQ(kzbcalcGetNumberOfUserInputParameters(calc), 1);
        EXPECT_EQ(kzbcalcGetNumOfOutputPortsForGenericModel(calc), 15);
        ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
        prepare(calc);
        EXPECT_EQ(kzbcalcSetUserInputParameter(1, 7.0, calc), 0);
        expect_loss_of_inputs(calc, 7.0);
    }
}

// A second user input of the model: the axis takes the one that names it.
TEST(GenericIronLossFile, axis_takes_the_user_input_that_names_it) {
    ModelFile file;
    generic_machine(file);
    add_record(file, "input_port_list;user_input", {{"id", 1}, {"loss_axis_no", 9}});
    const MeasuredModel model(file.path(), voltage_axis + current_axis + speed_axis + points(), kzb_add_loss_table);
    Calculator calc(model.path());
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcGetNumberOfUserInputParameters(calc), 2);
    kzbcalcSetIronlossCalc(calc);
    prepare(calc);
    EXPECT_EQ(kzbcalcSetUserInputParameter(1, 500.0, calc), 0);
    EXPECT_EQ(kzbcalcSetUserInputParameter(2, 7.0, calc), 0);
    sample(calc, 0.0, 0.0);
    EXPECT_NEAR(kzbcalcGetIronloss(calc), generic_iron_loss(7.0, 2.0, 0.0), 1e-9);
}

}  // namespace
}  // namespace kzb_test::generic_iron_loss_test
