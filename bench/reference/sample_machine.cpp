#include "bench/reference/sample_machine.h"

#include <cmath>
#include <vector>

#include "bench/reference/table_formula.h"

namespace kzb_reference {

namespace {

class Fields {
  public:
    explicit Fields(const SampleMachine& machine) : machine_(machine) {}

    double electrical(double table_angle) const {
        return (table_angle * machine_.poles * 0.5 + machine_.beta_zero) * M_PI / 180.0;
    }
    static double id(double amplitude, double beta) { return -std::sin(beta * M_PI / 180.0) * amplitude * root; }
    static double iq(double amplitude, double beta) { return std::cos(beta * M_PI / 180.0) * amplitude * root; }

    static double psi_d(double i_d, double theta) {
        return psi_m * (1.0 + 0.01 * std::cos(6.0 * theta)) + l_d * i_d / (1.0 + std::fabs(i_d) / saturation);
    }
    static double psi_q(double i_q, double theta) {
        return l_q * i_q / (1.0 + std::fabs(i_q) / saturation) + 0.012 * psi_m * std::sin(6.0 * theta);
    }
    static double phase(double d, double q, double theta, int k) {
        const double angle = theta - (k == 2 ? -1.0 : k) * 2.0 * M_PI / 3.0;
        return std::sqrt(2.0 / 3.0) * (d * std::cos(angle) - q * std::sin(angle));
    }
    double flux(double amplitude, double beta, double angle, double component) const {
        const double theta = electrical(angle);
        return phase(psi_d(id(amplitude, beta), theta), psi_q(iq(amplitude, beta), theta), theta,
                     static_cast<int>(component));
    }
    double flux_of_currents(const double* i, double angle, double component) const {
        const double theta = electrical(angle);
        const double a = 2.0 * M_PI / 3.0;
        const double d =
            std::sqrt(2.0 / 3.0) * (i[0] * std::cos(theta) + i[1] * std::cos(theta - a) + i[2] * std::cos(theta + a));
        const double q =
            -std::sqrt(2.0 / 3.0) * (i[0] * std::sin(theta) + i[1] * std::sin(theta - a) + i[2] * std::sin(theta + a));
        return phase(psi_d(d, theta), psi_q(q, theta), theta, static_cast<int>(component));
    }
    double inductance(double amplitude, double beta, double angle, double component) const {
        const double theta = electrical(angle);
        const int c = static_cast<int>(component);
        const double ld = l_d / std::pow(1.0 + std::fabs(id(amplitude, beta)) / saturation, 2);
        const double lq = l_q / std::pow(1.0 + std::fabs(iq(amplitude, beta)) / saturation, 2);
        const double row = theta - (c % 3 == 2 ? -1.0 : c % 3) * 2.0 * M_PI / 3.0;
        const double column = theta - (c / 3 == 2 ? -1.0 : c / 3) * 2.0 * M_PI / 3.0;
        return 2.0 / 3.0 * (ld * std::cos(row) * std::cos(column) + lq * std::sin(row) * std::sin(column)) +
               (c % 3 == c / 3 ? 0.1 * l_d : 0.0);
    }
    double torque(double beta, double angle, double amplitude) const {
        const double theta = electrical(angle);
        const double d = id(amplitude, beta);
        const double q = iq(amplitude, beta);
        return machine_.poles * 0.5 * (psi_d(d, theta) * q - psi_q(q, theta) * d) + 2.0 * std::sin(6.0 * theta);
    }

    static constexpr double psi_m = 0.08;
    static constexpr double l_d = 2e-4;
    static constexpr double l_q = 5e-4;
    static constexpr double saturation = 600.0;

