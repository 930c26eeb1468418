#include "bench/reference/coil_machine.h"

namespace kzb_reference {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

}  // namespace

CoilMachine::CoilMachine(Store& store, int coils, int calc_mode, Lookup lookup)
    : store_(store),
      lookup_(lookup),
      coils_(coils),
      calc_mode_(calc_mode),
      voltage_(at(coils), 0.0),
      signal_(at(coils), 1.0) {
    turns2 = control_value("turns_coil2", 0.0);
    base_coil_temperature = control_value("base_coil_temperature", 293.15);
    base_magnet_temperature = control_value("base_magnet_temperature", 293.15);
    coil_temperature_coefficient = control_value("coef_coil_temperature", 3810.0);
    magnet_temperature_coefficient = control_value("coef_magnet_temperature", -0.11);
}

double CoilMachine::control_value(const char* key, double absent) const {
    return kzb_has_parameter("control", key, store_) != 0 ? kzb_get_double("control", key, store_) : absent;
}

double CoilMachine::coil_factor() const {
    if (!temperature_correction) {
        return 1.0;
    }
    return (coil_temperature - base_coil_temperature) * (coil_temperature_coefficient * 1e-6) + 1.0;
}

double CoilMachine::magnet_factor() const {
    if (!temperature_correction) {
        return 1.0;
    }
    return (magnet_temperature - base_magnet_temperature) * (magnet_temperature_coefficient * 0.01) + 1.0;
}

double CoilMachine::look(const char* category, const char* key, double a, double b, double c) {
    const std::string method = interpolation;  // copied for each lookup
    return look(category, key, a, b, c, method.c_str());
}

double CoilMachine::look(const char* category, const char* key, double a, double b, double c, const char* method) {
    const double values[8] = {a, b, c, 0.0, 0.0, 0.0, 0.0, 0.0};
    return lookup_(category, key, values, method, store_);
}

// The calls ---------------------------------------------------------------------------------------------------------

int CoilMachine::set_time(double value) {
    if (value < 0.0) {
        return 180032;
    }
    time = value;
    previous_time_ = time_;
    time_ = value;
    return 0;
}

int CoilMachine::set_displacement(double value) {
    displacement_ = value / 180.0 * M_PI + initial_displacement_;
    position = displacement_;
    return 0;
}

int CoilMachine::set_voltage(int phase, double value) {
    if (!has_phase(phase)) {
        return 180031;
    }
    voltage_[at(phase - 1)] = value;
    return 0;
}

int CoilMachine::set_signal(int phase, int value) {
    if (!has_phase(phase)) {
        return 180031;
    }
    signal_[at(phase - 1)] = value;
    return 0;
}

int CoilMachine::set_current(int phase, double value) {
    if (!has_phase(phase)) {
        return 180031;
    }
    const std::size_t k = at(phase - 1);
    if (k < current.size()) {
        current_prev[k] = current[k];
        current[k] = value;
        current_out[k] = value;
    }
    return 0;
}

int CoilMachine::set_initial_current(int phase, double value) {
    if (!has_phase(phase)) {
        return 180031;
    }
    const std::size_t k = at(phase - 1);
    if (k < current.size()) {
        current_prev[k] = value;
        initial_set[k] = 1;
    }
    return 0;
}

int CoilMachine::set_initial_time(double value) {
    if (value < 0.0) {
        return 180032;
    }
    time_prev = value;
    initial_time_set = true;
    return 0;
}

// Degrees for all three, the linear one included: established so.
int CoilMachine::set_initial_displacement(double value) {
    initial_displacement_ = value / 180.0 * M_PI;
    return 0;
}

double CoilMachine::get_current(int phase) const {
    if (!has_phase(phase)) {
        return 180031.0;
    }
    return at(phase - 1) < current_out.size() ? current_out[at(phase - 1)] : 0.0;
}

double CoilMachine::get_copperloss() const {
    double sum = 0.0;
    for (int k = 1; k <= coils_; ++k) {
        sum += get_resistance() * (get_current(k) * get_current(k));
    }
    return sum;
}

// Binding and the step ----------------------------------------------------------------------------------------------

void CoilMachine::bind_resistance(const char* key) {
    if (R_base == 0.0) {
        R_base = kzb_get_double("parameter", key, store_);
        R = R_base;
    }
}

void CoilMachine::bind_corrections() {
    const double t = kzb_get_double("control", "turns_in_coil", store_);
    if (t == 0.0) {
        turns1 = 1.0;
        turns2 = 1.0;
    } else {
        turns1 = turns1 == 0.0 ? 1.0 : turns1 / t;
        turns2 = turns2 == 0.0 ? 1.0 : turns2 / t;
    }
    correction_flux = turns2 * correction_flux * turns1 * correction_magnet * correction_steel;
    correction_inductance = correction_steel * correction_inductance * turns1;
    correction_torque = correction_magnet * correction_torque * (correction_steel * correction_steel) * turns1;
}

void CoilMachine::build_network(double resistance) {
    network.elements.clear();
    network.terminals.clear();
    network.port_count = 2 * coils_;
    for (int k = 1; k <= coils_; ++k) {
        network.elements.push_back(std::make_shared<Element>(Element{k, coils_ + k, resistance}));
    }
    for (int id = 1; id <= 2 * coils_; ++id) {
        network.terminals.push_back(std::make_shared<Terminal>(Terminal{id}));
    }
    element_count = static_cast<int>(network.elements.size());
}

void CoilMachine::size_vectors() {
    const std::size_t n = at(element_count);
    current.resize(n);
    current_prev.resize(n);
    current_out.resize(n);
    initial_set.resize(n);
    element_resistance.resize(n);
    inductance.resize(n * n);
    inductance_prev.resize(n * n);
}

void CoilMachine::prepare_first_step() {
    for (std::size_t k = 0; k < current_prev.size(); ++k) {
        if (initial_set[k] == 0) {
            current_prev[k] = 0.0;
        }
    }
    if (!initial_time_set) {
        time_prev = 0.0;
    }
}

void CoilMachine::read_element_resistance() {
    for (int k = 0; k < element_count; ++k) {
        element_resistance[at(k)] = network.resistance_of(k + 1);
    }
}

void CoilMachine::solve(const std::vector<double>& port_voltage, double dt) {
    const std::size_t n = at(element_count);
    std::vector<double> source(2 * n, 0.0);
    bool flags[16];
    for (std::size_t k = 0; k < n; ++k) {
        source[k] = port_voltage[k];
        flags[k] = signal_[k] > 0.0;
        flags[n + k] = true;
    }
    const std::vector<double> no_flux(n, 0.0);
    const std::vector<double> no_leakage(n, 0.0);
    WindingSolver solver;
    solver.solve_flux_form(network, source.data(), dt, no_flux.data(), no_flux.data(), inductance.data(),
                           inductance_prev.data(), current_prev.data(), element_resistance.data(), no_leakage.data(),
                           flags);
    for (std::size_t k = 0; k < n; ++k) {
        current[k] = solver.solution()[k];
        current_out[k] = solver.terminal_currents()[k];
    }
}

}  // namespace kzb_reference
