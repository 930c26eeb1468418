// Runs of a generic model through the public calls against their closed form.
//
// Backward Euler of a coil or inductor behind a resistance, from rest at constant voltage:
//   i_n = U / R (1 - (1 + dt R / L)^-n)
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "interface/generic_accessors.h"
#include "interface/generic_machine.h"

namespace kzb_test::generic_run_test {
namespace {

constexpr double h = 1e-3;

// Time, voltages of both sources, angle in degrees and position; not yet executed.
void set_inputs(KZB_CALC* calc, double time, double supply, double field, double angle = 0.0, double position = 0.0) {
    kzbcalcSetTime(time, calc);
    kzbcalcSetPowerSupplyForGenericModel(1, supply, calc);
    kzbcalcSetPowerSupplyForGenericModel(2, field, calc);
    kzbcalcSetDisplacementForGenericModel(1, angle, calc);
    kzbcalcSetDisplacementForGenericModel(2, position, calc);
}

void sample(KZB_CALC* calc, double time, double supply, double field, double angle = 0.0, double position = 0.0) {
    set_inputs(calc, time, supply, field, angle, position);
    EXPECT_EQ(kzbcalcExecute(calc), 0);
    EXPECT_EQ(kzbcalcUpdate(calc), 0);
}

class GenericMachine : public testing::Test {
  protected:
    GenericMachine() : calc_((generic_machine(file_), file_)) {}
    void SetUp() override { ASSERT_EQ(calc_.status, 0); }
    double coil(int id) { return kzbcalcGetCoilCurrentForGenericModel(id, calc_); }
    // Up to time n h at constant voltages.
    void run(int n, double supply, double field) {
        kzbcalcSetData(calc_);
        for (int k = 0; k <= n; ++k) {
            sample(calc_, h * k, supply, field);
        }
    }

    ModelFile file_;
    Calculator calc_;
};

TEST_F(GenericMachine, every_component_follows_its_law) {
    run(20, 8.0, 10.0);
    EXPECT_NEAR(coil(1), 8.0 / 2.0 * (1.0 - std::pow(1.0 + h * 2.0 / 0.1, -20)), 1e-9);
    EXPECT_NEAR(coil(2), 10.0 / 4.0 * (1.0 - std::pow(1.0 + h * 4.0 / 0.2, -20)), 1e-9);
    EXPECT_NEAR(kzbcalcGetCoilFluxForGenericModel(1, calc_), 0.1 * coil(1), 1e-12);
    EXPECT_NEAR(kzbcalcGetCoilFluxForGenericModel(2, calc_), 0.2 * coil(2), 1e-12);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc_), 2.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(2, calc_), 2.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(3, calc_), 1.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetInductorCurrentForGenericModel(1, calc_), 20.0 * h * 8.0 / 0.1, 1e-9);
    EXPECT_NEAR(kzbcalcGetCapacitorCurrentForGenericModel(1, calc_), 0.0, 1e-9);  // its voltage stands
    EXPECT_NEAR(kzbcalcGetVoltageProbeValueForGenericModel(2, calc_), 10.0, 1e-12);
}

TEST_F(GenericMachine, first_execute_solves_nothing) {
    kzbcalcSetInitialCoilCurrentForGenericModel(1, 1.25, calc_);
    kzbcalcSetData(calc_);
    set_inputs(calc_, 5.0, 8.0, 10.0);
    EXPECT_EQ(kzbcalcExecute(calc_), 0);
    EXPECT_EQ(coil(1), 1.25);
    EXPECT_NEAR(kzbcalcGetCoilFluxForGenericModel(1, calc_), 0.125, 1e-12);
    EXPECT_EQ(kzbcalcGetResistorCurrentForGenericModel(1, calc_), 0.0);
}

