// Linear solenoid through the public calls: metres, the magnet's voltage, force, limits.
#include <gtest/gtest.h>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::solenoid_run_test {
namespace {

constexpr double h = 1e-3;
constexpr double inductance = 2e-3;
constexpr double flux = 0.01;  // 0.1 Vs per m
constexpr double resistance = 0.5;

struct Solenoid : ModelFile {
    Solenoid() { solenoid_machine(*this, inductance, flux, resistance); }
};

// The flux table reaches from -100 Vs at -1000 m to 100 Vs at 1000 m. Over two nodes "Spline" is the straight line
// y0 + ((x - x0) / (x1 - x0)) * (y1 - y0): beside x = 0 two numbers near 100 cancel, so that a flux of some 1e-3 Vs
// carries the rounding of 100 Vs, at most 4 ulp of 2^-46: 5e-12 of its own size. That is the method, not a fault.
constexpr double flux_rounding = 4.0 * 0x1p-46;
// The induced voltage is a difference of two fluxes over h, 1.2e-10 V; an error e of it moves the current by 0.4 e a
// step and fades by 0.8, so by 2 e at most, and the force by twice that.
constexpr double rounding = 4.0 * 2.0 * flux_rounding / h;

TEST(SolenoidRun, current_follows_the_voltage_less_the_magnets_of_the_step_before) {
    Solenoid file;
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcSetData(calc), 0);
    double i = 0.0;
    double e = 0.0;
    const auto psi = [](int k) { return 0.1 * 0.01 * k * k; };
    for (int k = 0; k < 6; ++k) {
        const double v = 1.0 + k;
        step_sample(calc, h * k, 0.01 * k * k, {v});
        if (k > 0) {
            i = (inductance * i + h * (v - e)) / (h * resistance + inductance);
            e = (psi(k) - psi(k - 1)) / h;
        }
        EXPECT_NEAR(kzbcalcGetCurrent(1, calc), i, rounding) << k;
        EXPECT_NEAR(kzbcalcGetVoltage(1, calc), e, rounding) << k;
        EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), psi(k), flux_rounding);
        EXPECT_NEAR(kzbcalcGetForce(calc), 2.0 * i, rounding);
        EXPECT_NEAR(kzbcalcGetCopperloss(calc), resistance * i * i, rounding);
        kzbcalcUpdate(calc);
    }
}

TEST(SolenoidRun, force_is_evaluated_in_either_mode) {
    Solenoid file;
    for (const int mode : {1, 2}) {
        Calculator calc(file, mode);
        kzbcalcSetData(calc);
        ASSERT_EQ(kzbcalcSetCurrent(1, 3.0, calc), 0);
        EXPECT_NEAR(kzbcalcGetForce(calc), 6.0, rounding);
        EXPECT_EQ(kzbcalcGetTorque(calc), 180034.0);
        ASSERT_EQ(kzbcalcSetCorrectionOfForce(2.0, calc), 0);
        EXPECT_NEAR(kzbcalcGetForce(calc), 12.0, rounding);
    }
}

TEST(SolenoidRun, displacement_is_metres_but_its_initial_value_degrees) {
    // 18 degrees are pi / 10; flux 0.1 Vs per m.
    Solenoid file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetInitialDisplacement(18.0, calc), 0);
    step_sample(calc, h, 0.5, {0.0});
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), 0.1 * (0.5 + std::numbers::pi / 10.0), flux_rounding);
}

TEST(SolenoidRun, limits_of_the_file_are_told_before_the_data_are_set) {
    Solenoid file;
    Calculator calc(file);
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(kzbcalcGetUpperLimitDisplacement(calc), 0.25);
        EXPECT_EQ(kzbcalcGetLowerLimitDisplacement(calc), -0.125);
        kzbcalcSetData(calc);
    }
    ModelFile bare;
    bare.integer("control", "motor_type", 10004);
    Calculator without(bare);
    EXPECT_EQ(kzbcalcGetUpperLimitDisplacement(without), 0.0);
    EXPECT_EQ(kzbcalcGetLowerLimitDisplacement(without), 0.0);
}

TEST(SolenoidRun, corrections_of_the_file_do_not_start_the_model) {
    Solenoid file;
    file.number("control", "coef_force", 3.0).number("control", "coef_flux", 3.0);
    Calculator calc(file);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(1, 3.0, calc);
    EXPECT_NEAR(kzbcalcGetForce(calc), 6.0, rounding);
    step_sample(calc, 0.0, 0.5, {0.0});
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), 0.05, flux_rounding);
}

TEST(SolenoidRun, there_is_one_inductance) {
    Solenoid file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, {1.0});
    EXPECT_EQ(kzbcalcGetInductance(1, 1, calc), inductance);
    EXPECT_EQ(kzbcalcGetInductance(1, 2, calc), 180031.0);
    EXPECT_EQ(kzbcalcGetInductance(2, 1, calc), 180031.0);
}

TEST(SolenoidRun, magnet_temperature_scales_the_flux) {
    // 100 K above base at -0.11 percent per K: 0.89.
    Solenoid file;
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetMagnetTemperature(393.15, calc);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.5, {0.0});
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), 0.05 * 0.89, flux_rounding);
    EXPECT_EQ(kzbcalcGetMagFlux(2, calc), 180042.0);
}

}  // namespace
}  // namespace kzb_test::solenoid_run_test
