// What a caller hands in, by what it does in a run: initial currents, time and displacement, signals, refused values.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "interface/accessor_table.h"
#include "interface/call_table.h"
#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::input_run_test {
namespace {

constexpr double h = 1e-3;
constexpr double l = 2e-3;
constexpr double r = 0.5;
const Point angles{-3600.0, 3600.0};

// ---- initial values

TEST(InitialValues, current_and_time_start_a_stepping_motor_and_a_solenoid) {
    // (dt R + L) i = L i0 without voltage, from time 1 s on.
    ModelFile stepper, solenoid;
    stepping_machine(stepper, l, 0.0, 0.0, r);
    solenoid_machine(solenoid, l, 0.0, r);
    for (ModelFile* const file : {&stepper, &solenoid}) {
        Calculator calc(*file);
        kzbcalcSetData(calc);
        ASSERT_EQ(kzbcalcSetInitialCurrent(1, 4.0, calc), 0);
        ASSERT_EQ(kzbcalcSetInitialTime(1.0, calc), 0);
        step_sample(calc, 1.0 + h, 0.0, {0.0});
        const double dt = (1.0 + h) - 1.0;
        EXPECT_NEAR(kzbcalcGetCurrent(1, calc), l * 4.0 / (dt * r + l), 1e-12);
    }
}

TEST(InitialValues, currents_and_time_start_an_induction_machine) {
    // No step was accepted, so that the inductances before count as 0: (2 L + dt R) y = L x for primary and secondary.
    ModelFile file;
    induction_constants(file);
    Calculator calc(file);
    kzbcalcSetData(calc);
    const double start[] = {4.0, -2.0, -2.0};
    for (int phase = 1; phase <= 3; ++phase) {
        ASSERT_EQ(kzbcalcSetInitialCurrent(phase, start[phase - 1], calc), 0);
    }
    ASSERT_EQ(kzbcalcSetInitialTime(1.0, calc), 0);
    step_sample(calc, 1.0 + h, 0.0, {0.0, 0.0, 0.0});
    const double dt = (1.0 + h) - 1.0;
    const double a = 0.22 + dt * 0.5, b = 0.2, d = 0.22 + dt * 0.4;
    const double part = (0.11 * d - b * 0.1) / (a * d - b * b);
    for (int phase = 1; phase <= 3; ++phase) {
        EXPECT_NEAR(kzbcalcGetCurrent(phase, calc), start[phase - 1] * part, 1e-9);
    }
}

// 15 degrees of initial displacement and 30 of displacement, seen by tables that give the angle in degrees.
TEST(InitialValues, displacement_is_added_in_degrees) {
    ModelFile stepper, reluctance, wound_field;
    stepping_machine(stepper, l, 0.0, 0.01, r);
    reluctance_machine(reluctance, 3, l, 0.0, r);
    reluctance.table("torque", "torque_ibeta", {angles, signed_currents}, [](const Point& x) { return x[0]; });
    wound_field_machine(wound_field, l, 0.0, 0.1, r, 5.0);
    wound_field.table("harmonic_torque", "torque_ibeta", {amplitudes, betas, amplitudes, angles},
                      [](const Point& x) { return x[3]; });
    const auto run = [](ModelFile& file, double (*get)(KZB_CALC*)) {
        Calculator calc(file);
        kzbcalcSetData(calc);
        EXPECT_EQ(kzbcalcSetInitialDisplacement(15.0, calc), 0);
        step_sample(calc, h, 30.0, {});
        return get(calc);
    };
    EXPECT_NEAR(run(stepper, [](KZB_CALC* calc) { return kzbcalcGetMagFlux(1, calc); }), 0.45, 1e-9);
    // Three phases of two poles, 60 degrees apart.
    EXPECT_NEAR(run(reluctance, kzbcalcGetTorque), 45.0 + 105.0 + 165.0, 1e-9);
    EXPECT_NEAR(run(wound_field, kzbcalcGetTorque), 45.0, 1e-9);
}

TEST(InitialValues, displacement_counts_in_the_speed_of_an_induction_machine_with_constants) {
    // Two pole pairs at 18 degrees, all of it initial, after 0.1 s: 2 * pi / 10 / 0.1 s, one turn of the field per
    // second. The loss table gives the frequency of the speed.
    ModelFile file;
    induction_constants(file);
    file.table("loss_table", "iron_loss", {amplitudes, amplitudes, amplitudes, amplitudes, amplitudes},
               [](const Point& x) { return x[2]; });
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetInitialDisplacement(18.0, calc), 0);
    step_sample(calc, 0.1, 0.0, {0.0, 0.0, 0.0});
    EXPECT_NEAR(kzbcalcGetIronloss(calc), 1.0, 1e-12);
}