TEST_F(GenericMachine, repeated_execute_of_a_sample_starts_from_the_accepted_state) {
    run(3, 8.0, 10.0);
    set_inputs(calc_, 4 * h, 8.0, 10.0);
    kzbcalcExecute(calc_);
    const double once = coil(1);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(coil(1), once, 1e-12);
    kzbcalcUpdate(calc_);
    kzbcalcExecute(calc_);  // no time has passed since
    EXPECT_NEAR(coil(1), once, 1e-12);
}

TEST_F(GenericMachine, torque_and_force_see_degrees_and_the_linear_unit) {
    run(1, 0.0, 0.0);
    sample(calc_, 2 * h, 0.0, 0.0, 30.0, 0.25);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 15.0, 1e-9);  // 0.5 per degree
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(2, calc_), 2.5, 1e-9);   // 10 per unit
    kzbcalcSetCorrectionOfForceForGenericModel(1, 3.0, calc_);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 45.0, 1e-9);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(2, calc_), 2.5, 1e-9);
}

// The displacement becomes radians in place, as established: the second time it is taken for degrees again.
TEST_F(GenericMachine, second_execute_converts_degrees_twice) {
    run(1, 0.0, 0.0);
    set_inputs(calc_, 2 * h, 0.0, 0.0, 30.0, 0.25);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 15.0, 1e-9);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 15.0 * rad_per_deg, 1e-9);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(2, calc_), 2.5, 1e-9);  // a linear motion isn't converted
    kzbcalcSetDisplacementForGenericModel(1, 30.0, calc_);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 15.0, 1e-9);
}

TEST_F(GenericMachine, initial_position_is_added_to_what_comes_after_it) {
    kzbcalcSetData(calc_);
    kzbcalcSetDisplacementForGenericModel(1, 30.0, calc_);
    kzbcalcSetInitialPositionForGenericModel(1, 10.0, calc_);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 15.0, 1e-9);
    kzbcalcSetDisplacementForGenericModel(1, 30.0, calc_);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 20.0, 1e-9);
}

TEST_F(GenericMachine, switch_of_exactly_1_is_on) {
    run(1, 8.0, 10.0);
    int k = 2;
    for (const int on : {0, 2, -1, 1}) {
        kzbcalcSetPowerSupplySwitchForGenericModel(1, on, calc_);
        sample(calc_, h * k++, 8.0, 10.0);
        // Off, the source's terminal floats: what hangs on it is driven no more.
        EXPECT_EQ(std::abs(kzbcalcGetResistorCurrentForGenericModel(1, calc_) - 2.0) < 1e-9, on == 1) << on;
        EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(2, calc_), 2.0, 1e-9);
    }
}

TEST(GenericRun, current_source_drives_its_current) {
    ModelFile file;
    file.integer("control", "motor_type", 10008);
    add_source(file, 1, "supply");
    add_terminal(file, 2, 2, "ground");
    add_resistor(file, 1, 1, 2, 4.0, "load");
    add_probe(file, 2, 1, 2, "gauge");
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    kzbcalcSetPowerSupplyTypeForGenericModel(1, 1, calc);
    kzbcalcSetData(calc);
    for (int k = 0; k < 3; ++k) {
        kzbcalcSetTime(h * k, calc);
        kzbcalcSetPowerSupplyForGenericModel(1, 3.0, calc);
        kzbcalcExecute(calc);
        kzbcalcUpdate(calc);
    }
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc), 3.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetVoltageProbeValueForGenericModel(1, calc), 12.0, 1e-12);
}

TEST(GenericRun, without_a_base_potential_nothing_changes_and_execute_gives_0) {
    ModelFile file;
    file.integer("control", "motor_type", 10008);
    add_source(file, 1, "supply");
    add_source(file, 2, "return");
    add_resistor(file, 1, 1, 2, 4.0, "load");
    Calculator calc(file);
    for (int k = 0; k < 3; ++k) {
        kzbcalcSetTime(h * k, calc);
        kzbcalcSetPowerSupplyForGenericModel(1, 8.0, calc);
        kzbcalcExecute(calc);
        kzbcalcUpdate(calc);
    }
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc), 2.0, 1e-12);
    kzbcalcSetPowerSupplySwitchForGenericModel(1, 0, calc);
    kzbcalcSetPowerSupplySwitchForGenericModel(2, 0, calc);
    kzbcalcSetTime(1.0, calc);
    kzbcalcSetPowerSupplyForGenericModel(1, 80.0, calc);
    EXPECT_EQ(kzbcalcExecute(calc), 0);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc), 2.0, 1e-12);
}

