// The calls of a generic model that take whole arrays: inputs, outputs, switches and table values; which counts they
// refuse, what they set and in which order.
#include "interface/generic_arrays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace kzb_test::generic_arrays_test {
namespace {

using testing::Each;
using testing::ElementsAre;

// ---- inputs and outputs

TEST_F(GenericArrays, inputs_reach_sources_coils_and_motions_in_port_order) {
    choose(0, 1, 0, 0);
    kzbcalcSetInitialPositionForGenericModel(1, 20.0, calc_);
    kzbcalcSetInitialPositionForGenericModel(2, 0.25, calc_);
    kzbcalcSetData(calc_);
    sample(0.0, {0.0, 0.0, 300.0, 310.0, 0.0, 0.0});
    sample(1e-3, {8.0, 10.0, 300.0, 310.0, 40.0, 0.5});
    // Initial positions are added: torque 3 i_1 + 0.5 (40 + 20), force 10 (0.5 + 0.25) + i_2.
    const double coil1 = kzbcalcGetCoilCurrentForGenericModel(1, calc_);
    const double coil2 = kzbcalcGetCoilCurrentForGenericModel(2, calc_);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(1, calc_), 3.0 * coil1 + 30.0, 1e-9);
    EXPECT_NEAR(kzbcalcGetForceForGenericModel(2, calc_), 7.5 + coil2, 1e-9);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc_), 2.0, 1e-12);  // 8 V on 4 Ohm
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(2, calc_), 2.0, 1e-12);  // 10 V on 5 Ohm
    EXPECT_EQ(kzbcalcGetCoilTemperatureForGenericModel(1, calc_), 300.0);
    EXPECT_EQ(kzbcalcGetCoilTemperatureForGenericModel(2, calc_), 310.0);
}

TEST_F(GenericArrays, inputs_of_another_count_change_nothing) {
    choose(0, 1, 0, 0);
    kzbcalcSetData(calc_);
    const std::vector<double> good{8.0, 10.0, 300.0, 310.0, 40.0, 0.5};
    sample(0.0, good);
    const std::vector<double> other(8, 77.0);
    for (const int count : {5, 7, 0, -1, most, least}) {
        EXPECT_EQ(kzbcalcSetInputValuesForGenericModel(other.data(), count, calc_), 0);
    }
    EXPECT_EQ(kzbcalcSetInputValuesForGenericModel(nullptr, 6, calc_), 0);
    kzbcalcSetTime(1e-3, calc_);
    kzbcalcExecute(calc_);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc_), 2.0, 1e-12);
    EXPECT_EQ(kzbcalcGetCoilTemperatureForGenericModel(1, calc_), 300.0);
}

TEST_F(GenericArrays, refused_temperature_among_the_inputs_is_dropped) {
    kzbcalcSetData(calc_);
    sample(0.0, {8.0, 10.0, 400.0, 400.0, 0.0, 0.0});
    EXPECT_EQ(kzbcalcGetCoilTemperatureForGenericModel(1, calc_), 293.15);  // correction is off
    choose(0, 1, 0, 0);
    sample(1e-3, {8.0, 10.0, 0.0, 350.0, 0.0, 0.0});
    EXPECT_EQ(kzbcalcGetCoilTemperatureForGenericModel(1, calc_), 293.15);  // not above 0
    EXPECT_EQ(kzbcalcGetCoilTemperatureForGenericModel(2, calc_), 350.0);
    EXPECT_NEAR(kzbcalcGetResistorCurrentForGenericModel(1, calc_), 2.0, 1e-12);
}

