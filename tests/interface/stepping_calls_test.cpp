// The calls of one sample: phase ranges, motor types, units, history, and what a failed step leaves.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "interface/model_file.h"

namespace kzb_test::stepping_calls_test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

struct Rotary : ModelFile {
    Rotary() {
        rotary_frame(*this, 1, 0.5);
        add_ld_lq(*this, 2e-3, 4e-3, 0.1);
    }
};

struct Linear : ModelFile {
    Linear() { linear_machine(*this, 1e-3, 0.0, 0.1, 0.5); }
};

// One whole sample of a voltage-driven run.
void sample(KZB_CALC* calc, double time, double displacement, double u, double v, double w) {
    kzbcalcSetTime(time, calc);
    kzbcalcSetDisplacement(displacement, calc);
    kzbcalcSetVoltage(1, u, calc);
    kzbcalcSetVoltage(2, v, calc);
    kzbcalcSetVoltage(3, w, calc);
    kzbcalcExecute(calc);
}

TEST(SteppingCalls, rotary_machine_at_rest_has_zero_results) {
    Rotary file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    for (const int phase : {1, 2, 3}) {
        EXPECT_EQ(kzbcalcGetCurrent(phase, calc), 0.0);
        EXPECT_EQ(kzbcalcGetVoltage(phase, calc), 0.0);
        EXPECT_EQ(kzbcalcGetInducedVoltage(phase, calc), 0.0);
    }
    EXPECT_EQ(kzbcalcGetTorque(calc), 0.0);
    for (const int index : {1, 0, -1}) {
        EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(index, calc), 180062.0);
    }
    EXPECT_EQ(kzbcalcGetEddyloss(calc), 0.0);
    EXPECT_EQ(kzbcalcGetHysteresisloss(calc), 0.0);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
    EXPECT_EQ(kzbcalcGetUserCopperLoss(calc), 0.0);
}

TEST(SteppingCalls, force_of_the_linear_machine_is_the_drive_not_the_attraction) {
    Linear file;
    for (const int mode : {1, 2}) {
        Calculator calc(file, mode);
        kzbcalcSetData(calc);
        EXPECT_EQ(kzbcalcGetForce(calc), 12.0);  // "distance_force"/"force"; the attraction is 34
        EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(1, calc), 180039.0);
    }
}

TEST(SteppingCalls, time_is_refused_when_negative_and_then_unchanged) {
    // (dt R + L) i = dt v from rest: the third sample's dt tells which times were kept.
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    add_ld_lq(file, 1.0, 1.0, 0.0);
    Calculator calc(file);
    kzbcalcSetData(calc);
    sample(calc, 0.0, 0.0, 0.0, 0.0, 0.0);
    kzbcalcUpdate(calc);
    sample(calc, 1.0, 0.0, 0.0, 0.0, 0.0);
    kzbcalcUpdate(calc);
    sample(calc, 3.0, 0.0, 2.0, -1.0, -1.0);
    EXPECT_EQ(kzbcalcSetTime(-0.5, calc), 180032);
    kzbcalcExecute(calc);
    EXPECT_NEAR(kzbcalcGetCurrent(1, calc), 2.0, 1e-12);  // dt 2, v 2, R 0.5, L 1
    EXPECT_EQ(kzbcalcSetTime(-0.0, calc), 0);
    EXPECT_EQ(kzbcalcSetTime(-infinity, calc), 180032);
}

TEST(SteppingCalls, degrees_become_radians_with_the_initial_displacement) {
    // Magnet flux of kind 2: sqrt(2/3) d_flux cos(2 position); 30 degrees + 15 degrees: cos(90 degrees) = 0;
    // 15 + 15: cos(60 degrees) = 0.5.
    Rotary file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetInitialDisplacement(15.0, calc), 0);
    EXPECT_EQ(kzbcalcSetDisplacement(30.0, calc), 0);
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), 0.0, 1e-16);
    EXPECT_EQ(kzbcalcSetDisplacement(15.0, calc), 0);
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), std::sqrt(2.0 / 3.0) * 0.1 * 0.5, 1e-16);
}