// ---- settings

TEST_F(GenericMachine, values_that_are_set_act_in_the_run) {
    kzbcalcSetCoilResistanceForGenericModel(1, 5.0, calc_);
    kzbcalcSetResistanceForGenericModel(2, 20.0, calc_);
    kzbcalcSetInductanceForGenericModel(1, 0.4, calc_);
    run(10, 8.0, 10.0);
    EXPECT_NEAR(coil(1), 8.0 / 5.0 * (1.0 - std::pow(1.0 + h * 5.0 / 0.1, -10)), 1e-9);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(2, calc_), 0.5, 1e-12);
    EXPECT_NEAR(kzbcalcGetInductorCurrentForGenericModel(1, calc_), 10.0 * h * 8.0 / 0.4, 1e-9);
}

TEST_F(GenericMachine, capacitance_acts_on_the_charging_current) {
    kzbcalcSetCapacitanceForGenericModel(1, 2e-3, calc_);
    run(1, 0.0, 0.0);
    sample(calc_, 2 * h, 0.0, 10.0);
    EXPECT_NEAR(kzbcalcGetCapacitorCurrentForGenericModel(1, calc_), 2e-3 * 10.0 / h, 1e-9);
}

// R (1 + (T - T0) alpha 1e-6), with alpha 1000 ppm per K and T0 293.15 K from the file.
TEST_F(GenericMachine, temperature_raises_the_resistance_of_the_coils_once_the_data_are_set) {
    kzbcalcSetTemperatureCorrectionCalc(calc_);
    kzbcalcSetCoilTemperatureForGenericModel(1, 393.15, calc_);
    EXPECT_EQ(kzbcalcGetCoilResistanceForGenericModel(1, calc_), 2.0);
    run(20, 8.0, 10.0);
    EXPECT_NEAR(kzbcalcGetCoilResistanceForGenericModel(1, calc_), 2.2, 1e-12);
    EXPECT_NEAR(kzbcalcGetCoilResistanceForGenericModel(2, calc_), 4.0, 1e-12);
    EXPECT_NEAR(coil(1), 8.0 / 2.2 * (1.0 - std::pow(1.0 + h * 2.2 / 0.1, -20)), 1e-9);
    kzbcalcSetCoilBaseTemperatureForGenericModel(1, 193.15, calc_);
    EXPECT_NEAR(kzbcalcGetCoilResistanceForGenericModel(1, calc_), 2.4, 1e-12);
    kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel(1, 500.0, calc_);
    EXPECT_NEAR(kzbcalcGetCoilResistanceForGenericModel(1, calc_), 2.2, 1e-12);
}

// Flux k psi with k = turns2 / turns * coef_flux; the axis sees turns2 / turns times the current.
TEST_F(GenericMachine, flux_correction_and_turns_scale_the_flux) {
    kzbcalcSetCorrectionOfFluxForGenericModel(1, 1.5, calc_);
    kzbcalcSetInitialCoilCurrentForGenericModel(1, 2.0, calc_);
    kzbcalcSetInitialCoilCurrentForGenericModel(2, 2.0, calc_);
    kzbcalcSetCorrectionOfCoilTurn2ForGenericModel(2, 3.0, calc_);
    kzbcalcSetData(calc_);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetCoilFluxForGenericModel(1, calc_), 1.5 * 0.1 * 2.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetCoilFluxForGenericModel(2, calc_), 3.0 * 0.2 * 6.0, 1e-12);
}

