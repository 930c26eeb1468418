// Wound-field machine through the public calls: the field coil by its discrete equation, corrections, losses.
#include <gtest/gtest.h>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::wound_field_run_test {
namespace {

constexpr double h = 1e-3;
constexpr double field = 0.1;  // Vs per A of the field coil
constexpr double resistance = 0.5;
constexpr double field_resistance = 5.0;

struct WoundField : ModelFile {
    WoundField() { wound_field_machine(*this, 2e-3, 0.0, field, resistance, field_resistance); }
};

TEST(WoundFieldRun, field_coil_follows_its_discrete_equation) {
    // The flux is linear in the field current, so the iteration ends at dt Rf i + L i = L i_previous + dt v. The first
    // step never solves.
    WoundField file;
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcSetData(calc), 0);
    double i = 0.0;
    for (int k = 0; k < 6; ++k) {
        const double v = 10.0 + k;
        step_sample(calc, h * (k + 1), 2.0 * k, {0.0, 0.0, 0.0, v});
        const double before = i;
        i = k == 0 ? 0.0 : (field * i + h * v) / (h * field_resistance + field);
        EXPECT_NEAR(kzbcalcGetCurrent(4, calc), i, 1e-12) << k;
        EXPECT_NEAR(kzbcalcGetCurrent(1, calc), 0.0, 1e-12);
        EXPECT_NEAR(kzbcalcGetCoilFlux(4, calc), field * i, 1e-13);
        EXPECT_NEAR(kzbcalcGetInducedVoltage(4, calc), field * (i - before) / h, 1e-9);
        EXPECT_NEAR(kzbcalcGetVoltage(4, calc), field * (i - before) / h, 1e-9);
        EXPECT_NEAR(kzbcalcGetTorque(calc), 1.5 * i, 1e-12);
        // One resistance, the armature's, serves all four coils.
        EXPECT_NEAR(kzbcalcGetCopperloss(calc), resistance * i * i, 1e-12);
        kzbcalcUpdate(calc);
    }
    EXPECT_GT(i, 0.1);
}

TEST(WoundFieldRun, inductances_are_those_of_the_tables) {
    WoundField file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, {0.0, 0.0, 0.0, 0.0});
    for (const int row : {1, 2, 3, 4}) {
        for (const int column : {1, 2, 3, 4}) {
            const double expected = row != column ? 0.0 : row == 4 ? field : 2e-3;
            EXPECT_EQ(kzbcalcGetInductance(row, column, calc), expected);
        }
    }
    // (2/3) c^T L c of a diagonal is its element.
    EXPECT_NEAR(kzbcalcGetDAxisInductance(calc), 2e-3, 1e-15);
}

TEST(WoundFieldRun, axis_inductance_of_a_delta_is_a_third) {
    WoundField file;
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetConnectionType(1, calc), 0);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, {0.0, 0.0, 0.0, 0.0});
    EXPECT_NEAR(kzbcalcGetDAxisInductance(calc), 2e-3 / 3.0, 1e-15);
}

TEST(WoundFieldRun, current_driven_torque_takes_the_currents_of_the_handle) {
    WoundField file;
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetCurrent(4, 3.0, calc), 0);
    EXPECT_EQ(kzbcalcGetCurrent(4, calc), 0.0);  // the model sees them when it is asked for the torque
    EXPECT_NEAR(kzbcalcGetTorque(calc), 4.5, 1e-12);
    EXPECT_EQ(kzbcalcGetCurrent(4, calc), 3.0);
    EXPECT_NEAR(kzbcalcGetCoilFlux(4, calc), 0.3, 1e-13);
}

