#include "bench/reference/solenoid_machine.h"

namespace kzb_reference {

void SolenoidMachine::set_data() {
    bind_resistance("RA");
    build_network(R_base);
    size_vectors();
    for (std::vector<double>* each : {&current_out_prev, &magnet_flux, &magnet_flux_prev, &flux_temperature_delta,
                                      &flux_temperature_delta_prev, &voltage}) {
        each->resize(1);
    }
    bind_corrections();
}

int SolenoidMachine::set_displacement(double value) {
    displacement_ = value + initial_displacement_;
    position = displacement_;
    return 0;
}

void SolenoidMachine::update_magnet_flux() {
    const std::size_t n = magnet_flux.size();
    for (std::size_t k = 0; k < n; ++k) {
        double f = look("distance_flux", "flux", position, static_cast<double>(k), 0.0, "Spline");
        magnet_flux[k] = magnet_factor() * f * correction_flux;
        f = look("distance_flux", "flux", position, static_cast<double>(k), 0.0, "Spline");
        flux_temperature_delta[k] = (1.0 - magnet_factor()) * f * correction_flux;
    }
}

void SolenoidMachine::update_inductance() {
    double s = 0.0;
    for (const double i : current_prev) {
        s += i;
    }
    const std::size_t n = inductance.size();
    for (std::size_t k = 0; k < n; ++k) {
        inductance[k] = look("inductance", "inductance", std::fabs(s * turns2), position, static_cast<double>(k)) *
                        correction_inductance;
    }
}

void SolenoidMachine::update_force() {
    const double i = current_out[0];
    const double dx = position - position_prev;
    double temperature_term = 0.0;
    if (dx != 0.0) {
        temperature_term =
            ((2.0 * i - current_out_prev[0]) * flux_temperature_delta[0] - i * flux_temperature_delta_prev[0]) / dx;
    }
    force = look("distance_force", "force", position, i * turns2, 0.0) * correction_torque - temperature_term;
    coil_flux = look("inductance", "inductance", std::fabs(current[0] * turns2), position, 0.0, "Linear") *
                    correction_inductance * current[0] +
                magnet_factor() * look("distance_flux", "flux", position, 0.0, 0.0, "Linear") * correction_flux;
}

void SolenoidMachine::execute() {
    if (element_count == 0) {
        return;  // not bound
    }
    const double d = voltage_[0] - voltage[0];
    R = coil_factor() * R_base;
    build_network(R);
    read_element_resistance();
    time = time_;
    position = displacement_;
    if (step_count == 1) {
        prepare_first_step();
    }
    update_magnet_flux();
    if (step_count == 1) {
        magnet_flux_prev = magnet_flux;
        flux_temperature_delta_prev = flux_temperature_delta;
    }
    update_inductance();
    if (step_count == 1) {
        inductance_prev = inductance;
    }
    const double dt = time - time_prev;
    if (dt > 0.0) {
        solve({d}, dt);
        voltage[0] = (magnet_flux[0] - magnet_flux_prev[0]) / dt;
    }
    if (dt <= 0.0) {
        current = current_prev;
        current_out = current_out_prev;
        coil_flux_prev = coil_flux;
    }
    update_force();
}

double SolenoidMachine::evaluate_force() {
    if (current_out.empty()) {
        return force;
    }
    update_force();
    return force;
}

void SolenoidMachine::update() {
    current_prev = current;
    current_out_prev = current_out;
    magnet_flux_prev = magnet_flux;
    flux_temperature_delta_prev = flux_temperature_delta;
    inductance_prev = inductance;
    step_count += 1;
    time_prev = time;
    position_prev = position;
    coil_flux_prev = coil_flux;
}

double SolenoidMachine::get_voltage(int phase) const {
    if (!has_phase(phase)) {
        return 180031.0;
    }
    return voltage.empty() ? 0.0 : voltage[0];
}

double SolenoidMachine::get_induced_voltage(int phase) const {
    if (!has_phase(phase)) {
        return 180031.0;
    }
    const double dt = time - time_prev;
    return dt > 0.0 ? (coil_flux - coil_flux_prev) / dt : 0.0;
}

double SolenoidMachine::get_inductance(int row, int column) {
    if (!has_phase(row) || !has_phase(column)) {
        return 180031.0;
    }
    update();
    return inductance.empty() ? 0.0 : inductance[0];
}

double SolenoidMachine::get_mag_flux(int phase) const {
    if (phase < 1 || static_cast<std::size_t>(phase) > magnet_flux.size()) {
        return 180042.0;
    }
    return magnet_flux[static_cast<std::size_t>(phase - 1)];
}

double SolenoidMachine::get_upper_limit_displacement() const {
    return kzb_get_double("parameter", "DispLimitMax", store_);
}

double SolenoidMachine::get_lower_limit_displacement() const {
    return kzb_get_double("parameter", "DispLimitMin", store_);
}

}  // namespace kzb_reference