TEST(GenericRun, user_specified_values_are_told_by_their_port) {
    ModelFile file;
    generic_machine(file);
    add_generic_outputs(file);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcGetNumberOfUserSpecifiedParameters(calc), 2);
    kzbcalcSetInitialCoilCurrentForGenericModel(1, 2.0, calc);
    kzbcalcSetData(calc);
    sample(calc, 0.0, 0.0, 0.0, 40.0);
    EXPECT_NEAR(kzbcalcGetUserSpecifiedParameter(1, calc), 9.0, 1e-9);
    EXPECT_NEAR(kzbcalcGetUserSpecifiedParameter(2, calc), 140.0, 1e-9);
    for (const int index : {0, 3, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(index, calc), 180062.0);
        EXPECT_EQ(kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel(index, 2.0, calc), 180064);
    }
    EXPECT_EQ(kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel(2, 0.0, calc), 180016);
    EXPECT_EQ(kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel(2, 2.0, calc), 0);
    EXPECT_NEAR(kzbcalcGetUserSpecifiedParameter(2, calc), 280.0, 1e-9);
}

// "Linear", 0, among the switches leaves the scheme; 1 to 4 set it with the data. The flux x^2 lies between its nodes.
TEST(GenericRun, interpolation_of_the_switches_is_1_to_4) {
    const auto flux_at_half = [](int set, int type, bool single_call) {
        ModelFile file;
        generic_machine(file);
        const Point squares{-2.0, -1.0, 0.0, 1.0, 2.0};
        file.table(record_name("flux_list;flux_table", 0).c_str(), "table",
                   {squares, generic_model::currents, generic_model::angles, generic_model::travels, {0.0, 1.0}},
                   [](const Point& x) { return x[4] == 0.0 ? x[0] * x[0] : 0.0; });
        Calculator calc(file);
        const int values[] = {0, 0, 0, 0, set, type};
        if (single_call) {
            kzbcalcSetInterpolationType(type, calc);
        } else {
            EXPECT_EQ(kzbcalcSetParametersForGenericModel(values, 6, calc), 0);
        }
        kzbcalcSetInitialCoilCurrentForGenericModel(1, 0.5, calc);
        kzbcalcSetData(calc);
        kzbcalcExecute(calc);
        return kzbcalcGetCoilFluxForGenericModel(1, calc);
    };
    EXPECT_NEAR(flux_at_half(0, 1, false), 0.5, 1e-12);   // between 0 and 1
    EXPECT_NEAR(flux_at_half(1, 1, false), 0.25, 1e-12);  // a cubic meets the parabola
    EXPECT_NEAR(flux_at_half(-7, 1, false), 0.25, 1e-12);
    for (const int type : {0, 5, -1, 100}) {
        EXPECT_NEAR(flux_at_half(1, type, false), 0.5, 1e-12) << type;
    }
    for (const int type : {1, 2, 3, 4}) {
        EXPECT_EQ(flux_at_half(1, type, false), flux_at_half(0, type, true)) << type;
    }
}

TEST(GenericRun, linear_can_not_be_chosen_back_by_the_switches) {
    ModelFile file;
    generic_machine(file);
    file.table(record_name("flux_list;flux_table", 0).c_str(), "table",
               {{-2.0, -1.0, 0.0, 1.0, 2.0},
                generic_model::currents,
                generic_model::angles,
                generic_model::travels,
                {0.0, 1.0}},
               [](const Point& x) { return x[4] == 0.0 ? x[0] * x[0] : 0.0; });
    Calculator calc(file);
    kzbcalcSetInterpolationType(1, calc);
    const int values[] = {0, 0, 0, 0, 1, 0};
    kzbcalcSetParametersForGenericModel(values, 6, calc);
    kzbcalcSetInitialCoilCurrentForGenericModel(1, 0.5, calc);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_NEAR(kzbcalcGetCoilFluxForGenericModel(1, calc), 0.25, 1e-12);
}

// ---- rows of the calls of numbered phases, beside the table of calls