// 17 ports: coils 2, resistors 3, inductor, capacitor, probes 3, forces 2, iron loss, fluxes 2, user values 2.
TEST_F(GenericArrays, outputs_are_those_of_the_single_calls_in_port_order) {
    kzbcalcSetIronlossCalc(calc_);
    kzbcalcSetData(calc_);
    kzbcalcSetUserInputParameter(1, 4.0, calc_);
    sample(0.0, {0.0, 0.0, 300.0, 300.0, 0.0, 0.0});
    sample(1e-3, {8.0, 10.0, 300.0, 300.0, 40.0, 0.5});
    std::vector<double> outputs(18, -77.0);
    ASSERT_EQ(kzbcalcGetOutputValuesForGenericModel(outputs.data(), 17, calc_), 0);
    EXPECT_EQ(outputs[17], -77.0);
    outputs.pop_back();
    EXPECT_THAT(
        outputs,
        ElementsAre(
            kzbcalcGetCoilCurrentForGenericModel(1, calc_), kzbcalcGetCoilCurrentForGenericModel(2, calc_),
            kzbcalcGetResistorCurrentForGenericModel(1, calc_), kzbcalcGetResistorCurrentForGenericModel(2, calc_),
            kzbcalcGetResistorCurrentForGenericModel(3, calc_), kzbcalcGetInductorCurrentForGenericModel(1, calc_),
            kzbcalcGetCapacitorCurrentForGenericModel(1, calc_), kzbcalcGetVoltageProbeValueForGenericModel(1, calc_),
            kzbcalcGetVoltageProbeValueForGenericModel(2, calc_), kzbcalcGetVoltageProbeValueForGenericModel(3, calc_),
            kzbcalcGetForceForGenericModel(1, calc_), kzbcalcGetForceForGenericModel(2, calc_),
            kzbcalcGetIronloss(calc_), kzbcalcGetCoilFluxForGenericModel(1, calc_),
            kzbcalcGetCoilFluxForGenericModel(2, calc_), kzbcalcGetUserSpecifiedParameter(1, calc_),
            kzbcalcGetUserSpecifiedParameter(2, calc_)));
    // No value is a status, and none stands for its neighbour.
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        EXPECT_LT(std::abs(outputs[i]), 1e5);
    }
    EXPECT_NEAR(outputs[4], 1.0, 1e-12);  // 8 V on 8 Ohm
    EXPECT_NEAR(outputs[7], 8.0, 1e-12);  // probes show their first terminal
    EXPECT_NEAR(outputs[8], 10.0, 1e-12);
    EXPECT_NEAR(outputs[16], 140.0, 1e-9);  // 100 + 40 degrees
}

TEST_F(GenericArrays, outputs_of_another_count_are_refused) {
    std::vector<double> outputs(20, -77.0);
    for (const int count : {16, 18, 0, -1, most, least}) {
        EXPECT_EQ(kzbcalcGetOutputValuesForGenericModel(outputs.data(), count, calc_), 180063) << count;
    }
    EXPECT_EQ(kzbcalcGetOutputValuesForGenericModel(nullptr, 17, calc_), 180063);
    EXPECT_THAT(outputs, Each(-77.0));
}

// ---- switches

TEST_F(GenericArrays, switches_come_as_six) {
    const int values[] = {1, 1, 1, 1, 1, 4, 1};
    for (const int count : {5, 7, 0, -1, most, least}) {
        EXPECT_EQ(kzbcalcSetParametersForGenericModel(values, count, calc_), 180062) << count;
    }
    EXPECT_EQ(kzbcalcSetParametersForGenericModel(nullptr, 6, calc_), 180062);
    // Nothing was switched.
    EXPECT_EQ(kzbcalcGetTemperatureCorrectionCalc(calc_), 0);
    EXPECT_EQ(set_table_values(2, 2, 3, 1, 1), 0);
    EXPECT_THAT(resistances(), ElementsAre(21.0, 22.0, 31.0, 32.0, 33.0, 41.0, 51.0));
}

TEST_F(GenericArrays, only_1_switches_temperature_correction_on) {
    for (const int other : {0, 2, -1}) {
        choose(0, other, 0, 0);
        EXPECT_EQ(kzbcalcGetTemperatureCorrectionCalc(calc_), 0) << other;
    }
    choose(0, 1, 0, 0);
    EXPECT_EQ(kzbcalcGetTemperatureCorrectionCalc(calc_), 1);
    choose(0, 0, 0, 0);
    EXPECT_EQ(kzbcalcGetTemperatureCorrectionCalc(calc_), 1);
}