TEST(SteppingCalls, metres_stay_metres_with_the_initial_displacement) {
    // "mag_flux" of phase u is 0.1 cos(2 pi x / 0.1): 0.02 + 0.005 m is a quarter of the length, exactly on a node, and
    // a spline gives back its nodes.
    Linear file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetInitialDisplacement(0.005, calc), 0);
    EXPECT_EQ(kzbcalcSetDisplacement(0.02, calc), 0);
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), 0.0, 1e-12);
    EXPECT_EQ(kzbcalcSetDisplacement(0.045, calc), 0);
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), -0.1, 1e-12);
}

TEST(SteppingCalls, magnet_flux_follows_the_phase) {
    // cos(2 position - k 120 degrees) at position 0: 1, -1/2, -1/2, times sqrt(2/3) 0.1.
    Rotary file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    const double amplitude = std::sqrt(2.0 / 3.0) * 0.1;
    EXPECT_DOUBLE_EQ(kzbcalcGetMagFlux(1, calc), amplitude);
    EXPECT_NEAR(kzbcalcGetMagFlux(2, calc), -0.5 * amplitude, 1e-16);
    EXPECT_NEAR(kzbcalcGetMagFlux(3, calc), -0.5 * amplitude, 1e-16);
}

TEST(SteppingCalls, any_signal_but_zero_applies_the_voltage) {
    Rotary file;
    for (const int signal : {1, 2, -1, 100}) {
        Calculator calc(file);
        kzbcalcSetData(calc);
        EXPECT_EQ(kzbcalcSetSignal(1, signal, calc), 0);
        for (int k = 0; k < 3; ++k) {
            sample(calc, 1e-4 * k, 0.0, 10.0, -5.0, -5.0);
            kzbcalcUpdate(calc);
        }
        // (dt R + L) i = dt v along phase u at angle 0, where the machine shows Ld = 2e-3: 1e-3 / (5e-5 + 2e-3)
        EXPECT_NEAR(kzbcalcGetCurrent(1, calc), 1e-3 / (5e-5 + 2e-3), 1e-12);
    }
}

TEST(SteppingCalls, port_without_signal_floats) {
    // Phase w open: u and v in series, no current in w.
    Rotary file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetSignal(3, 0, calc), 0);
    for (int k = 0; k < 3; ++k) {
        sample(calc, 1e-4 * k, 0.0, 10.0, -5.0, 77.0);
        kzbcalcUpdate(calc);
    }
    EXPECT_NEAR(kzbcalcGetCurrent(3, calc), 0.0, 1e-12);
    EXPECT_NEAR(kzbcalcGetCurrent(1, calc) + kzbcalcGetCurrent(2, calc), 0.0, 1e-12);
    EXPECT_GT(kzbcalcGetCurrent(1, calc), 0.1);
}

TEST(SteppingCalls, execute_never_commits) {
    Rotary file;
    Calculator once(file);
    Calculator often(file);
    for (KZB_CALC* const calc : {static_cast<KZB_CALC*>(once), static_cast<KZB_CALC*>(often)}) {
        kzbcalcSetData(calc);
    }
    for (int k = 0; k < 6; ++k) {
        sample(once, 1e-4 * k, 3.0 * k, 10.0, -5.0, -5.0);
        kzbcalcUpdate(once);
        sample(often, 1e-4 * k, 3.0 * k, 99.0, 0.0, -7.0);
        kzbcalcExecute(often);
        sample(often, 1e-4 * k, 3.0 * k, 10.0, -5.0, -5.0);
        kzbcalcUpdate(often);
        for (const int phase : {1, 2, 3}) {
            EXPECT_EQ(kzbcalcGetCurrent(phase, once), kzbcalcGetCurrent(phase, often)) << k;
        }
        EXPECT_EQ(kzbcalcGetTorque(once), kzbcalcGetTorque(often));
    }
}

TEST(SteppingCalls, execute_returns_zero_when_the_step_failed_and_currents_stay) {
    Rotary file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    for (int k = 0; k < 3; ++k) {
        sample(calc, 1e-4 * k, 0.0, 10.0, -5.0, -5.0);
        kzbcalcUpdate(calc);
    }
    const double before = kzbcalcGetCurrent(1, calc);
    for (const double bad : {infinity, -infinity, std::nan("")}) {
        kzbcalcSetTime(3e-4, calc);
        kzbcalcSetVoltage(1, bad, calc);
        EXPECT_EQ(kzbcalcExecute(calc), 0);
        EXPECT_EQ(kzbcalcGetCurrent(1, calc), before);
    }
}

