// Temperatures by what they do in a run: resistances in the currents, the magnet's in flux, torque and force.
//
// 100 K above base at 3810 ppm per K make a coil 1.381 times its resistance; 100 K above base at -0.11 percent per K
// leave 0.89 of a magnet's flux.
#include <gtest/gtest.h>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::temperature_run_test {
namespace {

constexpr double h = 1e-3;
constexpr double l = 2e-3;
constexpr double r = 0.5;
constexpr double warm_coil = 1.381;
constexpr double warm_magnet = 0.89;

struct WarmRun {
    const char* name;
    void (*fill)(ModelFile& file);
    std::vector<double> voltages;
    int samples;            // the last one is the first that solves
    double inductance = l;  // that its solve sees in phase 1
};

void fill_rotary(ModelFile& file) {
    rotary_frame(file, 1, r);
    add_ld_lq(file, l, l, 0.0);
}
void fill_linear(ModelFile& file) {
    linear_machine(file, l, 0.0, 0.0, r);
}
void fill_stepping(ModelFile& file) {
    stepping_machine(file, l, 0.0, 0.0, r);
}
void fill_solenoid(ModelFile& file) {
    solenoid_machine(file, l, 0.0, r);
}
template <int phases>
void fill_reluctance(ModelFile& file) {
    reluctance_machine(file, phases, l, 0.0, r);
}
// Without armature flux the armature is a resistance alone.
void fill_wound_field(ModelFile& file) {
    wound_field_machine(file, 0.0, 0.0, 0.1, r, 5.0);
}

const WarmRun runs[] = {
    {"rotary", fill_rotary, {10.0, -5.0, -5.0}, 3},
    {"linear", fill_linear, {10.0, -5.0, -5.0}, 3},
    {"stepping", fill_stepping, {10.0, 0.0, 0.0, 0.0}, 2},
    {"solenoid", fill_solenoid, {10.0}, 2},
    {"reluctance3", fill_reluctance<3>, {10.0, 0.0, 0.0}, 2},
    {"reluctance4", fill_reluctance<4>, {10.0, 0.0, 0.0, 0.0}, 2},
    {"reluctance5", fill_reluctance<5>, {10.0, 0.0, 0.0, 0.0, 0.0}, 2},
    {"wound_field", fill_wound_field, {10.0, -5.0, -5.0, 0.0}, 2, 0.0},
};

class CoilResistance : public testing::TestWithParam<WarmRun> {};
INSTANTIATE_TEST_SUITE_P(Machines, CoilResistance, testing::ValuesIn(runs),
                         [](const auto& run) { return std::string(run.param.name); });

TEST_P(CoilResistance, is_in_the_step_that_of_the_coils_temperature) {
    // From rest: (h R f + L) i = h v.
    ModelFile file;
    GetParam().fill(file);
    for (const bool warm : {false, true}) {
        Calculator calc(file);
        kzbcalcSetData(calc);
        if (warm) {
            ASSERT_EQ(kzbcalcSetTemperatureCorrectionCalc(calc), 0);
            ASSERT_EQ(kzbcalcSetCoilBaseTemperature(300.0, calc), 0);
            ASSERT_EQ(kzbcalcSetCoilTemperature(400.0, calc), 0);
            ASSERT_EQ(kzbcalcSetCoilTemperatureCorrectionCoefficient(3810.0, calc), 0);
        }
        for (int k = 0; k < GetParam().samples; ++k) {
            step_sample(calc, h * k, 0.0, GetParam().voltages);
            kzbcalcUpdate(calc);
        }
        const double factor = warm ? warm_coil : 1.0;
        EXPECT_NEAR(kzbcalcGetCurrent(1, calc), h * 10.0 / (h * r * factor + GetParam().inductance), 1e-9);
    }
}

TEST_P(CoilResistance, that_was_set_takes_the_place_of_the_files) {
    ModelFile file;
    GetParam().fill(file);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetResistance(2.0, calc), 0);
    kzbcalcSetData(calc);
    for (int k = 0; k < GetParam().samples; ++k) {
        step_sample(calc, h * k, 0.0, GetParam().voltages);
        kzbcalcUpdate(calc);
    }
    EXPECT_EQ(kzbcalcGetResistance(calc), 2.0);
    EXPECT_NEAR(kzbcalcGetCurrent(1, calc), h * 10.0 / (h * 2.0 + GetParam().inductance), 1e-9);
}

TEST(FieldCoilTemperature, resistance_of_the_step_is_at_the_field_coils_temperature) {
    // 4000 ppm over 100 K: (h Rf 1.4 + Lf) i = h v at the second sample.
    ModelFile file;
    wound_field_machine(file, l, 0.0, 0.1, r, 5.0);
    Calculator calc(file);
    kzbcalcSetData(calc);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetFieldCoilTemperature(393.15, calc);
    kzbcalcSetFieldCoilTemperatureCorrectionCoefficient(4000.0, calc);
    for (int k = 0; k < 2; ++k) {
        step_sample(calc, h * k, 0.0, {0.0, 0.0, 0.0, 10.0});
        kzbcalcUpdate(calc);
    }
    EXPECT_NEAR(kzbcalcGetCurrent(4, calc), h * 10.0 / (h * 5.0 * 1.4 + 0.1), 1e-12);
}

