// What the calls answer for a motor type by its row alone: a stub stands in for the model.
#include <gtest/gtest.h>

#include <memory>

#include "KZBCalculator/kzbcalc.h"
#include "interface/kzbcalc_handle.h"

namespace {

using kzb::MotorType;
using kzb::Travel;

class StubModel : public kzb::Calc {
  public:
    double induced_voltage(int phase) override { return 10.0 * phase; }
};

constexpr MotorType wound_field_row{10007, kzb::wound_field, "WFSM", "", 4, Travel::degrees, Travel::degrees};
constexpr MotorType generic_row{10008, kzb::generic, "ALL", "", 0, Travel::none, Travel::none};
constexpr MotorType reluctance_rows[] = {
    {10010, kzb::reluctance, "SR", "", 3, Travel::degrees, Travel::degrees},
    {10011, kzb::reluctance, "SR", "", 4, Travel::degrees, Travel::degrees},
    {10012, kzb::reluctance, "SR", "", 5, Travel::degrees, Travel::degrees},
};

struct StubHandle : KZB_CALC {
    explicit StubHandle(const MotorType& row) {
        model = std::make_unique<StubModel>();
        motor_type = row.code;
        type = &row;
    }
};

TEST(MotorTypeRows, induced_voltage_of_the_model_answers_for_every_numbered_phase) {
    StubHandle wound_field(wound_field_row);
    for (const int phase : {1, 2, 3, 4}) {
        EXPECT_EQ(kzbcalcGetInducedVoltage(phase, &wound_field), 10.0 * phase);
    }
    EXPECT_EQ(kzbcalcGetInducedVoltage(0, &wound_field), 180031.0);
    EXPECT_EQ(kzbcalcGetInducedVoltage(5, &wound_field), 180031.0);
    StubHandle five(reluctance_rows[2]);
    EXPECT_EQ(kzbcalcGetInducedVoltage(5, &five), 50.0);
    EXPECT_EQ(kzbcalcGetInducedVoltage(6, &five), 180031.0);
}

TEST(MotorTypeRows, induced_voltage_of_a_generic_model_is_zero_for_any_phase) {
    StubHandle generic(generic_row);
    for (const int phase : {-1, 0, 1, 99}) {
        EXPECT_EQ(kzbcalcGetInducedVoltage(phase, &generic), 0.0);
    }
}

TEST(MotorTypeRows, reluctance_machines_tell_their_phases) {
    for (const MotorType& row : reluctance_rows) {
        StubHandle handle(row);
        EXPECT_EQ(kzbcalcGetNumberOfPhases(&handle), row.ports);
    }
}

TEST(MotorTypeRows, generic_type_is_tested_before_the_value_where_it_comes_first) {
    StubHandle generic(generic_row);
    for (const double value : {1.0, -1.0}) {
        EXPECT_EQ(kzbcalcSetCorrectionOfSteel(value, &generic), 180039);
        EXPECT_EQ(kzbcalcSetCorrectionOfTorque(value, &generic), 180039);
        EXPECT_EQ(kzbcalcSetCorrectionOfForce(value, &generic), 180039);
        EXPECT_EQ(kzbcalcSetInitialDisplacement(value, &generic), 180039);
    }
    EXPECT_EQ(kzbcalcSetCorrectionOfFlux(-1.0, &generic), 180017);
    EXPECT_EQ(kzbcalcSetCorrectionOfFlux(1.0, &generic), 180039);
    EXPECT_EQ(kzbcalcSetInitialCurrent(99, 1.0, &generic), 0);
}

TEST(MotorTypeRows, coil_temperature_of_a_generic_model_is_refused_before_the_switch_is_tested) {
    StubHandle generic(generic_row);
    EXPECT_EQ(kzbcalcGetCoilTemperature(&generic), 180039.0);
    EXPECT_EQ(kzbcalcGetCoilBaseTemperature(&generic), 180046.0);
    EXPECT_EQ(kzbcalcSetCoilTemperature(300.0, &generic), 180046);
}

}  // namespace
