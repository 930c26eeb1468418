#include "models/park.h"

#include <gtest/gtest.h>

#include <cmath>

#include "models/history.h"
#include "models/loss_filter.h"

namespace kzb_test::park_test {
namespace {

using kzb::PhaseAngles;
using kzb::Phases;

TEST(park, constants_are_those_of_the_c_library) {
    EXPECT_EQ(kzb::pi, std::atan(1.0) * 4.0);
    EXPECT_EQ(kzb::two_thirds_turn, std::atan(1.0) * 4.0 * 2.0 / 3.0);
    EXPECT_EQ(kzb::two_thirds_turn, 2.0943951023931953);
    EXPECT_EQ(kzb::sqrt_two_thirds, std::sqrt(2.0 / 3.0));
    EXPECT_EQ(kzb::sqrt_three_halves, std::sqrt(1.5));
    EXPECT_EQ(kzb::sqrt_half, std::sqrt(1.0 / 2.0));
    EXPECT_EQ(kzb::sqrt_three, std::sqrt(3.0));
}

// Phases of a current of d = -A sin(beta) sqrt(1.5), q = A cos(beta) sqrt(1.5): u = -A sin(th + beta) and so on.
Phases balanced(double amplitude, double beta, double th) {
    Phases x;
    for (int k = 0; k < 3; ++k) {
        x[static_cast<std::size_t>(k)] = -amplitude * std::sin(th + beta - k * 2.0 * M_PI / 3.0);
    }
    return x;
}

TEST(park, balanced_phases_give_amplitude_and_phase) {
    for (double beta = -175.0; beta < 180.0; beta += 10.0) {
        for (const double th : {0.0, 0.7, -2.1, 5.9}) {
            const Phases x = balanced(12.0, beta * M_PI / 180.0, th);
            const kzb::Dq0 dq0 = kzb::park(x, PhaseAngles(th));
            EXPECT_NEAR(kzb::amplitude_of(dq0[0], dq0[1]), 12.0, 1e-13);
            EXPECT_NEAR(kzb::phase_of(dq0[0], dq0[1]), beta, 1e-12);
            EXPECT_NEAR(dq0[2], 0.0, 1e-14);
        }
    }
}

TEST(park, transform_keeps_power) {
    const Phases x = {3.0, -1.0, 5.0};
    const kzb::Dq0 y = kzb::park(x, PhaseAngles(0.3));
    EXPECT_NEAR(y[0] * y[0] + y[1] * y[1] + y[2] * y[2], 35.0, 1e-13);
}

TEST(park, inverse_with_zero_returns_the_phases) {
    const Phases x = {3.0, -1.0, 5.0};
    const PhaseAngles at(1.1);
    const Phases back = kzb::inverse_park(kzb::park(x, at), at);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(back[k], x[k], 1e-14);
    }
}

TEST(park, inverse_of_two_outputs_drops_the_zero_sequence) {
    const Phases x = {3.0, -1.0, 5.0};  // mean 7/3
    const PhaseAngles at(-0.4);
    const Phases back = kzb::inverse_park_dq(kzb::park_d(x, at), kzb::park_q(x, at), at);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(back[k], x[k] - 7.0 / 3.0, 1e-14);
    }
}

TEST(park, phase_of_the_axes) {
    EXPECT_EQ(kzb::phase_of(0.0, 1.0), 0.0);
    EXPECT_EQ(kzb::phase_of(-3.0, 0.0), 0.0);  // no q current: phase 0
    EXPECT_NEAR(kzb::phase_of(-1.0, 1.0), 45.0, 1e-13);
    EXPECT_NEAR(kzb::phase_of(1.0, 1.0), -45.0, 1e-13);
    EXPECT_NEAR(kzb::phase_of(-1.0, -1.0), 135.0, 1e-13);
    EXPECT_NEAR(kzb::phase_of(1.0, -1.0), -135.0, 1e-13);
    EXPECT_EQ(kzb::phase_of(0.0, -1.0), -180.0);  // d 0 counts as not negative
}

TEST(history, values_move_one_place) {
    double previous = 1.0;
    double older = 2.0;
    kzb::shift_history(0.0, previous, older);
    EXPECT_EQ(previous, 0.0);
    EXPECT_EQ(older, 1.0);
}

// f = 100 Hz * 0.5 * omega / pi = 100 at omega = 2 pi; c = 1 / 80 * 0.8 = 0.01; dt = 0.01: y = (y + x) / 2.
TEST(loss_filter, first_value_then_a_lag) {
    kzb::LossFilter filter;
    EXPECT_FALSE(filter.started());
    EXPECT_EQ(filter.step(99.0, 4.0, 0.5, 2.0 * M_PI), 4.0);
    EXPECT_TRUE(filter.started());
    EXPECT_NEAR(filter.step(8.0, 99.0, 0.51, 2.0 * M_PI), 6.0, 1e-12);
    EXPECT_NEAR(filter.step(8.0, 99.0, 0.52, 2.0 * M_PI), 7.0, 1e-12);
}

TEST(loss_filter, at_time_zero_it_has_not_started) {
    kzb::LossFilter filter;
    EXPECT_EQ(filter.step(1.0, 4.0, 0.0, 1.0), 4.0);
    EXPECT_FALSE(filter.started());
    EXPECT_EQ(filter.step(1.0, 5.0, 0.1, 1.0), 5.0);
}

}  // namespace
}  // namespace kzb_test::park_test
