// Phases switched by the rotor angle and step sequences, against what their definitions say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kzb/angle_switching.h"
#include "kzb/step_sequence.h"

namespace kzb::tool {
namespace {

using testing::ElementsAre;

SwitchingData switching_data() {
    SwitchingData d;
    d.voltage = Waveform(Constant{100.0});
    d.turn_on = 30.0;
    d.turn_off = 45.0;
    d.period = 60.0;
    return d;
}

Interval angles(double from, double to) {
    return {0.0, 1e-3, from, to};
}

TEST(AngleSwitching, part_within_turn_on_is_that_of_the_angles_passed) {
    const SwitchingData d = switching_data();
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 0.0, 30.0), 0.0);
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 30.0, 45.0), 1.0);
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 25.0, 35.0), 0.5);
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 40.0, 50.0), 0.5);
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 50.0, 40.0), 0.5);    // backwards
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 0.0, 600.0), 0.25);   // 15 of 60 degrees, ten times over
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, -30.0, -15.0), 1.0);  // a period earlier
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 44.0, 44.0), 1.0);    // at standstill
    EXPECT_DOUBLE_EQ(AngleSwitching::part_on(d, 45.0, 45.0), 0.0);    // turn-off does not belong to it
}

TEST(AngleSwitching, phases_take_their_turn_ahead_by_a_part_of_the_period) {
    AngleSwitching supply(switching_data(), 4);  // own angles 15 degrees apart
    supply.begin(angles(30.0, 31.0));
    EXPECT_EQ(supply.input(0).voltage, 100.0);
    EXPECT_TRUE(supply.input(0).connected);
    for (std::size_t k = 1; k < 4; ++k) {
        EXPECT_EQ(supply.input(k).voltage, 0.0);
        EXPECT_FALSE(supply.input(k).connected);
    }
    supply.begin(angles(15.0, 16.0));  // phase 1 at 30
    EXPECT_FALSE(supply.input(0).connected);
    EXPECT_EQ(supply.input(1).voltage, 100.0);
}

TEST(AngleSwitching, current_that_flows_after_turn_off_sees_the_negative_voltage_until_it_is_gone) {
    AngleSwitching supply(switching_data(), 3);
    supply.begin(angles(44.0, 46.0));  // half on, half off: the mean is 0
    EXPECT_DOUBLE_EQ(supply.input(0).voltage, 0.0);
    EXPECT_TRUE(supply.input(0).connected);
    EXPECT_FALSE(supply.answer({2.0, 0.0, 0.0}));
    supply.accept({2.0, 0.0, 0.0});
    supply.begin(angles(46.0, 47.0));
    EXPECT_EQ(supply.input(0).voltage, -100.0);
    EXPECT_TRUE(supply.answer({-0.5, 0.0, 0.0}));  // the diodes block
    EXPECT_FALSE(supply.input(0).connected);
    EXPECT_EQ(supply.input(0).voltage, 0.0);
    EXPECT_FALSE(supply.answer({0.0, 0.0, 0.0}));
    supply.accept({0.0, 0.0, 0.0});
    supply.begin(angles(47.0, 48.0));
    EXPECT_FALSE(supply.input(0).connected);
}

TEST(AngleSwitching, freewheel_holds_the_phase_at_zero_volts) {
    SwitchingData d = switching_data();
    d.freewheel = true;
    AngleSwitching supply(d, 3);
    supply.accept({2.0, 0.0, 0.0});
    supply.begin(angles(44.0, 44.0));
    supply.accept({2.0, 0.0, 0.0});
    supply.begin(angles(46.0, 47.0));
    EXPECT_EQ(supply.input(0).voltage, 0.0);
}

TEST(AngleSwitching, limit_switches_off_above_it_and_on_below_its_band) {
    SwitchingData d = switching_data();
    d.current_limit = 10.0;
    d.current_band = 2.0;
    AngleSwitching supply(d, 3);
    const auto voltage_after = [&supply](double current) {
        supply.begin(angles(32.0, 32.0));
        supply.accept({current, 0.0, 0.0});
        supply.begin(angles(32.0, 32.0));
        return supply.input(0).voltage;
    };
    EXPECT_EQ(voltage_after(9.9), 100.0);
    EXPECT_EQ(voltage_after(10.0), 0.0);
    EXPECT_EQ(voltage_after(8.1), 0.0);
    EXPECT_EQ(voltage_after(8.0), 100.0);
    EXPECT_EQ(voltage_after(9.9), 100.0);
}

