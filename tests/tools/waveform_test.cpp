// Waveforms against their closed forms.
#include "kzb/waveform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace kzb::tool {
namespace {

constexpr double ulp = std::numeric_limits<double>::epsilon();

TEST(Waveform, sine_starts_at_its_phase_and_repeats_after_a_period) {
    const Sine sine{2.0, 50.0, 30.0, 1.0};
    EXPECT_NEAR(sine.at(0.0), 1.0 + 2.0 * 0.5, 4 * ulp);         // sin 30 degrees = 1/2
    EXPECT_NEAR(sine.at(0.005), 1.0 + std::sqrt(3.0), 8 * ulp);  // a quarter later: 2 cos 30 degrees
    EXPECT_NEAR(sine.at(0.02), sine.at(0.0), 16 * ulp);
}

TEST(Waveform, shifting_delays_a_sine_and_leaves_a_constant) {
    const Waveform sine(Sine{1.0, 1.0, 0.0, 0.0});
    EXPECT_NEAR(sine.shifted(120.0).at(1.0 / 3.0), 0.0, 8 * ulp);  // zero crossing a third of a period later
    EXPECT_EQ(Waveform(Constant{3.0}).shifted(120.0).at(0.2), 3.0);
}

TEST(Waveform, pulses_stand_in_the_middle_of_the_carrier_period) {
    Pwm pwm;
    pwm.low = -1.0;
    pwm.high = 5.0;
    pwm.carrier_frequency = 10.0;  // period 0.1 s
    pwm.duty = 0.4;                // on from 0.03 s to 0.07 s
    EXPECT_EQ(pwm.at(0.02), -1.0);
    EXPECT_EQ(pwm.at(0.05), 5.0);
    EXPECT_EQ(pwm.at(0.08), -1.0);
    EXPECT_EQ(pwm.at(0.15), 5.0);
}

TEST(Waveform, the_mean_over_whole_periods_is_that_of_the_duty) {
    Pwm pwm;
    pwm.low = 0.0;
    pwm.high = 24.0;
    pwm.carrier_frequency = 1000.0;
    pwm.duty = 0.3;
    // Sums of ten pulse widths: each adds rounding of the position, about 1e-15 of a period.
    EXPECT_NEAR(pwm.mean_between(0.0, 0.01), 0.3 * 24.0, 1e-11);
    EXPECT_NEAR(pwm.mean_between(0.00025, 0.00725), 0.3 * 24.0, 1e-11);
}

TEST(Waveform, the_mean_of_a_part_of_a_period_is_the_part_that_is_on) {
    Pwm pwm;
    pwm.high = 10.0;
    pwm.carrier_frequency = 1.0;
    pwm.duty = 0.5;                                          // on from 0.25 to 0.75
    EXPECT_NEAR(pwm.mean_between(0.0, 0.5), 5.0, 16 * ulp);  // half of the half
    EXPECT_NEAR(pwm.mean_between(0.3, 0.6), 10.0, 16 * ulp);
    EXPECT_NEAR(pwm.mean_between(0.0, 0.2), 0.0, 0.0);
}

TEST(Waveform, duty_follows_the_modulation_at_the_start_of_the_period_and_is_clamped) {
    Pwm pwm;
    pwm.high = 1.0;
    pwm.carrier_frequency = 100.0;
    pwm.modulation = Sine{0.8, 25.0, 0.0, 0.0};  // four carrier periods per modulation period
    EXPECT_NEAR(pwm.duty_of(0.0), 0.5, 4 * ulp);
    EXPECT_NEAR(pwm.duty_of(1.0), 0.9, 4 * ulp);  // sin 90 degrees
    EXPECT_NEAR(pwm.duty_of(3.0), 0.1, 4 * ulp);  // sin 270 degrees
    pwm.modulation.amplitude = 4.0;
    EXPECT_EQ(pwm.duty_of(1.0), 1.0);
    EXPECT_EQ(pwm.duty_of(3.0), 0.0);
}

TEST(Waveform, points_are_joined_by_straight_lines_and_the_ends_hold) {
    Points points;
    points.times = std::make_shared<const std::vector<double>>(std::vector<double>{1.0, 2.0, 4.0});
    points.values = std::make_shared<const std::vector<double>>(std::vector<double>{10.0, 20.0, 0.0});
    EXPECT_EQ(points.at(0.0), 10.0);
    EXPECT_EQ(points.at(1.5), 15.0);
    EXPECT_EQ(points.at(2.0), 20.0);
    EXPECT_EQ(points.at(3.0), 10.0);
    EXPECT_EQ(points.at(9.0), 0.0);
    points.repeat = true;  // period 3 s
    EXPECT_EQ(points.at(4.5), 15.0);
    EXPECT_EQ(points.at(-1.5), 15.0);
}

TEST(Waveform, a_single_point_is_a_constant) {
    Points points;
    points.times = std::make_shared<const std::vector<double>>(std::vector<double>{1.0});
    points.values = std::make_shared<const std::vector<double>>(std::vector<double>{7.0});
    points.repeat = true;
    EXPECT_EQ(points.at(-5.0), 7.0);
    EXPECT_EQ(points.at(5.0), 7.0);
}

}  // namespace
}  // namespace kzb::tool
