#include "models/coil_circuit.h"

#include <algorithm>
#include <array>

#include "circuit/winding_solver.h"
#include "models/coil_solve.h"
#include "models/first_step.h"
#include "models/history.h"

namespace kzb {
namespace {

// Place of `phase` in `values`; its size where there is none.
std::size_t place_of(const std::vector<double>& values, int phase) {
    return phase < 1 ? values.size() : std::min(static_cast<std::size_t>(phase - 1), values.size());
}

}  // namespace

void CoilCircuit::build(int pattern) {
    build_network(pattern, R_base);
    const std::size_t n = network.elements.size();
    // Memory for all of them first: their lengths change together.
    for (std::vector<double>* values : {&current, &current_prev, &current_out, &element_resistance}) {
        values->reserve(n);
    }
    initial_set.reserve(n);
    inductance.reserve(n * n);
    inductance_prev.reserve(n * n);
    element_count = static_cast<int>(n);
    phase_count = element_count;
    for (std::vector<double>* values : {&current, &current_prev, &current_out, &element_resistance}) {
        values->resize(n, 0.0);
    }
    initial_set.resize(n, 0);
    inductance.resize(n * n, 0.0);
    inductance_prev.resize(n * n, 0.0);
    take_resistances();
}

void CoilCircuit::build_network(int pattern, double resistance) {
    network.build(pattern, resistance, 0.0);
    network_R = resistance;
    take_resistances();
}

void CoilCircuit::take_resistances() {
    for (std::size_t k = 0; k < element_resistance.size(); ++k) {
        element_resistance[k] = network.resistance_of(static_cast<int>(k) + 1);
    }
}

void CoilCircuit::set_initial_current(int phase, double ampere) {
    const std::size_t k = place_of(current_prev, phase);
    if (k < current_prev.size()) {
        current_prev[k] = ampere;
        initial_set[k] = 1;
    }
}

void CoilCircuit::set_initial_time(double second) {
    time_prev = second;
    initial_time_set = true;
}

void CoilCircuit::set_current(int phase, double ampere) {
    const std::size_t k = place_of(current, phase);
    if (k < current.size()) {
        current_prev[k] = current[k];
        current[k] = ampere;
        current_out[k] = ampere;
    }
}

double CoilCircuit::of_phase(const std::vector<double>& values, int phase) {
    const std::size_t k = place_of(values, phase);
    return k < values.size() ? values[k] : 0.0;
}

double CoilCircuit::inductance_element(int row, int column) const {
    const bool inside = row >= 1 && row <= phase_count && column >= 1 && column <= phase_count;
    return inside ? inductance[static_cast<std::size_t>((row - 1) * phase_count + (column - 1))] : 0.0;
}

void CoilCircuit::begin(double new_time, double coil_factor) {
    time = new_time;
    R = coil_factor * R_base;
    if (!(R == network_R)) {
        build_network(network.pattern, R);
    }
    if (first_step()) {
        forget_unset_start(initial_set, current_prev, initial_time_set, time_prev);
    }
}

void CoilCircuit::keep_first_inductance() {
    if (first_step()) {
        inductance_prev = inductance;
    }
}

void CoilCircuit::solve(const double* voltages, const double* signals) {
    if (!solve_driven(voltages, signals)) {
        solve_network(voltages, signals);
    }
}

bool CoilCircuit::solve_driven(const double* voltages, const double* signals) {
    const std::size_t n = current.size();
    const bool all_driven = std::all_of(signals, signals + n, [](double signal) { return signal > 0.0; });
    std::array<double, most_solved_coils> solved{};
    if (!all_driven || !solve_driven_coils({n, dt(), voltages, element_resistance.data(), inductance.data(),
                                            inductance_prev.data(), current_prev.data()},
                                           solved.data())) {
        return false;
    }
    // What leaves a first terminal is the current of its one coil.
    std::copy_n(solved.begin(), n, current.begin());
    std::copy_n(solved.begin(), n, current_out.begin());
    return true;
}

void CoilCircuit::solve_network(const double* voltages, const double* signals) {
    constexpr std::size_t most_ports = 2 * most_coils;
    static constexpr std::array<double, most_coils> zeros{};
    std::array<double, most_ports> port_voltages{};
    std::array<bool, most_ports> driven{};
    driven.fill(true);
    const std::size_t n = current.size();
    for (std::size_t k = 0; k < n; ++k) {
        port_voltages[k] = voltages[k];
        driven[k] = signals[k] > 0.0;
    }
    WindingInput in;
    in.voltages = port_voltages.data();
    in.flags = driven.data();
    in.dt = dt();
    in.flux = in.previous_flux = in.leakage = zeros.data();
    in.coupling = inductance.data();
    in.previous_coupling = inductance_prev.data();
    in.current = current_prev.data();
    in.resistance = element_resistance.data();
    WindingSolver solver(network);
    solver.solve_flux_form(in);
    std::copy_n(solver.solution(), n, current.begin());
    std::copy_n(solver.terminal_currents(), n, current_out.begin());
}

double CoilCircuit::row_times(const std::vector<double>& m, std::size_t row, const std::vector<double>& i) const {
    double sum = 0.0;
    for (std::size_t c = 0; c < i.size(); ++c) {
        sum += m[row * i.size() + c] * i[c];
    }
    return sum;
}

void CoilCircuit::accept() {
    shift_history(current, current_prev);
    shift_history(inductance, inductance_prev);
    shift_history(time, time_prev);
    count_step(step_count);
}

}  // namespace kzb
