// Small synthetic wound-field machines for the tests of their model, made in memory.
//
// The linear machine: psi = L(th) i with a smooth-air-gap armature and a field coil,
//
//   L[j][k] = m cos(120 deg (j - k)) (+ l on the diagonal),  L[k][f] = mf cos(th - k 120 deg),  L[f][f] = lf
//
// th = pole pairs * position. In the d-q frame its fluxes are exact multiples of the table axes i_d, i_q, i_f, so that
// linear interpolation over the currents is exact at every node of the position axis.
#pragma once

#include <array>
#include <cmath>
#include <string>

#include "models/calc_eq_wfsm.h"
#include "pmsm_files.h"
#include "store/store.h"
#include "support/environment.h"

namespace kzb_test {

using kzb::Calc_Eq_wfsm;
using Four = std::array<double, 4>;

struct WoundField {
    int poles = 4;
    double beta_zero = 0.0;
    int current_type = 0;
    int connection = 0;
    double resistance = 0.5;
    double field_resistance = 2.0;
    double l = 0.001;  // leakage of a phase, H
    double m = 0.004;  // air gap inductance of a phase
    double mf = 0.05;  // phase to field
    double lf = 1.2;   // field
    double first_field = 0.0;
    int positions = 73;  // nodes of the position axis over 360 degrees
};

inline constexpr double third_turn = 2.0 * pi / 3.0;

inline double mutual(const WoundField& w, int row, int column, double th) {
    if (row == 3 && column == 3) {
        return w.lf;
    }
    if (row == 3 || column == 3) {
        return w.mf * std::cos(th - (row == 3 ? column : row) * third_turn);
    }
    return w.m * std::cos((row - column) * third_turn) + (row == column ? w.l : 0.0);
}

// Phase currents of d and q, without zero sequence.
inline std::array<double, 3> phases_of(double d, double q, double th) {
    std::array<double, 3> i;
    for (int k = 0; k < 3; ++k) {
        const double a = th - k * third_turn;
        i[static_cast<std::size_t>(k)] = std::sqrt(2.0 / 3.0) * (std::cos(a) * d - std::sin(a) * q);
    }
    return i;
}

inline Axis field_axis(const WoundField& w) {
    return nodes(w.first_field, 20.0, 3);
}

inline void wfsm_basics(KZB_STORE& store, const WoundField& w = {}) {
    basics(store, {.motor_type = 10007,
                   .poles = w.poles,
                   .beta_zero = w.beta_zero,
                   .connection = w.connection,
                   .resistance = w.resistance});
    kzb::put_double(store, "parameter", "RF", w.field_resistance);
    kzb::put_int(store, "control", "current_type", w.current_type);
}

// d and q of a point on the tables' first two axes.
inline std::array<double, 2> dq_of_point(const WoundField& w, const std::vector<double>& x) {
    if (w.current_type == 0) {
        return {x[0], x[1]};
    }
    const double s = std::sqrt(1.5) * x[0];
    return {-std::sin(x[1] * pi / 180.0) * s, std::cos(x[1] * pi / 180.0) * s};
}

inline double linear_flux(const WoundField& w, const std::vector<double>& x, int component) {
    const double th = x[3] * pi / 180.0 * w.poles * 0.5;
    const auto dq = dq_of_point(w, x);
    const auto i = phases_of(dq[0], dq[1], th);
    const double all[4] = {i[0], i[1], i[2], x[2]};
    double flux = 0.0;
    for (int k = 0; k < 4; ++k) {
        flux += mutual(w, component, k, th) * all[k];
    }
    return flux;
}

// Torque of the linear machine, pole pairs * mf * i_f * i_q * sqrt(3/2).
inline double linear_torque(const WoundField& w, double field, double q) {
    return w.poles * 0.5 * w.mf * std::sqrt(1.5) * field * q;
}

inline void linear_file(KZB_STORE& store, const WoundField& w = {}) {
    wfsm_basics(store, w);
    const Axis turn = nodes(0.0, 360.0, w.positions, true);
    const Axis first = w.current_type == 0 ? nodes(-100.0, 100.0, 3) : nodes(0.0, 100.0, 3);
    const Axis second = w.current_type == 0 ? nodes(-100.0, 100.0, 3) : nodes(-180.0, 180.0, 73, true);
    table(store, "current_flux", "flux", {first, second, field_axis(w), turn, components(4)},
          [=](const std::vector<double>& x) { return linear_flux(w, x, static_cast<int>(x[4])); });
    table(store, "harmonic_inductance", "inductance", {first, second, field_axis(w), turn, components(16)},
          [=](const std::vector<double>& x) {
              const int k = static_cast<int>(x[4]);
              return mutual(w, k % 4, k / 4, x[3] * pi / 180.0 * w.poles * 0.5);
          });
    table(store, "harmonic_torque", "torque_ibeta", {first, second, field_axis(w), turn},
          [=](const std::vector<double>& x) { return linear_torque(w, x[2], dq_of_point(w, x)[1]); });
}

// One sample with all terminals driven; accepts it when asked.
inline bool sample(Calc_Eq_wfsm& model, const Four& v, double position, double time, bool accept = true) {
    int error = 0;
    const Four on{1.0, 1.0, 1.0, 1.0};
    const bool ok = model.step(v.data(), position, time, on.data(), error);
    if (accept) {
        model.accept();
    }
    return ok;
}

// One-dimensional interpolations counted so far, of every scheme.
inline double interpolations(const KZB_STORE& store) {
    return store.timing[kzb::slot_linear_calls] + store.timing[kzb::slot_cubic_calls] +
           store.timing[kzb::slot_spline_calls];
}

// Lookups of five-axis tables since its making, for the scheme "Linear" and one lookup of the torque table among them:
// a lookup of n axes joins the 2^n corners of a cell by 2^n - 1 interpolations.
class FiveAxisLookups {
  public:
    explicit FiveAxisLookups(const KZB_STORE& store) : store_(store), before_(interpolations(store)) {}
    double count() const { return (interpolations(store_) - before_ - 15.0) / 31.0; }

  private:
    const KZB_STORE& store_;
    double before_;
};

}  // namespace kzb_test
