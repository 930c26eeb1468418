#include "bench/reference/wfsm_machine.h"

#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

namespace kzb_reference {

namespace {

using Axis = std::vector<double>;
using Formula = std::function<double(const double*)>;

constexpr double main_inductance = 1.1e-3;
constexpr double main_inductance_q = 0.7e-3;
constexpr double leakage = 0.15e-3;
constexpr double field_leakage = 4e-3;
constexpr double ratio = 12.0;  // of field to armature
constexpr double saturation = 260.0;

Axis evenly(double first, double last, int nodes) {
    Axis axis;
    for (int i = 0; i < nodes; ++i) {
        axis.push_back(first + (last - first) * i / (nodes - 1));
    }
    return axis;
}

void fill(Store& store, const char* category, const char* key, const std::vector<Axis>& axes,
          const std::vector<int>& cyclic, const Formula& formula) {
    const int dim = static_cast<int>(axes.size());
    std::vector<int> sizes;
    for (const Axis& axis : axes) {
        sizes.push_back(static_cast<int>(axis.size()));
    }
    Table& table = kzb_create_table(category, key, dim, sizes.data(), store);
    for (int a = 0; a < dim; ++a) {
        table.cyclic[a] = cyclic[static_cast<std::size_t>(a)];
        for (int i = 0; i < table.sizes[a]; ++i) {
            table_set_axis_value(table, a + 1, i, axes[static_cast<std::size_t>(a)][static_cast<std::size_t>(i)]);
        }
    }
    std::vector<double> point(axes.size());
    for (int flat = 0; flat < table.total; ++flat) {
        for (int a = 0; a < dim; ++a) {
            point[static_cast<std::size_t>(a)] = table.axes[a][flat / table.strides[a] % table.sizes[a]];
        }
        table.values[flat] = formula(point.data());
    }
}

// Currents, fluxes and derivatives at one point of a table.
struct Point {
    double theta;
    double d;
    double q;
    double field;

