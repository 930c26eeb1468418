// LdLq tables of a synthetic machine with known d and q inductance.
//
//   psi_d = psi_m + L_d i_d,  psi_q = L_q i_q,  i_d = -sqrt(3/2) I sin(beta),  i_q = sqrt(3/2) I cos(beta)
#include <gtest/gtest.h>

#include "store/transform/transforms.h"
#include "synthetic_store.h"

namespace {

using namespace synthetic;

class LdLq : public testing::Test {
  protected:
    static constexpr double ld = 0.003;
    static constexpr double psi_m = 0.2;
    // Depends on the amplitude and the current phase (deg), so that a mixed-up axis shows.
    static double lq(double amplitude, double beta) { return 0.005 - 0.0001 * amplitude + 0.0002 * sind(beta); }
    static double angle(double position) { return position * 3 + 20.0; }  // 6 poles, zero of the angle 20 degrees

    static double flux(const Point& x) {
        const double d = psi_m - ld * std::sqrt(1.5) * x[0] * sind(x[1]);
        const double q = lq(x[0], x[1]) * std::sqrt(1.5) * x[0] * cosd(x[1]);
        const double t = angle(x[2]) - 120 * x[3];
        return std::sqrt(2.0 / 3.0) * (d * cosd(t) - q * sind(t));
    }
    static double inductance(const Point& x) {
        const int row = static_cast<int>(x[3]) / 3;
        const int column = static_cast<int>(x[3]) % 3;
        const double t = angle(x[2]);
        const double l_d = ld * (1 + 0.1 * x[0] + 0.01 * x[1]);
        return 2.0 / 3.0 *
               (l_d * cosd(t - 120 * row) * cosd(t - 120 * column) +
                0.01 * sind(t - 120 * row) * sind(t - 120 * column));
    }

    void build(const std::vector<double>& betas) {
        fill_control(store, 10000, 6, 20.0);
        make_table(store, "current_flux", "flux", {amplitudes, betas, positions, {0, 1, 2}}, {0, 1, 1, 0}, flux);
        make_table(store, "harmonic_inductance", "inductance", {{0, 5}, {0, 120, 240, 360}, positions, range(0, 1, 8)},
                   {0, 1, 1, 0}, inductance);
        make_table(store, "harmonic_torque", "torque_ibeta", {{0, 180, 360}, {0, 10, 20, 30}, {7, 8}}, {1, 1, 0},
                   [](const Point& x) { return x[0] + x[1] * x[2]; });
    }

