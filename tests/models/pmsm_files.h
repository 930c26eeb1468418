// Small synthetic machines for the tests of the permanent-magnet model, made in memory.
#pragma once

#include <cmath>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "models/calc_eq.h"
#include "store/store.h"
#include "table/table.h"

namespace kzb_test {

constexpr double pi = 3.141592653589793;

struct Axis {
    std::vector<double> nodes;
    bool cyclic = false;
};

// Node values by formula: f(coordinates).
inline void table(KZB_STORE& store, const char* category, const std::string& key, const std::vector<Axis>& axes,
                  const std::function<double(const std::vector<double>&)>& f) {
    std::vector<int> sizes;
    for (const Axis& axis : axes) {
        sizes.push_back(static_cast<int>(axis.nodes.size()));
    }
    const int dim = static_cast<int>(sizes.size());
    kzb::create_table(store, category, key, dim, sizes.data());
    KZB_TABLE* const made = kzb::find_table(store, category, key);
    for (int a = 0; a < dim; ++a) {
        for (int i = 0; i < sizes[static_cast<std::size_t>(a)]; ++i) {
            kzb::table_set_axis_value(made, a + 1, i,
                                      axes[static_cast<std::size_t>(a)].nodes[static_cast<std::size_t>(i)]);
        }
        kzb::table_set_cyclic_flag(made, a + 1, axes[static_cast<std::size_t>(a)].cyclic ? 1 : 0);
    }
    std::vector<int> index(sizes.size(), 0);
    std::vector<double> x(sizes.size());
    for (int position = 0; position < made->total; ++position) {
        int rest = position;
        for (std::size_t a = sizes.size(); a-- > 0;) {
            index[a] = rest % sizes[a];
            rest /= sizes[a];
            x[a] = axes[a].nodes[static_cast<std::size_t>(index[a])];
        }
        kzb::table_set_value(made, index.data(), f(x));
    }
}

inline void constant(KZB_STORE& store, const char* category, const std::string& key, const std::vector<Axis>& axes,
                     double value) {
    table(store, category, key, axes, [value](const std::vector<double>&) { return value; });
}

inline Axis nodes(double first, double last, int count, bool cyclic = false) {
    Axis axis;
    for (int i = 0; i < count; ++i) {
        axis.nodes.push_back(first + (last - first) * i / (count - 1));
    }
    axis.cyclic = cyclic;
    return axis;
}

// Axes: phase component, matrix element, current phase, mechanical angle.
inline Axis components(int count) {
    return nodes(0.0, count - 1.0, count);
}
inline Axis all_phases() {
    return nodes(-180.0, 180.0, 9, true);
}

struct Basics {
    int motor_type = 10000;
    int poles = 4;
    double beta_zero = 0.0;
    int connection = 0;
    double resistance = 0.5;
};

inline void basics(KZB_STORE& store, const Basics& b = {}) {
    kzb::put_int(store, "control", "motor_type", b.motor_type);
    kzb::put_int(store, "control", "number_of_poles", b.poles);
    kzb::put_double(store, "control", "beta_zero", b.beta_zero);
    kzb::put_int(store, "control", "Winding_Pattern_Flag", b.connection);
    kzb::put_double(store, "parameter", "RU", b.resistance);
}

struct LdLq {
    double ld = 0.002;
    double lq = 0.005;
    double d_flux = 0.15;  // two-axis value
};

inline void ld_lq_file(KZB_STORE& store, const LdLq& m = {}, const Basics& b = {}) {
    basics(store, b);
    constant(store, "dq_inductance", "d_inductance", {all_phases(), nodes(0.0, 100.0, 3)}, m.ld);
    constant(store, "dq_inductance", "q_inductance", {all_phases(), nodes(0.0, 100.0, 3)}, m.lq);
    kzb::put_double(store, "d_flux", "d_flux", m.d_flux);
}

// Flux psi_k = l * i_k(amplitude, phase, position) + psi_m cos(electrical angle - k 120 degrees), inductance l * unit.
struct Harmonic {
    double l = 0.003;
    double flux = 0.1;
    bool by_phase_currents = false;  // tables over the three currents instead of amplitude and phase
    const char* torque_category = "harmonic_torque";
};

inline double electrical(double degrees, int poles) {
    return degrees * pi / 180.0 * poles * 0.5;
}

inline void harmonic_file(KZB_STORE& store, const Harmonic& m = {}, const Basics& b = {}) {
    basics(store, b);
    const Axis turn = nodes(0.0, 360.0, 73, true);
    const auto magnet = [=](double degrees, double k) {
        return m.flux * std::cos(electrical(degrees, b.poles) - k * 2.0 * pi / 3.0);
    };
    if (m.by_phase_currents) {
        const Axis amperes = nodes(-100.0, 100.0, 3);
        table(
            store, "current_flux", "flux", {amperes, amperes, amperes, turn, components(3)},
            [=](const std::vector<double>& x) { return m.l * x[static_cast<std::size_t>(x[4])] + magnet(x[3], x[4]); });
        table(store, "harmonic_inductance", "inductance", {amperes, amperes, amperes, turn, components(9)},
              [=](const std::vector<double>& x) { return std::fmod(x[4], 4.0) == 0.0 ? m.l : 0.0; });
    } else {
        const Axis amplitude = nodes(0.0, 100.0, 3);
        table(store, "current_flux", "flux", {amplitude, all_phases(), turn, components(3)},
              [=](const std::vector<double>& x) {
                  const double th = electrical(x[2], b.poles) - x[3] * 2.0 * pi / 3.0;
                  const double beta = x[1] * pi / 180.0;
                  return m.l * x[0] * (-std::sin(beta) * std::cos(th) - std::cos(beta) * std::sin(th)) +
                         magnet(x[2], x[3]);
              });
        table(store, "harmonic_inductance", "inductance", {amplitude, all_phases(), turn, components(9)},
              [=](const std::vector<double>& x) { return std::fmod(x[3], 4.0) == 0.0 ? m.l : 0.0; });
    }
    // Torque p/2 * 3/2 * psi * amplitude * cos(beta), independent of position.
    table(store, m.torque_category, "torque_ibeta", {nodes(-180.0, 180.0, 73, true), turn, nodes(0.0, 100.0, 3)},
          [=](const std::vector<double>& x) {
              return b.poles * 0.5 * 1.5 * m.flux * x[2] * std::cos(x[0] * pi / 180.0);
          });
}

// Binds a model of kind `kind` to `store`.
inline void bind(kzb::Calc_Eq& model, KZB_STORE& store, int kind, int ironloss_flag = 0) {
    model.set_application(kind);
    model.set_own_coil_coefficient(3810.0);
    model.set_own_magnet_coefficient(-0.11);
    model.bind(store, ironloss_flag);
}

// One sample with all terminals driven; accepts it when asked.
inline bool sample(kzb::Calc_Eq& model, const kzb::Phases& v, double position, double time, bool accept = true) {
    int error = 0;
    const bool ok = model.step(v[0], v[1], v[2], position, time, 1.0, 1.0, 1.0, error);
    if (accept) {
        model.accept();
    }
    return ok;
}

// Solves a dense 3 by 3 system by Cramer's rule: another way than the library's elimination.
inline kzb::Phases solve3(const double a[3][3], const double b[3]) {
    const auto det = [](const double m[3][3]) {
        return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    };
    const double whole = det(a);
    kzb::Phases x{};
    for (std::size_t c = 0; c < 3; ++c) {
        double m[3][3];
        for (std::size_t r = 0; r < 3; ++r) {
            for (std::size_t k = 0; k < 3; ++k) {
                m[r][k] = k == c ? b[r] : a[r][k];
            }
        }
        x[c] = det(m) / whole;
    }
    return x;
}

}  // namespace kzb_test
