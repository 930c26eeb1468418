// Random models of the two-phase stepping motor under random calls, against the plain reference: every result, bit for
// bit.
#include <gtest/gtest.h>

#include "coil_script.h"

namespace kzb_bench_test {
namespace {

constexpr int motor_types[] = {10003};
constexpr TableForm forms[] = {TableForm::plausible, TableForm::random, TableForm::foreign};

class StepperAgainstReference : public testing::TestWithParam<TableForm> {};

TEST_P(StepperAgainstReference, voltage_driven_samples_agree_to_the_bit) {
    for (const int motor_type : motor_types) {
        double peak = 0.0;
        for (unsigned seed = 1; seed <= 25 && !HasFailure(); ++seed) {
            SCOPED_TRACE("motor type " + std::to_string(motor_type) + " seed " + std::to_string(seed));
            std::mt19937_64 random(seed);
            CoilPair pair({motor_type, GetParam()}, 1, random);
            configure_at_random(pair, random);
            run_samples(pair, random, 60, false);
            peak = std::max(peak, pair.peak_current());
        }
        EXPECT_GT(peak, 1.0);  // the machines carried current
    }
}

TEST_P(StepperAgainstReference, current_driven_samples_agree_to_the_bit) {
    for (const int motor_type : motor_types) {
        for (unsigned seed = 1; seed <= 20 && !HasFailure(); ++seed) {
            SCOPED_TRACE("motor type " + std::to_string(motor_type) + " seed " + std::to_string(seed));
            std::mt19937_64 random(seed);
            CoilPair pair({motor_type, GetParam()}, 2, random);
            configure_at_random(pair, random);
            run_samples(pair, random, 40, true);
        }
    }
}

TEST_P(StepperAgainstReference, calls_in_any_order_with_any_number_agree_to_the_bit) {
    for (const int motor_type : motor_types) {
        for (unsigned seed = 1; seed <= 40 && !HasFailure(); ++seed) {
            SCOPED_TRACE("motor type " + std::to_string(motor_type) + " seed " + std::to_string(seed));
            std::mt19937_64 random(seed);
            CoilPair pair({motor_type, GetParam()}, 1 + static_cast<int>(seed % 2), random);
            run_odd_calls(pair, random, 250);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, StepperAgainstReference, testing::ValuesIn(forms),
                         [](const testing::TestParamInfo<TableForm>& each) { return name_of(each.param); });

}  // namespace
}  // namespace kzb_bench_test
