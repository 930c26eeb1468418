// Two-phase stepping motor through the public calls: four half coils, the magnet's voltage of the accepted step.
#include <gtest/gtest.h>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::stepping_run_test {
namespace {

constexpr double h = 1e-3;
constexpr double inductance = 2e-3;
constexpr double flux = 1e-5;  // Vs per degree, times the number of the coil
constexpr double resistance = 0.5;

struct Stepper : ModelFile {
    Stepper() { stepping_machine(*this, inductance, 0.0, flux, resistance); }
};

TEST(SteppingRun, every_coil_follows_the_voltage_less_the_magnets_of_the_accepted_step) {
    Stepper file;
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcSetData(calc), 0);
    const auto angle = [](int k) { return 2.0 * k * k; };
    double i[4] = {};
    for (int k = 0; k < 6; ++k) {
        const std::vector<double> v{1.0 + k, -1.0, 2.0, 0.5 * k};
        step_sample(calc, h * k, angle(k), v);
        for (int phase = 1; phase <= 4; ++phase) {
            const int p = phase - 1;
            // The voltage of the step before, which kzbcalcUpdate accepted.
            const double e = k < 2 ? 0.0 : flux * phase * (angle(k - 1) - angle(k - 2)) / h;
            i[p] = k == 0
                       ? 0.0
                       : (inductance * i[p] + h * (v[static_cast<std::size_t>(p)] - e)) / (h * resistance + inductance);
            EXPECT_NEAR(kzbcalcGetVoltage(phase, calc), e, 1e-11) << k;
            EXPECT_NEAR(kzbcalcGetCurrent(phase, calc), i[p], 1e-12) << k;
            EXPECT_NEAR(kzbcalcGetMagFlux(phase, calc), flux * phase * angle(k), 1e-15);
        }
        EXPECT_NEAR(kzbcalcGetTorque(calc), (i[0] - i[1]) + 10.0 * (i[2] - i[3]), 1e-11);
        const double squares = i[0] * i[0] + i[1] * i[1] + i[2] * i[2] + i[3] * i[3];
        EXPECT_NEAR(kzbcalcGetCopperloss(calc), resistance * squares, 1e-12);
        kzbcalcUpdate(calc);
    }
}

TEST(SteppingRun, current_driven_torque_is_evaluated_from_the_currents) {
    Stepper file;
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    for (const int phase : {1, 2, 3, 4}) {
        ASSERT_EQ(kzbcalcSetCurrent(phase, 1.0 * phase * phase, calc), 0);
    }
    // (1 - 4) + 10 (9 - 16)
    EXPECT_NEAR(kzbcalcGetTorque(calc), -73.0, 1e-11);
    EXPECT_EQ(kzbcalcGetForce(calc), 180035.0);
}

TEST(SteppingRun, inductance_answers_in_its_first_column_with_the_last_rows_first_element) {
    Stepper file;
    file.table("inductance", "inductance", {amplitudes, {-3600.0, 3600.0}, components(16)},
               [](const Point& x) { return static_cast<int>(x[2]) % 5 == 0 ? 1.0 : 1e-3 * x[2]; });
    Calculator calc(file);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, {0.0, 0.0, 0.0, 0.0});
    for (const int row : {1, 2, 3, 4}) {
        // Row 4 column 1 is the element 4 * 0 + 3 of the table.
        EXPECT_NEAR(kzbcalcGetInductance(row, 1, calc), 3e-3, 1e-15);
        for (const int column : {2, 3, 4}) {
            EXPECT_EQ(kzbcalcGetInductance(row, column, calc), 0.0);
        }
    }
}

TEST(SteppingRun, asking_for_an_inductance_accepts_the_voltage) {
    Stepper file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, {0.0, 0.0, 0.0, 0.0});
    kzbcalcUpdate(calc);
    step_sample(calc, 2.0 * h, 5.0, {0.0, 0.0, 0.0, 0.0});
    EXPECT_EQ(kzbcalcGetVoltage(1, calc), 0.0);
    kzbcalcGetInductance(1, 1, calc);
    EXPECT_NEAR(kzbcalcGetVoltage(1, calc), flux * 5.0 / h, 1e-12);
}

TEST(SteppingRun, corrections_of_the_file_do_not_start_the_model) {
    Stepper file;
    file.number("control", "coef_torque", 3.0).number("control", "coef_flux", 3.0);
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(1, 2.0, calc);
    kzbcalcSetDisplacement(10.0, calc);
    EXPECT_NEAR(kzbcalcGetTorque(calc), 2.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), flux * 10.0, 1e-15);
    ASSERT_EQ(kzbcalcSetCorrectionOfTorque(2.0, calc), 0);
    EXPECT_NEAR(kzbcalcGetTorque(calc), 4.0, 1e-12);
}

}  // namespace
}  // namespace kzb_test::stepping_run_test
