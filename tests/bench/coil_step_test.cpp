// Random models of the machines of separate coils under random calls, against the plain reference: every result, bit
// for bit.
#include <gtest/gtest.h>

#include "coil_script.h"

namespace kzb_bench_test {
namespace {

constexpr int stepper = 10003;
constexpr int solenoid = 10004;
constexpr int reluctance[] = {10010, 10011, 10012};  // of 3, 4 and 5 phases

using Case = std::tuple<int, TableForm>;

class CoilsAgainstReference : public testing::TestWithParam<Case> {
  protected:
    // One run per seed from 1 on: `body` gets the seed's generator.
    template <class Body>
    void for_seeds(unsigned count, Body body) {
        for (unsigned seed = 1; seed <= count && !HasFailure(); ++seed) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            std::mt19937_64 random(seed);
            body(seed, random);
        }
    }
    CoilModel model() const { return {std::get<int>(GetParam()), std::get<TableForm>(GetParam())}; }
};

TEST_P(CoilsAgainstReference, voltage_driven_samples_agree_to_the_bit) {
    double peak = 0.0;
    for_seeds(25, [&](unsigned, std::mt19937_64& random) {
        CoilPair pair(model(), 1, random);
        configure_at_random(pair, random);
        run_samples(pair, random, 60, false);
        peak = std::max(peak, pair.peak_current());
    });
    EXPECT_GT(peak, 1.0);  // the machines carried current
}

TEST_P(CoilsAgainstReference, current_driven_samples_agree_to_the_bit) {
    for_seeds(20, [&](unsigned, std::mt19937_64& random) {
        CoilPair pair(model(), 2, random);
        configure_at_random(pair, random);
        run_samples(pair, random, 40, true);
    });
}

TEST_P(CoilsAgainstReference, calls_in_any_order_with_any_number_agree_to_the_bit) {
    for_seeds(40, [&](unsigned seed, std::mt19937_64& random) {
        CoilPair pair(model(), 1 + static_cast<int>(seed % 2), random);
        run_odd_calls(pair, random, 250);
    });
}

INSTANTIATE_TEST_SUITE_P(Machines, CoilsAgainstReference,
                         testing::Combine(testing::Values(stepper, solenoid, reluctance[0], reluctance[1],
                                                          reluctance[2]),
                                          testing::Values(TableForm::plausible, TableForm::random, TableForm::foreign)),
                         [](const testing::TestParamInfo<Case>& each) {
                             return std::to_string(std::get<int>(each.param)) + '_' +
                                    name_of(std::get<TableForm>(each.param));
                         });

}  // namespace
}  // namespace kzb_bench_test