    Point(const WfsmMachine& m, const double* p) : theta((p[3] * m.poles * 0.5 + m.beta_zero) * M_PI / 180.0) {
        const double s = std::sqrt(1.5) * p[0];
        d = m.current_type == 1 ? -std::sin(p[1] * M_PI / 180.0) * s : p[0];
        q = m.current_type == 1 ? std::cos(p[1] * M_PI / 180.0) * s : p[1];
        field = p[2];
    }
    double magnetizing() const { return d + ratio * field; }
    double psi_m() const { return main_inductance * magnetizing() / (1.0 + std::fabs(magnetizing()) / saturation); }
    double psi_d() const { return leakage * d + psi_m(); }
    double psi_q() const { return leakage * q + main_inductance_q * q / (1.0 + std::fabs(q) / saturation); }
    double psi_f() const { return field_leakage * field + ratio * psi_m(); }
    double slope_m() const {
        const double bend = 1.0 + std::fabs(magnetizing()) / saturation;
        return main_inductance / (bend * bend);
    }
    double slope_q() const {
        const double bend = 1.0 + std::fabs(q) / saturation;
        return leakage + main_inductance_q / (bend * bend);
    }
    double angle(int k) const { return theta - (k == 2 ? -1.0 : k) * 2.0 * M_PI / 3.0; }
    double flux(int k) const {
        return k == 3 ? psi_f() : std::sqrt(2.0 / 3.0) * (std::cos(angle(k)) * psi_d() - std::sin(angle(k)) * psi_q());
    }
    double inductance(int row, int column) const {
        if (row == 3 && column == 3) {
            return field_leakage + ratio * ratio * slope_m();
        }
        if (row == 3 || column == 3) {
            return std::sqrt(2.0 / 3.0) * ratio * slope_m() * std::cos(angle(row == 3 ? column : row));
        }
        return 2.0 / 3.0 *
                   ((leakage + slope_m()) * std::cos(angle(row)) * std::cos(angle(column)) +
                    slope_q() * std::sin(angle(row)) * std::sin(angle(column))) +
               leakage / 3.0;
    }
};

// A number between -1 and 1 that looks random and follows from the point alone.
double scatter(const double* p, int axes) {
    double sum = 0.0;
    for (int a = 0; a < axes; ++a) {
        sum += (17.0 + 31.0 * a) * p[a];
    }
    return std::sin(sum + 0.3);
}

void put_losses(const WfsmMachine& m, const Axis& first, const Axis& second, const Axis& fields, Store& store) {
    const Axis speeds = evenly(0.0, 6000.0, 7);
    Axis amplitudes = first;
    if (m.current_type == 1) {
        amplitudes = evenly(m.least_loss_amplitude, 300.0, 5);
    }
    const std::vector<Axis> axes = m.current_type == 1 ? std::vector<Axis>{speeds, second, amplitudes, fields}
                                                       : std::vector<Axis>{speeds, second, first, fields};
    for (const char* const category : {"eddyloss", "hysloss"}) {
        const bool eddy = category[0] == 'e';
        kzb_put_int(category, "numMat", m.materials, store);
        for (int i = 1; i <= m.materials; ++i) {
            char key[32];
            std::snprintf(key, sizeof key, "matID%d", i);
            const int id = 5 - i;
            kzb_put_int(category, key, id, store);
            std::snprintf(key, sizeof key, "%s%d", category, id);
            fill(store, category, key, axes, {0, m.current_type == 1 && !m.phase_symmetry ? 1 : 0, 0, 0},
                 [&](const double* p) {
                     const double f = p[0] / 1000.0;
                     const double b = 0.5 + 0.002 * std::fabs(p[2]) + 0.05 * p[3] + 0.1 * std::cos(p[1] * M_PI / 180.0);
                     return (eddy ? 6.0 * f * f : 9.0 * f) * b * b * i;
                 });
        }
    }
}

void put_user_parameters(const std::vector<Axis>& axes, const std::vector<int>& cyclic, Store& store) {
    kzb_put_int("num_user_specified_parameter", "num_user_specified_parameter", 2, store);
    for (int k = 1; k <= 2; ++k) {
        char category[64];
        char table[64];
        std::snprintf(category, sizeof category, "user_specified_parameter%d", k);
        std::snprintf(table, sizeof table, "user_specified_parameter_table%d", k);
        kzb_put_int(category, "table_id", k, store);
        kzb_put_int(category, "output_port_id", 3 - k, store);
        fill(store, "user_specified_parameter_table", table, axes, cyclic,
             [&](const double* p) { return k * p[0] + std::sin(p[1]) + p[2] * p[3]; });
    }
}

void put_control(const WfsmMachine& m, Store& store) {
    kzb_put_int("control", "motor_type", 10007, store);
    kzb_put_int("control", "number_of_poles", m.poles, store);
    kzb_put_int("control", "current_type", m.current_type, store);
    kzb_put_double("control", "beta_zero", m.beta_zero, store);
    kzb_put_int("control", "Winding_Pattern_Flag", m.connection, store);
    if (m.phase_symmetry) {
        kzb_put_int("control", "use_phase_symmetry", 1, store);
    }
    if (m.turns_in_coil != 0.0) {
        kzb_put_double("control", "turns_in_coil", m.turns_in_coil, store);
        kzb_put_double("control", "turns_in_field_coil", m.turns_in_field_coil, store);
    }
    if (m.turns != 0.0) {
        kzb_put_double("control", "turns_coil2", m.turns, store);
        kzb_put_double("control", "turns_coil2_fieldcoil", m.field_turns, store);
    }
    if (m.control_record) {
        kzb_put_double("control", "coef_flux", 0.97, store);
        kzb_put_double("control", "coef_flux_fieldcoil", 1.02, store);
        kzb_put_double("control", "coef_torque", 0.98, store);
        kzb_put_double("control", "coef_material", 1.01, store);
        kzb_put_double("control", "base_coil_temperature", 300.0, store);
        kzb_put_double("control", "base_field_coil_temperature", 310.0, store);
        kzb_put_double("control", "coef_coil_temperature", 3900.0, store);
        kzb_put_double("control", "coef_field_coil_temperature", 4000.0, store);
    }
    kzb_put_double("parameter", "RU", 0.03, store);
    kzb_put_double("parameter", "RF", 2.5, store);
}

}  // namespace

void make_wfsm_machine(const WfsmMachine& m, Store& store) {
    put_control(m, store);
    const bool amplitudes = m.current_type == 1;
    const Axis first = amplitudes ? evenly(m.least_amplitude, 300.0, 7) : evenly(-360.0, 360.0, 9);
    const Axis second = !amplitudes        ? evenly(-360.0, 360.0, 9)
                        : m.phase_symmetry ? evenly(-90.0, 90.0, 7)
                                           : evenly(-180.0, 180.0, 13);
    const Axis fields = evenly(m.first_field, 20.0, 5);
    const Axis angles = evenly(0.0, 720.0 / m.poles, m.positions);
    const int around = amplitudes && !m.phase_symmetry ? 1 : 0;
    const auto wave = [&](const double* p) { return 1.0 + m.ripple * std::cos(p[3] * m.poles * 3.0 * M_PI / 180.0); };
    fill(store, "current_flux", "flux", {first, second, fields, angles, evenly(0.0, 3.0, 4)}, {0, around, 0, 1, 0},
         [&](const double* p) { return Point(m, p).flux(static_cast<int>(p[4])) * wave(p); });
    fill(store, "harmonic_inductance", "inductance", {first, second, fields, angles, evenly(0.0, 15.0, 16)},
         {0, around, 0, 1, 0}, [&](const double* p) {
             const int k = static_cast<int>(p[4]);
             return Point(m, p).inductance(k % 4, k / 4) * (1.0 + m.unsettled * scatter(p, 5));
         });
    fill(store, "harmonic_torque", "torque_ibeta", {first, second, fields, angles}, {0, around, 0, 1},
         [&](const double* p) {
             const Point at(m, p);
             return m.poles * 0.5 * (at.psi_d() * at.q - at.psi_q() * at.d) * wave(p);
         });
    if (m.iron_loss) {
        put_losses(m, first, second, fields, store);
    }
    if (m.user_parameters) {
        put_user_parameters({first, second, fields, angles}, {0, around, 0, 1}, store);
    }
}

}  // namespace kzb_reference