  private:
    static constexpr double root = 1.2247448713915889;  // sqrt(1.5)
    const SampleMachine& machine_;
};

void put_heads(const SampleMachine& machine, Store& store) {
    kzb_put_double("version", "version", 2.0, store);
    kzb_put_string("version", "dorn_version", "sample", store);
    kzb_put_int("control", "motor_type", machine.motor_type, store);
    kzb_put_int("control", "number_of_poles", machine.poles, store);
    kzb_put_int("control", "accuracy_type", machine.accuracy_type, store);
    kzb_put_int("control", "number_of_tables", 3, store);
    if (machine.phase_symmetry) {
        kzb_put_int("control", "use_phase_symmetry", 1, store);
    }
    kzb_put_int("control", "Winding_Pattern_Flag", machine.connection, store);
    kzb_put_double("control", "beta_zero", machine.beta_zero, store);
    kzb_put_double("control", "electrical_length", 0.064, store);
    kzb_put_double("control", "turns_in_coil", machine.turns_in_coil, store);
    kzb_put_double("control", "length", 0.08, store);
    kzb_put_double("control", "diameter", 0.2, store);
    if (machine.turns != 0.0) {
        kzb_put_double("control", "turns_coil1", machine.turns, store);
        kzb_put_double("control", "turns_coil2", machine.turns, store);
    }
    kzb_put_double("parameter", "RU", 0.05, store);
    if (machine.leakage) {
        kzb_put_double("parameter", "leakage_inductance_u", 1.1e-5, store);
        kzb_put_double("parameter", "leakage_inductance_v", 1.2e-5, store);
        kzb_put_double("parameter", "leakage_inductance_w", 1.3e-5, store);
    }
    kzb_put_double("information", "weight", 40.0, store);
    kzb_put_double("information", "rated_power", 50000.0, store);
    kzb_put_double("information", "magflux", Fields::psi_m, store);
    kzb_put_string("information", "title", "sample machine", store);
    kzb_put_double("d_flux", "d_flux", Fields::psi_m, store);
}

const Axis amplitudes = evenly(0.0, 360.0, 13);
const Axis phases = evenly(-180.0, 180.0, 37);
const Axis three = evenly(0.0, 2.0, 3);
const Axis nine = evenly(0.0, 8.0, 9);

void put_harmonic(const SampleMachine& machine, const Fields& fields, const Axis& angles, Store& store) {
    if (machine.currents_as_axes) {
        const Axis currents = evenly(-360.0, 360.0, 7);
        fill(store, "current_flux", "flux", {currents, currents, currents, angles, three}, {0, 0, 0, 1, 0},
             [&](const double* p) { return fields.flux_of_currents(p, p[3], p[4]); });
        fill(store, "harmonic_inductance", "inductance", {currents, currents, currents, angles, nine}, {0, 0, 0, 1, 0},
             [&](const double* p) {
                 return fields.inductance(std::sqrt((p[0] * p[0] + p[1] * p[1] + p[2] * p[2]) / 1.5), 20.0, p[3], p[4]);
             });
        fill(store, "pmsm_torque", "torque_ibeta", {currents, currents, angles, currents}, {0, 0, 1, 0},
             [&](const double* p) { return 0.3 * p[0] - 0.1 * p[1] + 0.2 * p[3] + std::sin(p[2] * M_PI / 15.0); });
        return;
    }
    const Axis held = machine.phase_symmetry ? evenly(-90.0, 90.0, 19) : phases;
    const int around = machine.phase_symmetry ? 0 : 1;
    fill(store, "current_flux", "flux", {amplitudes, held, angles, three}, {0, around, 1, 0},
         [&](const double* p) { return fields.flux(p[0], p[1], p[2], p[3]); });
    fill(store, "harmonic_inductance", "inductance", {amplitudes, held, angles, nine}, {0, around, 1, 0},
         [&](const double* p) { return fields.inductance(p[0], p[1], p[2], p[3]); });
    fill(store, "harmonic_torque", "torque_ibeta", {held, angles, amplitudes}, {around, 1, 0},
         [&](const double* p) { return fields.torque(p[0], p[1], p[2]); });
}

void put_ldlq(const Fields& fields, Store& store) {
    fill(store, "dq_inductance", "d_inductance", {phases, amplitudes}, {1, 0},
         [](const double* p) { return Fields::l_d / (1.0 + std::fabs(Fields::id(p[1], p[0])) / Fields::saturation); });
    fill(store, "dq_inductance", "q_inductance", {phases, amplitudes}, {1, 0},
         [](const double* p) { return Fields::l_q / (1.0 + std::fabs(Fields::iq(p[1], p[0])) / Fields::saturation); });
    fill(store, "dq_torque", "torque_ibeta", {phases, amplitudes}, {1, 0},
         [&](const double* p) { return fields.torque(p[0], 0.0, p[1]); });
}

void put_simple(const SampleMachine& machine, const Fields& fields, const Axis& angles, Store& store) {
    const Axis from_minimum = evenly(20.0, 360.0, 13);
    fill(store, "mag_flux", "flux", {angles, three}, {1, 0},
         [&](const double* p) { return fields.flux(0.0, 0.0, p[0], p[1]); });
    fill(store, "inductance", "inductance", {from_minimum, angles, nine}, {0, 1, 0},
         [&](const double* p) { return fields.inductance(p[0], 20.0, p[1], p[2]); });
    if (machine.torque_axes == 3) {
        fill(store, "torque", "torque_ibeta", {phases, angles, amplitudes}, {1, 1, 0},
             [&](const double* p) { return fields.torque(p[0], p[1], p[2]); });
    } else {
        fill(store, "torque", "torque_ibeta", {phases, amplitudes}, {1, 0},
             [&](const double* p) { return fields.torque(p[0], 0.0, p[1]); });
    }
}

void put_flux_integral(const SampleMachine& machine, const Fields& fields, const Axis& angles, Store& store) {
    fill(store, "flux_table", "fd_noload", {angles}, {1},
         [&](const double* p) { return Fields::psi_d(0.0, fields.electrical(p[0])); });
    fill(store, "flux_table", "fq_noload", {angles}, {1},
         [&](const double* p) { return Fields::psi_q(0.0, fields.electrical(p[0])); });
    fill(store, "flux_table", "f0_noload", {angles}, {1},
         [&](const double* p) { return 1e-4 * std::cos(3.0 * fields.electrical(p[0])); });
    fill(store, "flux_table", "f0_ibeta", {amplitudes, phases, angles}, {0, 1, 1}, [&](const double* p) {
        return 1e-4 * std::cos(3.0 * fields.electrical(p[2])) * (1.0 + 1e-3 * p[0] * std::cos(p[1] * M_PI / 180.0));
    });
    const Axis flux_d = evenly(-0.05, 0.2, 21);
    const Axis flux_q = evenly(-0.2, 0.2, 25);
    const auto inverse = [](double flux, double l) {
        return flux / (l - std::fabs(flux) / Fields::saturation);  // of l i / (1 + |i| / saturation)
    };
    const auto id = [&](const double* p, double angle) {
        return inverse(0.3 * (p[0] - Fields::psi_d(0.0, fields.electrical(angle))), Fields::l_d);
    };
    const auto iq = [&](const double* p, double angle) {
        return inverse(0.5 * (p[1] - Fields::psi_q(0.0, fields.electrical(angle))), Fields::l_q);
    };
    if (machine.zero_axis) {
        const Axis zero = evenly(-0.02, 0.02, 5);
        const std::vector<Axis> axes{flux_d, flux_q, zero, angles};
        const std::vector<int> cyclic{0, 0, 0, 1};
        fill(store, "current_table", "id", axes, cyclic, [&](const double* p) { return id(p, p[3]); });
        fill(store, "current_table", "iq", axes, cyclic, [&](const double* p) { return iq(p, p[3]); });
        fill(store, "current_table", "i0", axes, cyclic, [](const double* p) { return 2000.0 * p[2] + p[0]; });
    } else {
        const std::vector<Axis> axes{flux_d, flux_q, angles};
        fill(store, "current_table", "id", axes, {0, 0, 1}, [&](const double* p) { return id(p, p[2]); });
        fill(store, "current_table", "iq", axes, {0, 0, 1}, [&](const double* p) { return iq(p, p[2]); });
    }
    fill(store, "harmonic_torque", "torque_ibeta", {phases, angles, amplitudes}, {1, 1, 0},
         [&](const double* p) { return fields.torque(p[0], p[1], p[2]); });
}

void put_linear(const Fields& fields, Store& store) {
    const Axis positions = evenly(0.0, 0.064, 31);
    const auto as_angle = [](double x) { return x / 0.064 * 90.0; };
    fill(store, "mag_flux", "flux", {positions, three}, {1, 0},
         [&](const double* p) { return fields.flux(0.0, 0.0, as_angle(p[0]), p[1]); });
    fill(store, "inductance", "inductance", {amplitudes, positions, nine}, {0, 1, 0},
         [&](const double* p) { return fields.inductance(p[0], 20.0, as_angle(p[1]), p[2]); });
    fill(store, "distance_force", "force", {phases, positions, amplitudes}, {1, 1, 0},
         [&](const double* p) { return fields.torque(p[0], as_angle(p[1]), p[2]); });
    fill(store, "distance_force", "attractive_force", {phases, positions, amplitudes}, {1, 1, 0},
         [&](const double* p) { return 100.0 + fields.torque(p[0], as_angle(p[1]), p[2]); });
}

void put_losses(const SampleMachine& machine, Store& store) {
    const Axis speeds = evenly(0.0, 12000.0, 13);
    if (machine.iron_loss) {
        const Axis loaded = evenly(30.0, 360.0, 12);
        for (const char* category : {"hysloss", "eddyloss"}) {
            kzb_put_int(category, "numMat", 2, store);
            kzb_put_int(category, "matID1", 3, store);
            kzb_put_int(category, "matID2", 7, store);
            for (const char* id : {"3", "7"}) {
                char key[32];
                std::snprintf(key, sizeof key, "%s%s", category, id);
                fill(store, category, key, {speeds, phases, loaded}, {0, 1, 0}, [&](const double* p) {
                    return 1e-6 * p[0] * p[0] * (1.0 + 1e-3 * p[2]) * (1.2 + std::cos(p[1] * M_PI / 180.0)) +
                           1e-3 * p[0];
                });
            }
        }
    }
    const Axis voltages = evenly(0.0, 400.0, 3);
    const Axis carriers = evenly(0.0, 20000.0, 3);
    if (machine.loss_table) {
        fill(store, "loss_table", "iron_loss", {amplitudes, phases, speeds, voltages, carriers}, {0, 1, 0, 0, 0},
             [&](const double* p) { return 1e-6 * p[2] * p[2] + 1e-2 * p[0] + 1e-3 * p[3] + 1e-4 * p[4] + 0.1; });
    }
    if (machine.copper_loss_table) {
        fill(store, "equivalent_resistance_table", "copper_loss", {amplitudes, phases, speeds, voltages, carriers},
             {0, 1, 0, 0, 0}, [&](const double* p) { return 0.01 + 1e-6 * p[2] + 1e-7 * p[0]; });
    }
}

// Two parameters whose output ports stand in the other order.
void put_user_parameters(const Axis& angles, Store& store) {
    kzb_put_int("num_user_specified_parameter", "num_user_specified_parameter", 2, store);
    for (int k = 1; k <= 2; ++k) {
        char category[64];
        char table[64];
        std::snprintf(category, sizeof category, "user_specified_parameter%d", k);
        std::snprintf(table, sizeof table, "user_specified_parameter_table%d", k);
        kzb_put_int(category, "table_id", k, store);
        kzb_put_int(category, "output_port_id", 3 - k, store);
        fill(store, "user_specified_parameter_table", table, {amplitudes, phases, angles}, {0, 1, 1},
             [&](const double* p) { return k * p[0] + std::sin(p[1]) + p[2]; });
    }
}

void put_corrections(Store& store) {
    const Axis betas = evenly(0.0, 360.0, 13);
    const auto factor = [](double base) {
        return [base](const double* p) { return base + 1e-4 * p[0] + 0.01 * std::cos(p[1] * M_PI / 180.0); };
    };
    fill(store, "correction", "mag-flux", {amplitudes, betas}, {0, 1}, factor(0.97));
    fill(store, "correction", "inductance", {amplitudes, betas}, {0, 1}, factor(1.03));
    fill(store, "correction", "torque", {amplitudes, betas}, {0, 1}, factor(0.99));
    fill(store, "correction", "ironloss", {evenly(0.0, 12000.0, 13), amplitudes}, {0, 0},
         [](const double* p) { return 1.1 + 1e-5 * p[0] + 1e-4 * p[1]; });
}

}  // namespace

void make_sample_machine(const SampleMachine& machine, Store& store) {
    const Fields fields(machine);
    const double period = 360.0 / (machine.poles * 0.5);
    const Axis angles = evenly(0.0, period, machine.currents_as_axes ? 13 : 31);
    put_heads(machine, store);
    if (machine.motor_type == 10005) {
        put_linear(fields, store);
        put_losses(machine, store);
    } else if (machine.accuracy_type == 5) {
        put_flux_integral(machine, fields, angles, store);
        put_losses(machine, store);
    } else {
        put_harmonic(machine, fields, angles, store);
        put_ldlq(fields, store);
        put_simple(machine, fields, angles, store);
        put_losses(machine, store);
    }
    if (machine.user_parameters) {
        put_user_parameters(angles, store);
    }
    if (machine.corrections) {
        put_corrections(store);
    }
}

}  // namespace kzb_reference
