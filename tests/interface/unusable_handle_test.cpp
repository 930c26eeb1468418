// Null handles, and handles whose kzbcalcInitialize failed: every call is safe and refuses.
#include <gtest/gtest.h>

#include "interface/call_table.h"
#include "interface/model_file.h"

namespace {

using namespace kzb_test;

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
    EXPECT_EQ(kzbcalcGetNumberOfPhases(handle), 180039);
}

TEST(UnusableHandle, null_is_refused_by_every_call) {
    expect_refused(nullptr);
    EXPECT_EQ(kzbcalcCheckMotorType(nullptr), 180039);
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
TEST(UnusableHandle, extreme_values_are_survived) {
    ModelFile rotary;
    rotary_frame(rotary, 3, 0.5);
    add_harmonic(rotary, 1e-3, 0.0, 0.1, 1.0);
    ModelFile linear;
    linear_machine(linear, 1e-3, 0.0, 0.1, 0.5);
    ModelFile flux;
    rotary_frame(flux, 5, 0.5);
    add_flux_integral(flux, 1e-3, 0.1, 1.0);
    const double inf = std::numeric_limits<double>::infinity();
    for (ModelFile* const file : {&rotary, &linear, &flux}) {
        for (const double value : {std::nan(""), inf, -inf, 1e308, -1e308, 5e-324, 0.0}) {
            Calculator calc(*file);
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
                EXPECT_EQ(kzbcalcUpdate(calc), 0);
                kzbcalcSetTime(1e-4 * sample, calc);
            }
        }
    }
}

}  // namespace