// ---- signals

TEST(Signals, above_zero_apply_the_voltage_of_a_coil_machine) {
    // Two samples of (h R + L) i = L i' + h v from rest; the first has no time.
    ModelFile stepper, solenoid, reluctance;
    stepping_machine(stepper, l, 0.0, 0.0, r);
    solenoid_machine(solenoid, l, 0.0, r);
    reluctance_machine(reluctance, 5, l, 0.0, r);
    for (ModelFile* const file : {&stepper, &solenoid, &reluctance}) {
        for (const int signal : {1, 2, 100, 0, -1, -100}) {
            SCOPED_TRACE(signal);
            Calculator calc(*file);
            kzbcalcSetData(calc);
            ASSERT_EQ(kzbcalcSetSignal(1, signal, calc), 0);
            for (int k = 0; k < 2; ++k) {
                step_sample(calc, h * k, 0.0, {10.0});
                kzbcalcUpdate(calc);
            }
            EXPECT_NEAR(kzbcalcGetCurrent(1, calc), signal > 0 ? h * 10.0 / (h * r + l) : 0.0, 1e-12);
        }
    }
}

TEST(Signals, any_but_zero_apply_the_voltage_of_a_wound_field_machine) {
    ModelFile file;
    wound_field_machine(file, l, 0.0, 0.1, r, 5.0);
    for (const int signal : {1, 2, -1, 0}) {
        SCOPED_TRACE(signal);
        Calculator calc(file);
        kzbcalcSetData(calc);
        ASSERT_EQ(kzbcalcSetSignal(4, signal, calc), 0);
        for (int k = 0; k < 2; ++k) {
            step_sample(calc, h * k, 0.0, {0.0, 0.0, 0.0, 10.0});
            kzbcalcUpdate(calc);
        }
        EXPECT_NEAR(kzbcalcGetCurrent(4, calc), signal != 0 ? h * 10.0 / (h * 5.0 + 0.1) : 0.0, 1e-12);
    }
}

TEST(Signals, an_induction_machine_is_driven_whatever_they_are) {
    ModelFile file;
    induction_constants(file);
    double expected = 0.0;
    for (const int signal : {1, 0, -1}) {
        Calculator calc(file);
        kzbcalcSetData(calc);
        for (int phase = 1; phase <= 3; ++phase) {
            ASSERT_EQ(kzbcalcSetSignal(phase, signal, calc), 0);
        }
        step_sample(calc, h, 0.0, {10.0, -5.0, -5.0});
        if (signal == 1) {
            expected = kzbcalcGetCurrent(1, calc);
            EXPECT_GT(expected, 0.01);
        }
        EXPECT_EQ(kzbcalcGetCurrent(1, calc), expected);
    }
}

