// The change of frame against the rotation matrix written out.
#include "store/transform/frame.h"

#include <gtest/gtest.h>

#include "synthetic_store.h"

namespace {

using synthetic::cosd;
using synthetic::sind;

class FrameAtAngle : public testing::TestWithParam<double> {};

// Rows of the power-invariant matrix: sqrt(2/3) cos(t - 120 n), -sqrt(2/3) sin(t - 120 n), sqrt(1/3).
TEST_P(FrameAtAngle, dq0_is_the_rotation_matrix_times_the_phases) {
    const double t = GetParam();
    const double x[] = {1.5, -0.75, 4.0};
    double expected[3] = {};
    for (int n = 0; n < 3; ++n) {
        expected[0] += std::sqrt(2.0 / 3.0) * cosd(t - 120 * n) * x[n];
        expected[1] -= std::sqrt(2.0 / 3.0) * sind(t - 120 * n) * x[n];
        expected[2] += x[n] / std::sqrt(3.0);
    }
    const kzb::Dq0 y = kzb::Frame(t).dq0({x[0], x[1], x[2]});
    EXPECT_NEAR(y.d, expected[0], 1e-13);
    EXPECT_NEAR(y.q, expected[1], 1e-13);
    EXPECT_NEAR(y.zero, expected[2], 1e-13);
}

TEST_P(FrameAtAngle, there_and_back_is_the_identity) {
    const kzb::Frame frame(GetParam());
    const kzb::Uvw x{1.5, -0.75, 4.0};
    const kzb::Uvw y = frame.uvw(frame.dq0(x));
    EXPECT_NEAR(y.u, x.u, 1e-13);
    EXPECT_NEAR(y.v, x.v, 1e-13);
    EXPECT_NEAR(y.w, x.w, 1e-13);
}

// L = C^T diag(Ld, Lq, L0) C has d-axis inductance Ld, with C the orthogonal matrix above.
TEST_P(FrameAtAngle, d_inductance_of_a_matrix_made_from_ld_lq_l0_is_ld) {
    const double t = GetParam();
    double L[9];
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            L[3 * r + c] =
                2.0 / 3.0 *
                    (0.3 * cosd(t - 120 * r) * cosd(t - 120 * c) + 0.7 * sind(t - 120 * r) * sind(t - 120 * c)) +
                0.1 / 3.0;
        }
    }
    EXPECT_NEAR(kzb::Frame(t).d_inductance(L), 0.3, 1e-14);
}

INSTANTIATE_TEST_SUITE_P(angles, FrameAtAngle, testing::Values(0.0, 17.0, 90.0, 123.4, 180.0, 271.5, 359.0, -33.0));

TEST(frame, at_angle_zero_phase_u_alone_is_d_and_zero) {
    const kzb::Dq0 y = kzb::Frame(0.0).dq0({1.0, 0.0, 0.0});
    EXPECT_EQ(y.d, std::sqrt(2.0 / 3.0));
    EXPECT_EQ(y.q, 0.0);
    EXPECT_EQ(y.zero, std::sqrt(1.0 / 3.0));
}

TEST(frame, electrical_angle_halves_the_pole_count_in_doubles) {
    KZB_STORE store;
    synthetic::fill_control(store, 10000, 5, 30.0);
    EXPECT_EQ(kzb::ElectricalAngle(store)(10.0), 10.0 * 2.5 + 30.0);
}

}  // namespace
