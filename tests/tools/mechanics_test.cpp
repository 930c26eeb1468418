// Motion against closed forms: uniform, uniformly accelerated, exponentially and linearly slowing.
#include "kzb/mechanics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace kzb::tool {
namespace {

constexpr double rpm_per_rad_s = 30.0 / std::numbers::pi;
constexpr double deg_per_rad = 180.0 / std::numbers::pi;

// Advances in `steps` steps of `h` under a constant torque.
Mechanics after(const MotionData& data, bool linear, int steps, double h, double torque) {
    Mechanics mechanics(data, linear, 0.0);
    for (int k = 1; k <= steps; ++k) {
        mechanics.advance(k * h, torque);
    }
    return mechanics;
}

MotionData free_motion(double inertia, double start_speed) {
    MotionData data;
    data.kind = Motion::free;
    data.free.inertia = inertia;
    data.start_speed = start_speed;
    return data;
}

TEST(Mechanics, locked_stays_at_its_start) {
    MotionData data;
    data.start = 12.5;
    const Mechanics mechanics = after(data, false, 10, 0.1, 100.0);
    EXPECT_EQ(mechanics.displacement(), 12.5);
    EXPECT_EQ(mechanics.speed(), 0.0);
}

TEST(Mechanics, one_rpm_is_six_degrees_per_second_and_no_error_gathers) {
    MotionData data;
    data.kind = Motion::speed;
    data.speed = Waveform(Constant{1500.0});
    data.start = 10.0;
    // One product per sample: 10 + 6 * 1500 * 100 s, whatever the number of steps.
    EXPECT_NEAR(after(data, false, 100000, 1e-3, 0.0).displacement(), 10.0 + 9000.0 * 100.0, 1e-9);
}

TEST(Mechanics, a_ramp_of_speed_integrates_to_half_its_end_times_time) {
    MotionData data;
    data.kind = Motion::speed;
    Points ramp;
    ramp.times = std::make_shared<const std::vector<double>>(std::vector<double>{0.0, 2.0});
    ramp.values = std::make_shared<const std::vector<double>>(std::vector<double>{0.0, 4.0});
    data.speed = Waveform(ramp);
    const Mechanics mechanics = after(data, true, 200, 0.01, 0.0);
    EXPECT_NEAR(mechanics.displacement(), 4.0, 1e-12);  // metres; the trapezoid rule is exact on a line
    EXPECT_NEAR(mechanics.speed(), 4.0, 1e-12);
}

TEST(Mechanics, given_positions_yield_their_slope_as_speed) {
    MotionData data;
    data.kind = Motion::positions;
    Points line;
    line.times = std::make_shared<const std::vector<double>>(std::vector<double>{0.0, 1.0});
    line.values = std::make_shared<const std::vector<double>>(std::vector<double>{0.0, 360.0});
    data.position = Waveform(line);
    const Mechanics mechanics = after(data, false, 5, 0.1, 0.0);
    EXPECT_NEAR(mechanics.displacement(), 180.0, 1e-12);
    EXPECT_NEAR(mechanics.speed(), 60.0, 1e-9);  // one turn per second
}

TEST(Mechanics, constant_torque_accelerates_uniformly) {
    // omega = T t / J = 2 * 0.5 / 0.1 = 10 rad/s, theta = T t^2 / (2 J) = 2.5 rad; both exact for this scheme.
    const Mechanics mechanics = after(free_motion(0.1, 0.0), false, 50, 0.01, 2.0);
    EXPECT_NEAR(mechanics.speed(), 10.0 * rpm_per_rad_s, 1e-10);
    EXPECT_NEAR(mechanics.displacement(), 2.5 * deg_per_rad, 1e-10);
}

TEST(Mechanics, viscous_friction_slows_exponentially) {
    MotionData data = free_motion(0.02, 1000.0);
    data.free.viscous = 0.1;  // time constant J / B = 0.2 s
    constexpr double h = 1e-4;
    const Mechanics mechanics = after(data, false, 2000, h, 0.0);
    // The implicit step (1 + h/tau)^-n differs from exp(-n h/tau) by about n (h/tau)^2 / 2 = 2.5e-4 of the value.
    const double exact = 1000.0 * std::exp(-0.2 / 0.2);
    EXPECT_NEAR(mechanics.speed(), exact, exact * 3e-4);
    EXPECT_NEAR(mechanics.speed(), 1000.0 * std::pow(1.0 + h / 0.2, -2000.0), 1e-8);
}

TEST(Mechanics, coulomb_friction_slows_linearly_and_then_holds) {
    MotionData data = free_motion(0.05, 100.0 * rpm_per_rad_s);
    data.free.coulomb = 10.0;  // 200 rad/s^2: at rest after 0.5 s and theta = omega^2 / (2 a) = 25 rad
    EXPECT_NEAR(after(data, false, 250, 1e-3, 0.0).speed(), 50.0 * rpm_per_rad_s, 1e-9);
    const Mechanics stopped = after(data, false, 800, 1e-3, 0.0);
    EXPECT_EQ(stopped.speed(), 0.0);
    EXPECT_NEAR(stopped.displacement(), 25.0 * deg_per_rad, 1e-8);
    // A torque below the friction does not move it, in either direction.
    data.start_speed = 0.0;
    EXPECT_EQ(after(data, false, 100, 1e-3, 9.9).displacement(), 0.0);
    EXPECT_EQ(after(data, false, 100, 1e-3, -9.9).displacement(), 0.0);
}

TEST(Mechanics, the_load_acts_against_positive_motion) {
    MotionData data = free_motion(2.0, 0.0);
    data.free.load = Waveform(Constant{3.0});
    // (1 - 3) / 2 = -1 m/s^2 for 1 s
    EXPECT_NEAR(after(data, true, 1000, 1e-3, 1.0).speed(), -1.0, 1e-12);
}

TEST(Mechanics, a_stop_takes_the_speed) {
    MotionData data = free_motion(1.0, 1.0);
    data.free.upper = 0.25;
    const Mechanics mechanics = after(data, true, 1000, 1e-3, 0.0);
    EXPECT_EQ(mechanics.displacement(), 0.25);
    EXPECT_EQ(mechanics.speed(), 0.0);
}

}  // namespace
}  // namespace kzb::tool