    KZB_STORE store;
    const std::vector<double> amplitudes = {0, 2, 4};
    const std::vector<double> positions = range(0, 15, 120);
};

TEST_F(LdLq, inductances_are_those_the_machine_was_made_of) {
    const std::vector<double> betas = range(0, 10, 360);
    build(betas);
    EXPECT_EQ(kzb::make_LdLq(store), 1);
    EXPECT_EQ(store.ldlq_made, 1);
    EXPECT_EQ(store.motor, "PMSM");
    EXPECT_EQ(store.application, "Harmonic");

    EXPECT_EQ(nodes(store, "dq_inductance", "d_inductance", 1), (std::vector<double>{0, 120, 240, 360}));
    EXPECT_EQ(nodes(store, "dq_inductance", "d_inductance", 2), (std::vector<double>{0, 5}));
    EXPECT_EQ(cyclic_flags(store, "dq_inductance", "d_inductance"), (std::vector<int>{1, 0}));
    EXPECT_NEAR(value(store, "dq_inductance", "d_inductance", {2, 1}), ld * (1 + 0.5 + 2.4), 1e-16);

    EXPECT_EQ(nodes(store, "dq_inductance", "q_inductance", 1), betas);
    EXPECT_EQ(nodes(store, "dq_inductance", "q_inductance", 2), (std::vector<double>{2, 4}));
    EXPECT_EQ(cyclic_flags(store, "dq_inductance", "q_inductance"), (std::vector<int>{1, 0}));
    for (int j = 0; j < 37; ++j) {
        for (int i = 0; i < 2; ++i) {
            const double I = amplitudes[static_cast<std::size_t>(i + 1)];
            // At 90 and 270 degrees stands the mean of the neighbours at 80, 100 and 260, 280.
            const double beta = betas[static_cast<std::size_t>(j)];
            const double expected = j == 9 || j == 27 ? 0.5 * (lq(I, beta - 10) + lq(I, beta + 10)) : lq(I, beta);
            EXPECT_NEAR(value(store, "dq_inductance", "q_inductance", {j, i}), expected, 1e-15) << j << ' ' << i;
        }
    }
}

// Index 2 of 4 is not below 4 - 2: not smoothed. Between the nodes the flux is linear and psi_q(90) = 0, so at 85 and
// 95 degrees psi_q is half that of 80 and 100.
TEST_F(LdLq, at_90_degrees_near_the_end_the_value_comes_from_5_degrees_beside) {
    build({70, 80, 90, 100});
    EXPECT_EQ(kzb::make_LdLq(store), 1);
    const double I = 2;
    const double expected = 0.5 * (0.5 * lq(I, 80) * cosd(80) / cosd(85) + 0.5 * lq(I, 100) * cosd(100) / cosd(95));
    EXPECT_NEAR(value(store, "dq_inductance", "q_inductance", {2, 0}), expected, 1e-14);
}

TEST_F(LdLq, an_amplitude_of_zero_beyond_the_first_gives_zero) {
    build({0, 10});
    kzb::table_set_axis_value(kzb::find_table(store, "current_flux", "flux"), 1, 0, -1.0);
    kzb::table_set_axis_value(kzb::find_table(store, "current_flux", "flux"), 1, 1, 0.0);
    EXPECT_EQ(kzb::make_LdLq(store), 1);
    EXPECT_EQ(value(store, "dq_inductance", "q_inductance", {0, 0}), 0.0);
}

TEST_F(LdLq, torque_is_the_mean_over_positions) {
    build({0, 10});
    kzb::make_LdLq(store);
    EXPECT_EQ(nodes(store, "dq_torque", "torque_ibeta", 1), (std::vector<double>{0, 180, 360}));
    // The first amplitude is not copied.
    EXPECT_EQ(nodes(store, "dq_torque", "torque_ibeta", 2), (std::vector<double>{0, 8}));
    EXPECT_EQ(cyclic_flags(store, "dq_torque", "torque_ibeta"), (std::vector<int>{1, 0}));
    // Mean of the positions 0, 10, 20, 30 is 15.
    EXPECT_EQ(value(store, "dq_torque", "torque_ibeta", {1, 0}), 180 + 15 * 7);
    EXPECT_EQ(value(store, "dq_torque", "torque_ibeta", {1, 1}), 180 + 15 * 8);
}

TEST_F(LdLq, without_torque_data_the_application_is_switched_all_the_same) {
    build({0, 10});
    kzb::delete_table(store, "harmonic_torque", "torque_ibeta");
    store.motor = "PMSM";
    store.application = "LdLq";
    EXPECT_EQ(kzb::make_LdLq(store), 0);
    EXPECT_EQ(store.application, "Harmonic");
    EXPECT_EQ(store.ldlq_made, 0);
    EXPECT_FALSE(kzb::has_category(store, "dq_inductance"));
}

TEST_F(LdLq, without_a_harmonic_model_nothing_is_touched) {
    build({0, 10});
    kzb::put_int(store, "control", "motor_type", 10005);
    EXPECT_EQ(kzb::make_LdLq(store), 0);
    EXPECT_EQ(store.application, "");
}

TEST_F(LdLq, a_flux_of_one_amplitude_gives_no_q_table) {
    build({0, 10});
    make_table(store, "current_flux", "flux", {{0}, {0, 10}, {0, 30}, {0, 1, 2}}, {0, 1, 1, 0}, flux);
    EXPECT_EQ(kzb::make_LdLq(store), 1);
    EXPECT_EQ(kzb::table_rows(store, "dq_inductance", "q_inductance", 2), 0);
}

TEST_F(LdLq, sources_of_other_dimensions_are_safe) {
    build({0, 10});
    make_table(store, "harmonic_inductance", "inductance", {{0, 5}, {0, 360}}, {0, 1}, [](const Point&) { return 1; });
    make_table(store, "current_flux", "flux", {{0, 1}}, {0}, [](const Point&) { return 1; });
    make_table(store, "harmonic_torque", "torque_ibeta", {{0, 1}}, {0}, [](const Point&) { return 1; });
    EXPECT_EQ(kzb::make_LdLq(store), 1);
    // No position axis: the mean over none.
    EXPECT_TRUE(std::isnan(value(store, "dq_inductance", "d_inductance", {0, 0})));
    kzb::delete_table(store, "current_flux", "flux");
    kzb::delete_table(store, "harmonic_inductance", "inductance");
    EXPECT_EQ(kzb::make_LdLq(store), 1);
    EXPECT_EQ(kzb::table_rows(store, "dq_inductance", "d_inductance", 1), 0);
}

}  // namespace
