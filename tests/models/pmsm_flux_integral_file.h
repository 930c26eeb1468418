// A flux integral machine of constant inductances, and a host that integrates its state, for the tests of kind 3.
#pragma once

#include "pmsm_files.h"

namespace kzb_test {

inline constexpr double ld = 0.002;
inline constexpr double lq = 0.005;
inline constexpr double psi = 0.15;
inline constexpr double r = 0.5;

// i_d = (psi_d - psi) / Ld, i_q = psi_q / Lq; no zero flux; torque table p/2 * 3/2 * 0.1 * amplitude * cos(beta).
inline void integral_file(KZB_STORE& store, const Basics& b = {}, bool zero_axis = false) {
    basics(store, b);
    const Axis turn = nodes(0.0, 360.0, 5, true);
    const Axis flux = nodes(-1.0, 1.0, 5);
    std::vector<Axis> axes = {flux, flux, turn};
    if (zero_axis) {
        axes = {flux, flux, nodes(-1.0, 1.0, 3), turn};
        table(store, "current_table", "i0", axes, [](const std::vector<double>& x) { return 20.0 * x[2]; });
    }
    table(store, "current_table", "id", axes, [](const std::vector<double>& x) { return (x[0] - psi) / ld; });
    table(store, "current_table", "iq", axes, [](const std::vector<double>& x) { return x[1] / lq; });
    constant(store, "flux_table", "fd_noload", {turn}, psi);
    constant(store, "flux_table", "fq_noload", {turn}, 0.01);
    constant(store, "flux_table", "f0_noload", {turn}, 0.02);
    constant(store, "flux_table", "f0_ibeta", {nodes(0, 100, 2), all_phases(), turn}, 0.05);
    table(store, "harmonic_torque", "torque_ibeta", {nodes(-180, 180, 73, true), turn, nodes(0, 1000, 3)},
          [](const std::vector<double>& x) { return 0.3 * x[2] * std::cos(x[0] * pi / 180.0); });
}

struct Host {
    kzb::Calc_Eq model;
    double state[3] = {9.0, 9.0, 9.0};
    double derivative[3] = {};
    double before = 0.0;

    void execute(const kzb::Phases& v, double position, double time, int u = 1, int vv = 1, int w = 1) {
        if (time > 0.0) {
            model.flux_derivative(v[0], v[1], v[2], position, time, state, derivative, u, vv, w);
            for (int k = 0; k < 3; ++k) {
                state[k] += (time - before) * derivative[k];
            }
        }
        model.flux_update(time, position, state);
    }
    void accept(double time) {
        model.accept();
        before = time;
    }
};

}  // namespace kzb_test
