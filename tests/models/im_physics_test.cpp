// The induction model in steady state, against the equivalent circuit of one phase in complex numbers.
//
//   V = (R1 + j w (L - M)) I1 + j w M (I1 + I2),   0 = (R2 / s + j w (L - M)) I2 + j w M (I1 + I2)
//   torque = 3/2 p/2 |I2|^2 R2 / (s w),   peak values
#include <gtest/gtest.h>

#include <complex>

#include "im_files.h"

namespace kzb_test::im_physics_test {
namespace {

using Complex = std::complex<double>;

struct SteadyState {
    double primary;
    double secondary;
    double torque;
};

SteadyState equivalent_circuit(const ImConstants& m, double volt, double slip) {
    const double w = 2.0 * pi * m.frequency;
    const Complex leakage(0.0, (m.x1 + m.x2) * 0.5);
    const Complex magnetising(0.0, 1.0 / m.b0);
    const Complex rotor = m.r2 / slip + leakage;
    const Complex parallel = magnetising * rotor / (magnetising + rotor);
    const Complex primary = volt / (m.r1 + leakage + parallel);
    const Complex secondary = -primary * magnetising / (magnetising + rotor);
    return {std::abs(primary), std::abs(secondary), 1.5 * m.poles * 0.5 * std::norm(secondary) * m.r2 / (slip * w)};
}

TEST(im_physics, constants_reach_the_equivalent_circuits_steady_state) {
    const ImConstants m;
    const double volt = 300.0;
    const double w = 2.0 * pi * m.frequency;
    for (const double slip : {0.03, -0.04, 0.3}) {
        KZB_STORE store;
        im_constants_file(store, m);
        Calc_Eq_im_transient model;
        model.bind(store, 0);
        // The implicit step damps by w dt / 2 of each reactance: 0.08 % of some 25 Ohm at 5 us.
        const double dt = 5e-6;
        const int steps = 160000;
        const int period = 4000;
        double torque = 0.0;
        double primary = 0.0;
        double secondary = 0.0;
        for (int n = 0; n <= steps; ++n) {
            const double t = n * dt;
            const double a = 2.0 * pi / 3.0;
            im_sample(model, {volt * std::cos(w * t), volt * std::cos(w * t - a), volt * std::cos(w * t + a)},
                      (1.0 - slip) * w * t / (m.poles * 0.5), t);
            if (n > steps - period) {
                torque += model.torque() / period;
                primary += model.state().primary_current / period;
                secondary += model.state().secondary_current / period;
            }
        }
        const SteadyState expected = equivalent_circuit(m, volt, slip);
        EXPECT_NEAR(primary, expected.primary, 0.01 * expected.primary) << slip;
        EXPECT_NEAR(secondary, expected.secondary, 0.01 * expected.secondary) << slip;
        EXPECT_NEAR(torque, expected.torque, 0.01 * std::fabs(expected.torque)) << slip;
    }
}

TEST(im_physics, tables_reach_the_same_steady_state_as_constants) {
    ImConstants m;
    const double w = 2.0 * pi * m.frequency;
    const double magnetising = 1.0 / m.b0 / w;
    const double leakage = (m.x1 + m.x2) / w * 0.5;
    const double slip = 0.04;
    KZB_STORE store;
    im_tables_file(store, {magnetising + leakage, magnetising, magnetising, magnetising + leakage, m.r2, m.r1, 4, 0});
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_slip_omega(slip * w);
    double x[4] = {};
    const double dt = 5e-6;
    const int steps = 160000;
    const int period = 4000;
    double torque = 0.0;
    double primary = 0.0;
    for (int n = 0; n <= steps; ++n) {
        const double t = n * dt;
        const double a = 2.0 * pi / 3.0;
        const double v[3] = {300.0 * std::cos(w * t), 300.0 * std::cos(w * t - a), 300.0 * std::cos(w * t + a)};
        model.execute(v, (1.0 - slip) * w * t / 2.0, t, im_all_driven, dt, x);
        model.accept();
        if (n > steps - period) {
            torque += model.torque() / period;
            primary += model.state().primary_current / period;
        }
    }
    const SteadyState expected = equivalent_circuit(m, 300.0, slip);
    EXPECT_NEAR(torque, expected.torque, 0.01 * expected.torque);
    EXPECT_NEAR(primary, expected.primary, 0.01 * expected.primary);
}

}  // namespace
}  // namespace kzb_test::im_physics_test