// Signs of the currents of A and B over the steps of a mode.
std::vector<std::pair<int, int>> signs(StepMode mode, int count, bool backward = false) {
    StepData d;
    d.mode = mode;
    d.backward = backward;
    std::vector<std::pair<int, int>> result;
    for (int n = 0; n < count; ++n) {
        result.emplace_back(StepSequence::sign_of(d, 0, n), StepSequence::sign_of(d, 1, n));
    }
    return result;
}

TEST(StepSequence, modes_turn_the_field_in_equal_steps) {
    using P = std::pair<int, int>;
    EXPECT_THAT(signs(StepMode::full, 5), ElementsAre(P{1, 1}, P{-1, 1}, P{-1, -1}, P{1, -1}, P{1, 1}));
    EXPECT_THAT(signs(StepMode::wave, 5), ElementsAre(P{1, 0}, P{0, 1}, P{-1, 0}, P{0, -1}, P{1, 0}));
    EXPECT_THAT(signs(StepMode::half, 9),
                ElementsAre(P{1, 0}, P{1, 1}, P{0, 1}, P{-1, 1}, P{-1, 0}, P{-1, -1}, P{0, -1}, P{1, -1}, P{1, 0}));
    EXPECT_THAT(signs(StepMode::full, 3, true), ElementsAre(P{1, 1}, P{1, -1}, P{-1, -1}));
}

StepData steps(bool bipolar, bool open) {
    StepData d;
    d.mode = StepMode::wave;
    d.voltage = Waveform(Constant{12.0});
    d.rate = 100.0;
    d.start = 0.0;
    d.bipolar = bipolar;
    d.off_open = open;
    return d;
}

std::vector<double> voltages(StepSequence& sequence, double from, double to) {
    sequence.begin({from, to, 0.0, 0.0});
    std::vector<double> result;
    for (std::size_t k = 0; k < 4; ++k) {
        result.push_back(sequence.input(k).voltage);
    }
    return result;
}

TEST(StepSequence, unipolar_coils_have_the_voltage_one_at_a_time_and_are_open_else) {
    StepSequence sequence(steps(false, true));
    EXPECT_THAT(voltages(sequence, 0.001, 0.002), ElementsAre(12.0, 0.0, 0.0, 0.0));
    EXPECT_TRUE(sequence.input(0).connected);
    EXPECT_FALSE(sequence.input(1).connected);
    EXPECT_THAT(voltages(sequence, 0.011, 0.012), ElementsAre(0.0, 0.0, 12.0, 0.0));
    EXPECT_THAT(voltages(sequence, 0.021, 0.022), ElementsAre(0.0, 12.0, 0.0, 0.0));
    EXPECT_THAT(voltages(sequence, 0.031, 0.032), ElementsAre(0.0, 0.0, 0.0, 12.0));
}

TEST(StepSequence, bipolar_coils_of_a_phase_are_in_series) {
    StepSequence sequence(steps(true, false));
    EXPECT_THAT(voltages(sequence, 0.001, 0.002), ElementsAre(6.0, -6.0, 0.0, 0.0));
    EXPECT_TRUE(sequence.input(2).connected);
    EXPECT_THAT(voltages(sequence, 0.021, 0.022), ElementsAre(-6.0, 6.0, 0.0, 0.0));
}

TEST(StepSequence, step_within_an_interval_counts_by_its_part) {
    StepSequence sequence(steps(false, false));
    // The step at 10 ms leaves three quarters of the interval to the state before it.
    const std::vector<double> v = voltages(sequence, 0.007, 0.011);
    EXPECT_NEAR(v[0], 9.0, 1e-9);
    EXPECT_NEAR(v[2], 3.0, 1e-9);
}

TEST(StepSequence, count_ends_the_steps_and_they_begin_after_the_start) {
    StepData d = steps(false, true);
    d.count = 2;
    d.start = 0.5;
    EXPECT_EQ(StepSequence::steps_at(d, 0.0), 0.0);
    EXPECT_EQ(StepSequence::steps_at(d, 0.505), 0.0);
    EXPECT_EQ(StepSequence::steps_at(d, 0.51), 1.0);
    EXPECT_EQ(StepSequence::steps_at(d, 9.0), 2.0);
}

}  // namespace
}  // namespace kzb::tool
