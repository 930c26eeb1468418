// Whole step sequences of the induction machine against the plain reference: every getter, bit for bit.
//
// Both run from the same file. Currents and voltages are a rotating system with noise, slip and step width change,
// samples are executed once or several times, and the time stands still now and then.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "im_pair.h"
#include "im_scenario.h"

namespace kzb_bench_test {
namespace {

class ImDrive {
  public:
    ImDrive(const ImScenario& scenario, ImPair& pair) : scenario_(scenario), pair_(pair), random_(42) {}

    void configure() {
        pair_.set_interpolation(scenario_.interpolation);
        if (scenario_.temperatures) {
            pair_.switch_temperatures_on();
            pair_.set_coil_temperature(393.15);
            pair_.set_secondary_coil_temperature(413.15);
        }
        if (scenario_.iron_loss) {
            pair_.set_ironloss(scenario_.old_ironloss);
        }
        if (scenario_.user_copper_loss) {
            pair_.set_user_copperloss();
        }
        if (scenario_.own_resistances) {
            pair_.set_resistance(1.37);
        }
        pair_.set_step_size(width);
        pair_.set_data();
        if (scenario_.own_resistances) {
            pair_.set_secondary_resistance(0.77);
        }
        if (scenario_.initial_values) {
            pair_.set_initial_current(1, 3.0);
            pair_.set_initial_current(3, -2.0);
            pair_.set_initial_time(5e-6);
            pair_.set_initial_displacement(7.0);
        }
        pair_.set_dc_voltage(311.0);
        pair_.set_carrier_frequency(9000.0);
    }

    void sample(int count) {
        double step = width;
        if (scenario_.irregular) {
            constexpr double factors[] = {1.0, 1.0, 1.0, 1.0, 2.0, 0.5, 1.5, 0.0};
            step *= factors[random_() % std::size(factors)];
        }
        time_ += count == 0 && !scenario_.initial_values ? 0.0 : step;
        pair_.set_time(time_);
        pair_.set_displacement(360.0 * turns_per_second * time_ + 0.01 * noise());
        if (scenario_.moving_slip) {
            pair_.set_slip_frequency(count % 37 == 0 ? 0.0 : 4.0 + 3.0 * std::sin(0.05 * count));
        }
        const double theta = 2.0 * M_PI * 52.0 * time_;
        const bool by_current = scenario_.calc_mode == 2;
        const double amplitude = by_current ? 0.1 * scenario_.amplitude : scenario_.amplitude;
        for (int k = 0; k < 3; ++k) {
            const double value = amplitude * std::cos(theta - 2.0 * M_PI / 3.0 * k) + 0.02 * amplitude * noise();
            if (by_current) {
                pair_.set_current(k + 1, value);
            } else {
                pair_.set_voltage(k + 1, value);
                pair_.set_signal(k + 1, count % 11 == 0 ? 0 : 1);
            }
        }
        const int times = scenario_.repeated ? 1 + static_cast<int>(random_() % 3) : 1;
        for (int e = 0; e < times; ++e) {
            by_current ? pair_.get_torque() : pair_.execute();
        }
        if (!by_current) {
            pair_.get_torque();
        }
    }

  private:
    double noise() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random_); }
    static constexpr double width = 5e-5;             // s
    static constexpr double turns_per_second = 24.0;  // mechanical; four poles
    const ImScenario& scenario_;
    ImPair& pair_;
    std::mt19937_64 random_;
    double time_ = 0.0;
};

class ImStepAgainstReference : public testing::TestWithParam<ImScenario> {};

TEST_P(ImStepAgainstReference, every_result_agrees_to_the_bit) {
    const ImScenario& scenario = GetParam();
    auto store = std::make_unique<kzb_reference::Store>();
    kzb_reference::make_sample_induction(scenario.machine, *store);
    ImPair pair(std::move(store), scenario.calc_mode, scenario.torque_type);
    ASSERT_EQ(pair.status(), 0);
    ImDrive drive(scenario, pair);
    drive.configure();
    for (int s = 0; s < scenario.samples && !HasFailure(); ++s) {
        drive.sample(s);
        pair.expect_equal_results("sample " + std::to_string(s));
        pair.update();
    }
    // the run was one of a machine that carries current
    EXPECT_GT(pair.peak_current(), 5.0);
    EXPECT_LT(pair.peak_current(), 1e4);
}

INSTANTIATE_TEST_SUITE_P(Im, ImStepAgainstReference, testing::ValuesIn(im_scenarios()),
                         [](const testing::TestParamInfo<ImScenario>& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace kzb_bench_test
