// A rotating linear wound-field machine against its equations in the rotor's frame, integrated by another method.
//
//   v_d = R i_d + d(psi_d)/dt - w psi_q,   psi_d = L i_d + M i_f,   L = l + 1.5 m,  M = sqrt(3/2) mf
//   v_q = R i_q + d(psi_q)/dt + w psi_d,   psi_q = L i_q
//   v_f = R_f i_f + d(psi_f)/dt,           psi_f = L_f i_f + M i_d
//   torque = pole pairs (psi_d i_q - psi_q i_d)
#include <gtest/gtest.h>

#include "wfsm_files.h"

namespace kzb_test::wfsm_physics_test {
namespace {

constexpr double end = 0.02;           // s
constexpr double turns_of_run = 0.25;  // mechanical
constexpr double volt = 40.0;
constexpr double field_volt = 30.0;
constexpr double field_start = 5.0;

struct Rotor {
    WoundField w;
    double omega() const { return turns_of_run * 2.0 * pi / end * w.poles * 0.5; }
    double l() const { return w.l + 1.5 * w.m; }
    double m() const { return std::sqrt(1.5) * w.mf; }

    using State = std::array<double, 3>;  // psi_d, psi_q, psi_f
    State currents(const State& psi) const {
        const double det = l() * w.lf - m() * m();
        return {(w.lf * psi[0] - m() * psi[2]) / det, psi[1] / l(), (l() * psi[2] - m() * psi[0]) / det};
    }
    State slope(const State& psi) const {
        const State i = currents(psi);
        const double v_d = -std::sqrt(1.5) * volt * std::sin(0.4);
        const double v_q = std::sqrt(1.5) * volt * std::cos(0.4);
        return {v_d - w.resistance * i[0] + omega() * psi[1], v_q - w.resistance * i[1] - omega() * psi[0],
                field_volt - w.field_resistance * i[2]};
    }
    // Fourth-order Runge-Kutta.
    State at_end() const {
        const int steps = 20000;
        const double h = end / steps;
        State psi{m() * field_start, 0.0, w.lf * field_start};
        for (int n = 0; n < steps; ++n) {
            const State k1 = slope(psi);
            const State k2 = slope(moved(psi, k1, h / 2));
            const State k3 = slope(moved(psi, k2, h / 2));
            const State k4 = slope(moved(psi, k3, h));
            for (std::size_t k = 0; k < 3; ++k) {
                psi[k] += h / 6.0 * (k1[k] + 2.0 * k2[k] + 2.0 * k3[k] + k4[k]);
            }
        }
        return psi;
    }
    static State moved(State psi, const State& slope, double h) {
        for (std::size_t k = 0; k < 3; ++k) {
            psi[k] += h * slope[k];
        }
        return psi;
    }
};

// The model at the end of the same run, every sample at a node of the position axis: d, q, field current and torque.
Four stepped(const WoundField& w, int samples) {
    KZB_STORE store;
    linear_file(store, w);
    Calc_Eq_wfsm model;
    model.set_initial_current(4, field_start);
    model.bind(store);
    for (int n = 0; n <= samples; ++n) {
        const double time = end * n / samples;
        const double position = turns_of_run * 2.0 * pi * n / samples;
        const double th = position * w.poles * 0.5;
        const auto v = phases_of(-std::sqrt(1.5) * volt * std::sin(0.4), std::sqrt(1.5) * volt * std::cos(0.4), th);
        if (w.connection == 0) {
            sample(model, {v[0] + 3.0, v[1] + 3.0, v[2] + 3.0, field_volt}, position, time);
        } else {
            // Terminal voltages whose differences are the coils' voltages.
            sample(model, {0.0, -v[0], v[2], field_volt}, position, time);
        }
    }
    return {model.state().Id, model.state().Iq, model.terminal_current(4), model.torque()};
}

// Errors of the steps at full and at half length are as two to one: first order, to the solution of the equations.
// Tables over amplitude and phase bend the flux between nodes 5 degrees apart, by 1 - cos(2.5 degrees), a thousandth.
TEST(wfsm_physics, run_converges_to_the_equations_of_the_machine) {
    for (const int connection : {0, 1}) {
        Rotor rotor{{.connection = connection}};
        const Rotor::State psi = rotor.at_end();
        const Rotor::State i = rotor.currents(psi);
        const double torque = rotor.w.poles * 0.5 * (psi[0] * i[1] - psi[1] * i[0]);
        const Four exact{i[0], i[1], i[2], torque};
        rotor.w.positions = 361;
        const Four fine = stepped(rotor.w, 90);
        rotor.w.positions = 181;
        const Four coarse = stepped(rotor.w, 45);
        rotor.w.current_type = 1;
        const Four polar = stepped(rotor.w, 45);
        for (std::size_t k = 0; k < 4; ++k) {
            SCOPED_TRACE(std::to_string(connection) + ' ' + std::to_string(k));
            EXPECT_GT(std::fabs(exact[k]), 1.0);
            EXPECT_NEAR((coarse[k] - exact[k]) / (fine[k] - exact[k]), 2.0, 0.15);
            EXPECT_NEAR(polar[k], coarse[k], 0.01 * std::fabs(coarse[k]));
        }
    }
}

}  // namespace
}  // namespace kzb_test::wfsm_physics_test
