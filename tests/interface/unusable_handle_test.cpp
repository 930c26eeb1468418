// Null handles, and handles whose kzbcalcInitialize failed: every call is safe and refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "interface/call_table.h"
#include "interface/machines.h"
#include "interface/other_machines.h"
#include "support/quiet.h"

namespace kzb_test::unusable_handle_test {
namespace {

// The calls that look at nothing but the model.
void expect_refused(KZB_CALC* handle) {
    for (const auto& call : status_calls) {
        EXPECT_EQ(call.function(handle), 180039) << call.name;
    }
    for (const auto& call : getters) {
        EXPECT_EQ(call.function(handle), 180039.0) << call.name;
    }
    for (const int phase : {1, 0, -1, 99}) {
        for (const auto& call : phase_getters) {
            EXPECT_EQ(call.function(phase, handle), 180039.0) << call.name;
        }
        EXPECT_EQ(kzbcalcGetInductance(phase, 1, handle), 180039.0);
        for (const auto& call : indexed_setters) {
            EXPECT_EQ(call.function(phase, 1.0, handle), 180039) << call.name;
        }
        for (const auto& call : type_setters) {
            EXPECT_EQ(call.function(phase, handle), 180039) << call.name;
        }
        EXPECT_EQ(kzbcalcSetSignal(phase, 1, handle), 180039);
    }
    for (const double value : {1.0, 0.0, -1.0}) {
        for (const auto& call : value_setters) {
            EXPECT_EQ(call.function(value, handle), 180039) << call.name << " " << value;
        }
    }
    EXPECT_EQ(kzbcalcSetSkewParameter(1, 1, 1.0, 1.0, 2, 2, handle), 180039);
    EXPECT_EQ(kzbcalcExecute(handle), 0);
}

TEST(UnusableHandle, null_is_refused_by_every_call) {
    expect_refused(nullptr);
    EXPECT_EQ(kzbcalcCheckMotorType(nullptr), 180039);
    EXPECT_EQ(kzbcalcGetNumberOfPhases(nullptr), 180039);
    EXPECT_EQ(kzbcalcTerminate(nullptr), 0);
    EXPECT_STREQ(kzbcalcVersion(), "2.0.51");
}

TEST(UnusableHandle, missing_file_leaves_a_safe_handle) {
    Calculator calc("/nonexistent/file.kzb");
    ASSERT_EQ(calc.status, 180002);
    expect_refused(calc);
}

TEST(UnusableHandle, refused_motor_type_leaves_a_safe_handle) {
    ModelFile file;
    file.integer("control", "motor_type", 10009);
    Calculator calc(file);
    ASSERT_EQ(calc.status, 180001);
    EXPECT_EQ(kzbcalcGetNumberOfPhases(calc), 180039);
    expect_refused(calc);
}

TEST(UnusableHandle, refused_mode_leaves_a_safe_handle) {
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    Calculator calc(file, 3);
    ASSERT_EQ(calc.status, 180030);
    expect_refused(calc);
}

// Not a number, infinities and extremes through every setter and a few samples: nothing but numbers may come of it.
void run_on_extremes(ModelFile& file, double value) {
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetData(calc);
    for (const auto& call : value_setters) {
        call.function(value, calc);
    }
    for (int sample = 0; sample < 4; ++sample) {
        kzbcalcSetDisplacement(value, calc);
        for (const auto& call : indexed_setters) {
            call.function(1, value, calc);
        }
        EXPECT_EQ(kzbcalcExecute(calc), 0);
        for (const auto& call : getters) {
            call.function(calc);
        }
        for (const auto& call : phase_getters) {
            call.function(2, calc);
        }
        kzbcalcGetInductance(1, 1, calc);
        EXPECT_EQ(kzbcalcUpdate(calc), 0);
        kzbcalcSetTime(1e-4 * sample, calc);
    }
}

const double infinity = std::numeric_limits<double>::infinity();
const double extremes[] = {std::nan(""), infinity, -infinity, 1e308, -1e308, 5e-324, 0.0};

TEST(UnusableHandle, extreme_values_are_survived) {
    ModelFile rotary;
    rotary_frame(rotary, 3, 0.5);
    add_harmonic(rotary, 1e-3, 0.0, 0.1, 1.0);
    ModelFile flux;
    rotary_frame(flux, 5, 0.5);
    add_flux_integral(flux, 1e-3, 0.1, 1.0);
    ModelFile tables;
    induction_tables(tables);
    for (const double value : extremes) {
        run_on_extremes(rotary, value);
        run_on_extremes(flux, value);
        run_on_extremes(tables, value);
    }
}

class EveryMotorType : public testing::TestWithParam<Machine> {};
INSTANTIATE_TEST_SUITE_P(UnusableHandle, EveryMotorType, testing::ValuesIn(machines),
                         [](const auto& machine) { return std::to_string(machine.param.code); });

TEST_P(EveryMotorType, survives_extreme_values) {
    const QuietErrors quiet;
    ModelFile file;
    GetParam().fill(file);
    for (const double value : extremes) {
        run_on_extremes(file, value);
    }
}

// A file that states its motor type and nothing else: no table, no parameter.
TEST_P(EveryMotorType, survives_an_empty_file) {
    ModelFile file;
    file.integer("control", "motor_type", GetParam().code);
    for (const double value : {0.0, 1.0, -1.0}) {
        run_on_extremes(file, value);
    }
}

TEST_P(EveryMotorType, refused_mode_leaves_a_safe_handle) {
    ModelFile file;
    GetParam().fill(file);
    Calculator calc(file, 3);
    ASSERT_EQ(calc.status, 180030);
    // What the motor type alone tells is told: the file was read.
    EXPECT_EQ(kzbcalcCheckMotorType(calc), GetParam().code);
    EXPECT_EQ(kzbcalcGetNumberOfPhases(calc), GetParam().type == reluctance ? GetParam().phases : 180039);
    expect_refused(calc);
}

TEST_P(EveryMotorType, calls_before_the_data_are_set_are_harmless) {
    ModelFile file;
    GetParam().fill(file);
    for (const int mode : {1, 2}) {
        Calculator calc(file, mode);
        for (int k = 0; k < 4; ++k) {
            kzbcalcSetTime(1e-4 * k, calc);
            for (const auto& call : indexed_setters) {
                call.function(1, 1.0, calc);
            }
            EXPECT_EQ(kzbcalcExecute(calc), 0);
            for (const auto& call : getters) {
                call.function(calc);
            }
            for (const auto& call : phase_getters) {
                call.function(1, calc);
            }
            kzbcalcGetInductance(1, 1, calc);
            EXPECT_EQ(kzbcalcUpdate(calc), 0);
        }
    }
}

TEST_P(EveryMotorType, two_handles_are_independent) {
    if (GetParam().type == generic) {
        return;  // has no common resistance; its own test sets one by its id
    }
    ModelFile file;
    GetParam().fill(file);
    Calculator first(file);
    Calculator second(file);
    ASSERT_EQ(kzbcalcSetResistance(2.0, first), 0);
    kzbcalcSetData(first);
    kzbcalcSetData(second);
    for (KZB_CALC* const calc : {static_cast<KZB_CALC*>(first), static_cast<KZB_CALC*>(second)}) {
        kzbcalcSetTime(1e-4, calc);
        kzbcalcExecute(calc);
    }
    EXPECT_EQ(kzbcalcGetResistance(first), 2.0);
    EXPECT_EQ(kzbcalcGetResistance(second), 0.5);
}

}  // namespace
}  // namespace kzb_test::unusable_handle_test