TEST(InductionTemperature, both_windings_have_their_own) {
    // The first solve of a machine at rest, both axes alike: (L + h R1 f1) i1 + M i2 = h v, M i1 + (L + h R2 f2) i2 =
    // 0. f1 = 1 + 100 K * 4000 ppm, f2 = 1 + 100 K * 5000 ppm.
    ModelFile file;
    induction_constants(file);
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetCoilTemperature(393.15, calc);
    kzbcalcSetCoilTemperatureCorrectionCoefficient(4000.0, calc);
    kzbcalcSetSecondaryCoilTemperature(393.15, calc);
    kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient(5000.0, calc);
    kzbcalcSetData(calc);
    for (int k = 0; k < 2; ++k) {
        step_sample(calc, h * k, 0.0, {30.0, -15.0, -15.0});
        kzbcalcUpdate(calc);
    }
    // The inductances before the first step count as those of the step at time 0.
    const double a = 0.11 + h * 0.5 * 1.4, m = 0.1, d = 0.11 + h * 0.4 * 1.5;
    EXPECT_NEAR(kzbcalcGetCurrent(1, calc), h * 30.0 * d / (a * d - m * m), 1e-9);
    // A resistance set later is warmed at once.
    ASSERT_EQ(kzbcalcSetSecondaryResistance(0.8, calc), 0);
    EXPECT_DOUBLE_EQ(kzbcalcGetSecondaryResistance(calc), 0.8 * 1.5);
}

// ---- magnets

void warm_the_magnet(KZB_CALC* calc) {
    kzbcalcSetTemperatureCorrectionCalc(calc);
    ASSERT_EQ(kzbcalcSetMagnetBaseTemperature(300.0, calc), 0);
    ASSERT_EQ(kzbcalcSetMagnetTemperature(400.0, calc), 0);
}

TEST(MagnetTemperature, stepping_motor_loses_flux_and_a_sine_of_torque) {
    // At 30 degrees coil k has the flux 0.01 (k + 1) 30 Vs, of which 0.11 are lost. One pole pair: phase A loses by
    // sin(30 degrees), B by sin(30 - 90 degrees), the half coils with opposite signs.
    ModelFile file;
    stepping_machine(file, l, 0.0, 0.01, r);
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    warm_the_magnet(calc);
    kzbcalcSetDisplacement(30.0, calc);
    const double current[] = {3.0, 1.0, 2.0, 5.0};
    const double lost[] = {0.3 * 0.11, 0.6 * 0.11, 0.9 * 0.11, 1.2 * 0.11};
    for (int phase = 1; phase <= 4; ++phase) {
        kzbcalcSetCurrent(phase, current[phase - 1], calc);
    }
    const double of_a = std::sin(30.0 * rad_per_deg) * (lost[0] * current[0] - lost[1] * current[1]);
    const double of_b = std::sin(-60.0 * rad_per_deg) * (lost[2] * current[2] - lost[3] * current[3]);
    // The table: i_A + 10 i_B.
    EXPECT_NEAR(kzbcalcGetTorque(calc), (3.0 - 1.0) + 10.0 * (2.0 - 5.0) - (of_a + of_b), 1e-9);
    for (int phase = 1; phase <= 4; ++phase) {
        EXPECT_NEAR(kzbcalcGetMagFlux(phase, calc), 0.3 * phase * warm_magnet, 1e-9);
    }
}

TEST(MagnetTemperature, solenoid_loses_force_by_the_change_of_lost_coenergy) {
    // Lost flux 0.11 * 0.1 x; from x' = 0.2 m at 3 A to x = 0.5 m at 4 A:
    // ((2 * 4 - 3) lost - 4 lost') / (x - x'), off the table's 2 N per A.
    ModelFile file;
    solenoid_machine(file, l, 0.01, r);
    Calculator calc(file);
    kzbcalcSetData(calc);
    warm_the_magnet(calc);
    step_sample(calc, 0.0, 0.2, {0.0});
    kzbcalcSetCurrent(1, 3.0, calc);
    kzbcalcUpdate(calc);
    step_sample(calc, h, 0.5, {0.0});
    kzbcalcSetCurrent(1, 4.0, calc);
    const double lost = 0.11 * 0.05, lost_before = 0.11 * 0.02;
    EXPECT_NEAR(kzbcalcGetForce(calc), 8.0 - (5.0 * lost - 4.0 * lost_before) / (0.5 - 0.2), 1e-9);
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), 0.05 * warm_magnet, 1e-12);
}

TEST(MagnetTemperature, permanent_magnet_machine_loses_torque) {
    // Kind 2 at a q current of sqrt(3/2) 4 A: pole pairs 2, torque 2 * 0.89 * 0.1 * sqrt(3/2) 4 N*m.
    ModelFile file;
    rotary_frame(file, 1, r);
    add_ld_lq(file, l, l, 0.1);
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    warm_the_magnet(calc);
    for (int sample = 0; sample < 3; ++sample) {
        kzbcalcSetCurrent(2, -4.0 * std::cos(150.0 * rad_per_deg), calc);
        kzbcalcSetCurrent(3, 4.0 * std::cos(150.0 * rad_per_deg), calc);
        kzbcalcGetTorque(calc);
        kzbcalcUpdate(calc);
    }
    EXPECT_NEAR(kzbcalcGetTorque(calc), 2.0 * warm_magnet * 0.1 * std::sqrt(1.5) * 4.0, 1e-12);
}

}  // namespace
}  // namespace kzb_test::temperature_run_test
