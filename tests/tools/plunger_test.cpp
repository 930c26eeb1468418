// A mover with a spring and stops, against the closed form of the oscillator.
#include <gtest/gtest.h>

#include <cmath>

#include "kzb/mechanics.h"

namespace kzb::tool {
namespace {

MotionData plunger() {
    MotionData data;
    data.kind = Motion::free;
    data.free.inertia = 0.02;
    data.free.spring = 50.0;  // omega 50 1/s
    data.free.spring_position = 0.003;
    data.start = 0.004;
    return data;
}

double position_after(const MotionData& data, double time, double h, double force = 0.0) {
    Mechanics mechanics(data, true, 0.0);
    const long steps = std::lround(time / h);
    for (long n = 1; n <= steps; ++n) {
        mechanics.advance(static_cast<double>(n) * h, force);
    }
    return mechanics.displacement();
}

TEST(Plunger, spring_makes_an_oscillator_without_loss) {
    // x = 3 mm + 1 mm cos(50 t); the mean over a step is the trapezoidal rule: its phase lags by (omega h)^2 / 12.
    const double h = 1e-4;
    for (const double t : {0.01, 0.05, 0.5}) {
        const double lag = 50.0 * t * std::pow(50.0 * h, 2) / 12.0;
        EXPECT_NEAR(position_after(plunger(), t, h), 0.003 + 0.001 * std::cos(50.0 * t), 0.001 * (lag + 1e-6));
    }
}

TEST(Plunger, steady_force_moves_the_rest_position_by_force_over_stiffness) {
    MotionData data = plunger();
    data.free.viscous = 1.0;
    EXPECT_NEAR(position_after(data, 2.0, 1e-4, -0.05), 0.003 - 0.05 / 50.0, 1e-9);
}

TEST(Plunger, stop_turns_the_speed_back_by_its_restitution) {
    MotionData data;
    data.kind = Motion::free;
    data.free.inertia = 1.0;
    data.free.lower = 0.0;
    data.free.restitution = 0.5;
    data.start = 0.105;
    data.start_speed = -1.0;
    Mechanics mechanics(data, true, 0.0);
    for (int n = 1; n <= 11; ++n) {
        mechanics.advance(0.01 * n, 0.0);
    }
    EXPECT_EQ(mechanics.displacement(), 0.0);
    EXPECT_DOUBLE_EQ(mechanics.speed(), 0.5);
    mechanics.advance(0.12, 0.0);
    EXPECT_NEAR(mechanics.displacement(), 0.005, 1e-15);
}

TEST(Plunger, stop_without_restitution_takes_the_speed) {
    MotionData data = plunger();
    data.free.upper = 0.0045;
    EXPECT_EQ(position_after(data, 0.1, 1e-4, 10.0), 0.0045);
}

}  // namespace
}  // namespace kzb::tool