TEST_F(GenericArrays, a_switch_of_0_keeps_what_was_switched_before) {
    choose(-5, 0, 0, 0);
    choose(0, 0, 0, 0);
    EXPECT_EQ(set_table_values(2, 2, 3, 1, 1), 0);
    EXPECT_THAT(resistances(), ElementsAre(2.0, 4.0, 4.0, 5.0, 8.0, 0.1, 1e-3));
}

// ---- table values

TEST_F(GenericArrays, table_values_reach_their_components) {
    EXPECT_EQ(set_table_values(2, 2, 3, 1, 1), 0);
    EXPECT_THAT(resistances(), ElementsAre(21.0, 22.0, 31.0, 32.0, 33.0, 41.0, 51.0));
}

TEST_F(GenericArrays, table_values_shorter_than_the_model_set_the_first_ones) {
    EXPECT_EQ(set_table_values(0, 1, 2, 0, -3), 0);
    EXPECT_THAT(resistances(), ElementsAre(21.0, 4.0, 31.0, 32.0, 8.0, 0.1, 1e-3));
    EXPECT_EQ(kzbcalcSetTableValuesForGenericModel(nullptr, 2, nullptr, 2, nullptr, 3, nullptr, 1, nullptr, 1, calc_),
              0);
    EXPECT_THAT(resistances(), ElementsAre(21.0, 4.0, 31.0, 32.0, 8.0, 0.1, 1e-3));
    EXPECT_EQ(set_table_values(least, least, least, least, least), 0);
}

// Each count is tested as its group is reached: what went before stays.
TEST_F(GenericArrays, table_values_too_many_stop_at_their_group) {
    EXPECT_EQ(set_table_values(3, 2, 3, 1, 1), 180062);
    EXPECT_THAT(resistances(), ElementsAre(2.0, 4.0, 4.0, 5.0, 8.0, 0.1, 1e-3));
    EXPECT_EQ(set_table_values(2, 3, 3, 1, 1), 180062);
    EXPECT_THAT(resistances(), ElementsAre(2.0, 4.0, 4.0, 5.0, 8.0, 0.1, 1e-3));
    EXPECT_EQ(set_table_values(2, 2, 4, 1, 1), 180062);
    EXPECT_THAT(resistances(), ElementsAre(21.0, 22.0, 4.0, 5.0, 8.0, 0.1, 1e-3));
    EXPECT_EQ(set_table_values(2, 0, 3, 2, 1), 180062);
    EXPECT_THAT(resistances(), ElementsAre(21.0, 22.0, 31.0, 32.0, 33.0, 0.1, 1e-3));
    EXPECT_EQ(set_table_values(2, 0, 0, 1, most), 180062);
    EXPECT_THAT(resistances(), ElementsAre(21.0, 22.0, 31.0, 32.0, 33.0, 41.0, 1e-3));
}

TEST_F(GenericArrays, table_values_of_0_and_below_are_passed_over) {
    const double coils[] = {0.0, -1.0};
    const double resistors[] = {-0.0, 32.0, -5.0};
    const double zero[] = {0.0};
    EXPECT_EQ(kzbcalcSetTableValuesForGenericModel(nullptr, 0, coils, 2, resistors, 3, zero, 1, zero, 1, calc_), 0);
    EXPECT_THAT(resistances(), ElementsAre(2.0, 4.0, 4.0, 32.0, 8.0, 0.1, 1e-3));
}

// 2 makes a current source, any other number a voltage source.
TEST_F(GenericArrays, source_types_count_from_1_and_are_set_even_when_table_values_are_kept) {
    choose(1, 0, 0, 0);
    const int types[] = {2, 1};
    // A count too large behind the types isn't reached.
    EXPECT_EQ(kzbcalcSetTableValuesForGenericModel(types, 2, nullptr, most, nullptr, most, nullptr, most, nullptr, most,
                                                   calc_),
              0);
    EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(1, calc_), 0);
    EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(2, calc_), 1);
    EXPECT_EQ(kzbcalcSetTableValuesForGenericModel(types, 3, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, calc_),
              180062);
    const int odd[] = {least, 2};
    EXPECT_EQ(kzbcalcSetTableValuesForGenericModel(odd, 2, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, calc_), 0);
    EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(1, calc_), 1);
    EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(2, calc_), 0);
}

}  // namespace
}  // namespace kzb_test::generic_arrays_test