TEST(SteppingCalls, file_corrected_by_the_old_method_is_not_stepped) {
    Rotary file;
    file.integer("CorrectionTable", "present", 1);
    Calculator calc(file);
    kzbcalcSetData(calc);
    for (int k = 0; k < 4; ++k) {
        sample(calc, 1e-4 * k, 0.0, 10.0, -5.0, -5.0);
        EXPECT_EQ(kzbcalcUpdate(calc), 0);
    }
    EXPECT_EQ(kzbcalcGetCurrent(1, calc), 0.0);
}

TEST(SteppingCalls, inductance_of_row_one_column_three_is_that_of_row_three_column_one) {
    // Element t of the table stands at row t mod 3, column t div 3; its value is t + 1, so the element at row 3 column
    // 1 (t = 2) is 3 and that at row 1 column 3 (t = 6) would be 7.
    ModelFile file;
    rotary_frame(file, 3, 0.5);
    add_harmonic(file, 1.0, 0.0, 0.1, 0.0);
    const Point angles = every(5.0, 0.0, 180.0);
    file.table("harmonic_inductance", "inductance", {currents, betas, angles, nine},
               [](const Point& x) { return x[3] + 1.0; }, {3});
    Calculator calc(file);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    for (const int row : {1, 2, 3}) {
        for (const int column : {1, 2, 3}) {
            const double expected = row == 1 && column == 3 ? 3.0 : row + 3.0 * (column - 1);
            EXPECT_EQ(kzbcalcGetInductance(row, column, calc), expected) << row << " " << column;
        }
    }
}

TEST(SteppingCalls, axis_inductances_of_a_delta_are_a_third) {
    Rotary file;
    Calculator star(file);
    Calculator delta(file);
    kzbcalcSetConnectionType(1, delta);
    for (KZB_CALC* const calc : {static_cast<KZB_CALC*>(star), static_cast<KZB_CALC*>(delta)}) {
        kzbcalcSetData(calc);
        kzbcalcExecute(calc);
    }
    EXPECT_EQ(kzbcalcGetDAxisInductance(star), 2e-3);
    EXPECT_EQ(kzbcalcGetQAxisInductance(star), 4e-3);
    EXPECT_EQ(kzbcalcGetDAxisInductance(delta), 2e-3 * 0.3333333333333333);
    EXPECT_EQ(kzbcalcGetQAxisInductance(delta), 4e-3 * 0.3333333333333333);
}

TEST(SteppingCalls, copper_loss_is_resistance_times_squared_currents) {
    Rotary file;
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(1, 2.0, calc);
    kzbcalcSetCurrent(2, -3.0, calc);
    kzbcalcSetCurrent(3, 1.0, calc);
    kzbcalcGetTorque(calc);
    EXPECT_EQ(kzbcalcGetResistance(calc), 0.5);
    EXPECT_EQ(kzbcalcGetCopperloss(calc), 0.5 * (4.0 + 9.0 + 1.0));
}

TEST(SteppingCalls, calls_before_the_data_are_set_are_harmless) {
    Rotary rotary;
    Linear linear;
    ModelFile flux_integral;
    rotary_frame(flux_integral, 5, 0.5);
    add_flux_integral(flux_integral, 1e-3, 0.1, 0.0);
    for (ModelFile* const file : {static_cast<ModelFile*>(&rotary), static_cast<ModelFile*>(&linear), &flux_integral}) {
        for (const int mode : {1, 2}) {
            Calculator calc(*file, mode);
            for (int k = 0; k < 4; ++k) {
                sample(calc, 1e-4 * k, 1.0, 1.0, 2.0, 3.0);
                kzbcalcGetTorque(calc);
                kzbcalcGetForce(calc);
                kzbcalcGetMagFlux(1, calc);
                EXPECT_EQ(kzbcalcUpdate(calc), 0);
            }
            EXPECT_EQ(kzbcalcGetCurrent(1, calc), 0.0);
        }
    }
}

TEST(SteppingCalls, data_may_be_set_again) {
    Rotary file;
    Calculator calc(file);
    EXPECT_EQ(kzbcalcSetData(calc), 0);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcSetData(calc), 0);
    EXPECT_EQ(kzbcalcExecute(calc), 0);
}

}  // namespace
}  // namespace kzb_test::stepping_calls_test
