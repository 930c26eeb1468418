// Whole step sequences of the permanent-magnet machine against the plain reference: every getter, bit for bit.
//
// Both run from the same file. Voltages are a rotating system with noise, the step width changes, samples are executed
// once or several times, phases open and close, and the time stands still now and then.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "pmsm_pair.h"
#include "pmsm_scenario.h"

namespace kzb_bench_test {
namespace {

// Time, position and terminal voltages of a run.
class Drive {
  public:
    explicit Drive(const Scenario& scenario) : scenario_(scenario), random_(42) {}

    void next() {
        double width = 5e-5;
        if (scenario_.irregular) {
            constexpr double factors[] = {1.0, 1.0, 1.0, 1.0, 2.0, 0.5, 1.5, 0.0};
            width *= factors[random_() % std::size(factors)];
        }
        time += count_ == 0 && !scenario_.initial_values ? 0.0 : width;
        const double reach = scenario_.machine.motor_type == 10000 ? 90.0 : 0.064;
        displacement = -0.3 * reach + turns_per_second * time * reach;
        const double theta = 2.0 * M_PI * turns_per_second * time;
        for (int k = 0; k < 3; ++k) {
            voltage[k] = scenario_.voltage * std::cos(theta + 1.3 - 2.0 * M_PI / 3.0 * k) + noise() * 5.0;
            current[k] = 90.0 * std::cos(theta + 1.9 - 2.0 * M_PI / 3.0 * k) + noise();
            signal[k] = 1;
        }
        if (scenario_.open_phases) {
            constexpr int patterns[][3] = {{1, 1, 1}, {0, 1, 1}, {1, 0, 1}, {1, 1, 0}, {2, 1, 1}, {0, 0, 1}, {1, 1, 1}};
            std::copy_n(patterns[static_cast<std::size_t>(count_ / 20) % std::size(patterns)], 3, signal);
        }
        executions = scenario_.repeated ? 1 + static_cast<int>(random_() % 3) : 1;
        ++count_;
    }

    double time = 0.0;
    double displacement = 0.0;
    double voltage[3] = {};
    double current[3] = {};
    int signal[3] = {1, 1, 1};
    int executions = 1;

  private:
    double noise() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random_); }
    static constexpr double turns_per_second = 110.0;  // electrical
    const Scenario& scenario_;
    std::mt19937_64 random_;
    int count_ = 0;
};

class StepAgainstReference : public testing::TestWithParam<Scenario> {};

TEST_P(StepAgainstReference, every_result_agrees_to_the_bit) {
    const Scenario& scenario = GetParam();
    Pair pair(scenario);
    ASSERT_EQ(pair.status(), 0);
    pair.configure();
    Drive drive(scenario);
    for (int s = 0; s < scenario.samples && !HasFailure(); ++s) {
        drive.next();
        if (scenario.calc_mode == 1) {
            pair.sample(drive.time, drive.displacement, drive.voltage, drive.signal, drive.executions);
        } else {
            pair.sample_with_currents(drive.time, drive.displacement, drive.current);
        }
        pair.expect_equal_results(s);
        pair.update();
        if (s == 0 || s == 10 || s + 1 == scenario.samples) {
            pair.expect_equal_statistics();
        }
    }
    // the run was one of a machine that carries current
    EXPECT_GT(pair.peak_current(), 10.0);
    EXPECT_LT(pair.peak_current(), 1e5);
}

INSTANTIATE_TEST_SUITE_P(Pmsm, StepAgainstReference, testing::ValuesIn(scenarios()),
                         [](const testing::TestParamInfo<Scenario>& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace kzb_bench_test