TEST_F(GenericMachine, calls_of_numbered_phases_do_not_reach_it) {
    run(1, 8.0, 10.0);
    for (const int phase : {1, 2, 0, 99}) {
        EXPECT_EQ(kzbcalcSetVoltage(phase, 99.0, calc_), 180039);
        EXPECT_EQ(kzbcalcSetCurrent(phase, 99.0, calc_), 180039);
        EXPECT_EQ(kzbcalcSetSignal(phase, 0, calc_), 180039);
        EXPECT_EQ(kzbcalcSetInitialCurrent(phase, 99.0, calc_), 0);  // ignored
        EXPECT_EQ(kzbcalcGetCurrent(phase, calc_), 180039.0);
        EXPECT_EQ(kzbcalcGetInducedVoltage(phase, calc_), 0.0);
    }
    EXPECT_EQ(kzbcalcSetDisplacement(30.0, calc_), 180039);
    EXPECT_EQ(kzbcalcSetInitialDisplacement(30.0, calc_), 180039);
    EXPECT_EQ(kzbcalcGetTorque(calc_), 180034.0);
    EXPECT_EQ(kzbcalcGetForce(calc_), 180035.0);
    EXPECT_EQ(kzbcalcGetResistance(calc_), 180039.0);
    EXPECT_EQ(kzbcalcGetCopperloss(calc_), 0.0);  // of no phase
    EXPECT_EQ(kzbcalcGetEddyloss(calc_), 180039.0);
    EXPECT_EQ(kzbcalcCheckMotorType(calc_), 10008);
    kzbcalcSetTime(2 * h, calc_);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc_), 2.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 3.0 * coil(1), 1e-9);
}

TEST_F(GenericMachine, two_handles_are_independent) {
    Calculator second(file_);
    kzbcalcSetResistanceForGenericModel(1, 16.0, calc_);
    kzbcalcSetPowerSupplyTypeForGenericModel(2, 1, calc_);
    EXPECT_EQ(kzbcalcGetResistanceForGenericModel(1, second), 4.0);
    EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(2, second), 1);
    run(2, 8.0, 1.0);
    kzbcalcSetData(second);
    sample(second, 0.0, 4.0, 0.0);
    sample(second, h, 4.0, 0.0);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc_), 0.5, 1e-12);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, second), 1.0, 1e-12);
}

// Not a number, infinities and extremes through every call: nothing but numbers may come of it.
TEST(GenericRun, extreme_values_are_survived) {
    ModelFile file;
    generic_machine(file);
    add_generic_outputs(file);
    add_generic_iron_loss(file);
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), infinity, -infinity, 1e308, -1e308, 5e-324, 0.0}) {
        Calculator calc(file);
        kzbcalcSetTemperatureCorrectionCalc(calc);
        kzbcalcSetIronlossCalc(calc);
        kzbcalcSetData(calc);
        const std::vector<double> all(17, value);
        for (int k = 0; k < 4; ++k) {
            for (const GenericSetter& row : generic_setters) {
                for (const int id : {1, 2, 3}) {
                    row.set(id, std::abs(value) < 1e9 ? value : 1.0, calc);
                    if (row.refused != Refused::nothing) {  // no int
                        row.set(id, value, calc);
                    }
                }
            }
            kzbcalcSetTime(1e-4 * k, calc);
            kzbcalcSetUserInputParameter(1, value, calc);
            kzbcalcSetInputValuesForGenericModel(all.data(), 6, calc);
            EXPECT_EQ(kzbcalcExecute(calc), 0);
            std::vector<double> outputs(17, -77.0);
            EXPECT_EQ(kzbcalcGetOutputValuesForGenericModel(outputs.data(), 17, calc), 0);
            EXPECT_EQ(std::count(outputs.begin(), outputs.end(), -77.0), 0);
            for (const GenericGetter& row : generic_getters) {
                row.get(1, calc);
            }
            EXPECT_EQ(kzbcalcUpdate(calc), 0);
        }
    }
}

}  // namespace
}  // namespace kzb_test::generic_run_test