TEST(FailedStep, of_a_wound_field_machine_leaves_its_currents_and_executes_with_zero) {
    ModelFile file;
    wound_field_machine(file, l, 0.0, 0.1, r, 5.0);
    Calculator calc(file);
    kzbcalcSetData(calc);
    for (int k = 0; k < 3; ++k) {
        step_sample(calc, h * k, 0.0, {1.0, 0.0, -1.0, 10.0});
        kzbcalcUpdate(calc);
    }
    const double before = kzbcalcGetCurrent(4, calc);
    EXPECT_GT(before, 0.01);
    for (const double bad : {std::numeric_limits<double>::infinity(), std::nan("")}) {
        kzbcalcSetTime(3.0 * h, calc);
        kzbcalcSetVoltage(4, bad, calc);
        EXPECT_EQ(kzbcalcExecute(calc), 0);
        EXPECT_EQ(kzbcalcGetCurrent(4, calc), before);
    }
}

// ---- refused calls

class RefusedCalls : public testing::TestWithParam<Machine> {};
INSTANTIATE_TEST_SUITE_P(MotorTypes, RefusedCalls, testing::ValuesIn(machines),
                         [](const auto& machine) { return std::to_string(machine.param.code); });

// Every call that the table refuses, by its value or by the motor type.
void make_refused_calls(KZB_CALC* calc, Types type, int phases) {
    const auto refused_values = [&](const ValueCall& row) {
        for (const double value : row.bad) {
            EXPECT_NE(row.set(value, calc), 0) << row.name;
        }
        if (row.answer_to_good(type) != 0) {
            for (const double value : row.good) {
                EXPECT_NE(row.set(value, calc), 0) << row.name;
            }
        }
    };
    for (const ValueCall& row : value_calls) {
        refused_values(row);
    }
    for (const TemperatureCall& row : temperature_calls) {
        refused_values(row);
    }
    for (const NumberCall& row : number_calls) {
        for (const int number : row.bad) {
            EXPECT_NE(row.set(number, calc), 0) << row.name;
        }
    }
    for (const int phase : {0, -1, phases + 1, 2147483647, -2147483647 - 1}) {
        for (const PhaseSetter& row : phase_setters) {
            // A type without phases ignores the initial current with 0.
            EXPECT_EQ(row.set(phase, 77.0, calc) == 0, phases == 0 && row.other == 0) << row.name;
        }
        EXPECT_NE(kzbcalcGetInductance(phase, 1, calc), 0.0);
        EXPECT_NE(kzbcalcGetInductance(1, phase, calc), 0.0);
    }
}

bool same_bits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST_P(RefusedCalls, change_nothing_in_the_run) {
    ModelFile file;
    GetParam().fill(file);
    for (const int mode : {1, 2}) {
        Calculator plain(file, mode), disturbed(file, mode);
        const auto disturb = [&] { make_refused_calls(disturbed, GetParam().type, GetParam().phases); };
        kzbcalcSetTemperatureCorrectionCalc(plain);
        kzbcalcSetTemperatureCorrectionCalc(disturbed);
        disturb();
        kzbcalcSetData(plain);
        kzbcalcSetData(disturbed);
        for (int k = 0; k < 4; ++k) {
            for (KZB_CALC* const calc : {static_cast<KZB_CALC*>(plain), static_cast<KZB_CALC*>(disturbed)}) {
                kzbcalcSetTime(h * k, calc);
                kzbcalcSetDisplacement(0.01 * k, calc);
                for (int phase = 1; phase <= GetParam().phases; ++phase) {
                    kzbcalcSetVoltage(phase, 1.0 + k * phase, calc);
                    kzbcalcSetCurrent(phase, 0.1 * k - phase, calc);
                }
            }
            disturb();
            kzbcalcExecute(plain);
            kzbcalcExecute(disturbed);
            disturb();
            for (const auto& get : getters) {
                EXPECT_TRUE(same_bits(get.function(plain), get.function(disturbed))) << get.name << " " << k;
            }
            for (const auto& get : phase_getters) {
                EXPECT_TRUE(same_bits(get.function(1, plain), get.function(1, disturbed))) << get.name << " " << k;
            }
            kzbcalcUpdate(plain);
            kzbcalcUpdate(disturbed);
        }
    }
}

}  // namespace
}  // namespace kzb_test::input_run_test
