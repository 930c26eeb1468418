#include "bench/reference/sr_machine.h"

namespace kzb_reference {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

double degrees(double position) {
    return position * 180.0 / 3.141592653589793;
}

}  // namespace

SrMachine::SrMachine(Store& store, int calc_mode, Lookup lookup)
    : CoilMachine(store, kzb_get_int("control", "motor_type", store) - 10010 + 3, calc_mode, lookup) {
    correction_flux = control_value("coef_flux", 1.0);
    correction_magnet = control_value("coef_magnet", 1.0);
    correction_steel = control_value("coef_material", 1.0);
    correction_inductance = control_value("coef_inductance", 1.0);
    correction_torque = control_value("coef_torque", 1.0);
}

void SrMachine::set_data() {
    bind_resistance("RU");
    build_network(R_base);
    size_vectors();
    flux.resize(at(element_count));
    flux_prev.resize(at(element_count));
    bind_corrections();
}

void SrMachine::execute() {
    if (element_count == 0) {
        return;  // not bound
    }
    position = displacement_;
    time = time_;
    R = coil_factor() * R_base;
    build_network(R);
    read_element_resistance();
    const double ang = degrees(position);
    if (step_count == 1) {
        prepare_first_step();
        torque = 0.0;
    }
    const int n = element_count;
    for (int r = 0; r < n; ++r) {
        const double i = current_prev[at(r)] * turns2;
        for (int c = 0; c < n; ++c) {
            inductance[at(r * n + c)] =
                look("inductance", "inductance", std::fabs(i), ang, n * c + r) * correction_inductance;
        }
    }
    if (step_count == 1) {
        inductance_prev = inductance;
    }
    const double dt = time - time_prev;
    if (dt > 0.0) {
        solve(voltage_, dt);
    }
    if (dt <= 0.0) {
        current = current_prev;
        flux_prev = flux;
    }
    update_torque(ang);
    update_flux(ang);
}

void SrMachine::update_torque(double ang) {
    const int n = element_count;
    double sum = 0.0;
    for (int k = 0; k < n; ++k) {
        const double j = current_out[at(k)] * turns2;
        const int poles = kzb_get_int("control", "number_of_poles", store_);
        const double a = k * (360.0 / poles) / n + ang;
        sum += look("torque", "torque_ibeta", a, j, 0.0);
    }
    torque = sum * correction_torque;
}

void SrMachine::update_flux(double ang) {
    const int n = element_count;
    for (int r = 0; r < n; ++r) {
        double sum = 0.0;
        for (int c = 0; c < n; ++c) {
            sum += look("inductance", "inductance", std::fabs(current[at(r)] * turns2), ang, n * c + r, "Linear") *
                   correction_inductance * current[at(c)];
        }
        flux[at(r)] = sum;
    }
}

double SrMachine::evaluate_torque() {
    if (element_count == 0) {
        return torque;  // not bound
    }
    const double ang = degrees(position);
    update_torque(ang);
    update_flux(ang);
    return torque;
}

double SrMachine::get_torque() {
    if (calc_mode_ == 1) {
        return torque;
    }
    return evaluate_torque();
}

void SrMachine::update() {
    current_prev = current;
    inductance_prev = inductance;
    time_prev = time;
    flux_prev = flux;
    step_count += 1;
}

double SrMachine::get_induced_voltage(int phase) const {
    if (!has_phase(phase)) {
        return 180031.0;
    }
    const double dt = time - time_prev;
    if (!(dt > 0.0) || at(phase - 1) >= flux.size()) {
        return 0.0;
    }
    return (flux[at(phase - 1)] - flux_prev[at(phase - 1)]) / dt;
}

double SrMachine::get_inductance(int row, int column) {
    if (!has_phase(row) || !has_phase(column)) {
        return 180031.0;
    }
    update();
    const std::size_t index = at((row - 1) * element_count + column - 1);
    return index < inductance.size() ? inductance[index] : 0.0;
}

}  // namespace kzb_reference