TEST(WoundFieldRun, corrections_reach_the_model) {
    // Factors of (torque, field flux) at a field current of 3 A.
    const struct {
        const char* name;
        int (*set)(double, KZB_CALC*);
        double torque;
        double flux;
    } rows[] = {
        {"flux", kzbcalcSetCorrectionOfFlux, 1.0, 1.0},
        {"field flux", kzbcalcSetCorrectionOfFieldFlux, 1.0, 2.0},
        {"steel", kzbcalcSetCorrectionOfSteel, 2.0, 2.0},
        {"torque", kzbcalcSetCorrectionOfTorque, 2.0, 1.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        WoundField file;
        Calculator calc(file, 2);
        ASSERT_EQ(row.set(2.0, calc), 0);
        kzbcalcSetData(calc);
        kzbcalcSetCurrent(4, 3.0, calc);
        EXPECT_NEAR(kzbcalcGetTorque(calc), 4.5 * row.torque, 1e-12);
        EXPECT_NEAR(kzbcalcGetCoilFlux(4, calc), 0.3 * row.flux, 1e-13);
    }
}

TEST(WoundFieldRun, field_turns_scale_current_and_flux) {
    // Twice the turns: the table is asked at twice the current and its flux counts twice.
    WoundField file;
    file.number("control", "turns_in_field_coil", 10.0);
    Calculator calc(file, 2);
    ASSERT_EQ(kzbcalcSetCorrectionOfFieldCoilTurn2(20.0, calc), 0);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(4, 3.0, calc);
    EXPECT_NEAR(kzbcalcGetTorque(calc), 9.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetCoilFlux(4, calc), 1.2, 1e-13);
}

TEST(WoundFieldRun, record_of_the_file_starts_the_model) {
    WoundField file;
    file.number("control", "coef_torque", 3.0)
        .number("control", "coef_flux_fieldcoil", 2.0)
        .number("control", "base_coil_temperature", 300.0)
        .number("control", "base_field_coil_temperature", 310.0)
        .number("control", "coef_field_coil_temperature", 4000.0);
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(4, 3.0, calc);
    EXPECT_NEAR(kzbcalcGetTorque(calc), 3.0 * 4.5, 1e-12);
    EXPECT_NEAR(kzbcalcGetCoilFlux(4, calc), 0.6, 1e-13);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    EXPECT_EQ(kzbcalcGetCoilBaseTemperature(calc), 300.0);
    EXPECT_EQ(kzbcalcGetFieldCoilBaseTemperature(calc), 310.0);
    kzbcalcSetFieldCoilTemperature(410.0, calc);
    EXPECT_DOUBLE_EQ(kzbcalcGetFieldCoilTemperatureCorrectionCoefficient(calc), 1.4);
}

TEST(WoundFieldRun, field_resistance_follows_its_temperature_while_correction_is_on) {
    WoundField file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcGetFieldCoilResistance(calc), field_resistance);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetFieldCoilBaseTemperature(300.0, calc);
    kzbcalcSetFieldCoilTemperature(400.0, calc);
    kzbcalcSetFieldCoilTemperatureCorrectionCoefficient(4000.0, calc);
    EXPECT_DOUBLE_EQ(kzbcalcGetFieldCoilResistance(calc), field_resistance * 1.4);
    // The armature's is told as it is at base temperature.
    EXPECT_EQ(kzbcalcGetResistance(calc), resistance);
}

TEST(WoundFieldRun, resistances_that_were_set_take_the_place_of_the_files) {
    WoundField file;
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetResistance(0.75, calc), 0);
    ASSERT_EQ(kzbcalcSetFieldCoilResistance(7.0, calc), 0);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcGetResistance(calc), 0.75);
    EXPECT_EQ(kzbcalcGetFieldCoilResistance(calc), 7.0);
}

TEST(WoundFieldRun, iron_loss_needs_the_materials_and_adds_two_parts) {
    WoundField without;
    without.table("loss_table", "iron_loss", {{0.0, 1.0}}, constant(1.0));
    Calculator none(without);
    EXPECT_EQ(kzbcalcCheckIronloss(none), 0);  // the one table is not for this machine
    EXPECT_EQ(kzbcalcSetIronlossCalc(none), 180040);

    WoundField file;
    const std::vector<Point> axes{{0.0, 1e6}, betas, amplitudes, {0.0, 1000.0}};
    file.integer("hysloss", "numMat", 1)
        .integer("hysloss", "matID1", 7)
        .table("hysloss", "hysloss7", axes, constant(30.0))
        .table("eddyloss", "eddyloss7", axes, constant(12.0));
    Calculator calc(file, 2);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 1);
    ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(4, 3.0, calc);
    kzbcalcGetTorque(calc);
    EXPECT_EQ(kzbcalcGetHysteresisloss(calc), 30.0);
    EXPECT_EQ(kzbcalcGetEddyloss(calc), 12.0);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 42.0);
}

TEST(WoundFieldRun, user_parameters_are_counted_and_read) {
    WoundField file;
    file.integer("num_user_specified_parameter", "num_user_specified_parameter", 1)
        .integer("user_specified_parameter_table", "num_user_specified_parameter", 1)
        .integer("user_specified_parameter1", "table_id", 1)
        .integer("user_specified_parameter1", "output_port_id", 1)
        .table("user_specified_parameter_table", "user_specified_parameter_table1",
               {amplitudes, betas, {0.0, 1000.0}, {-3600.0, 3600.0}}, [](const Point& x) { return 7.0 * x[2]; });
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(4, 3.0, calc);
    kzbcalcGetTorque(calc);
    EXPECT_EQ(kzbcalcGetNumberOfUserSpecifiedParameters(calc), 1);
    EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(1, calc), 21.0);
    EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(2, calc), 180062.0);
}

TEST(WoundFieldRun, initial_current_of_the_field_is_where_the_run_starts) {
    WoundField file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetInitialCurrent(4, 2.0, calc), 0);
    step_sample(calc, h, 0.0, {0.0, 0.0, 0.0, 99.0});
    EXPECT_EQ(kzbcalcGetCurrent(4, calc), 2.0);  // the first step does not solve
}

}  // namespace
}  // namespace kzb_test::wound_field_run_test
