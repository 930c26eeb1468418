// The calls of one sample: units, dispatch by mode, and the results.
#include <cmath>

#include "bench/reference/wfsm.h"

namespace kzb_reference {

void Wfsm::set_initial_current(int phase, double value) {
    current_prev[phase - 1] = value;
    initial_set[phase - 1] = true;
}

void Wfsm::set_initial_time(double value) {
    time_prev = value;
    initial_set[4] = true;
}

void Wfsm::set_initial_displacement(double value) {
    initial_displacement_ = value / 180.0 * M_PI;
}

int Wfsm::set_time(double value) {
    if (value < 0.0) {
        return 180032;
    }
    time_ = value;
    return 0;
}

void Wfsm::set_displacement(double value) {
    displacement_ = value / 180.0 * M_PI + initial_displacement_;
}

void Wfsm::execute() {
    if (bound_) {  // without a store there is nothing to step
        step(voltage_, displacement_, time_, signal_);
    }
}

double Wfsm::get_torque() {
    if (calc_mode_ == 2 && bound_) {
        evaluate(current_, displacement_, time_);
    }
    return torque;
}

double Wfsm::get_induced_voltage(int phase) const {
    const double dt = time - time_prev;
    if (dt <= 0.0 || phase < 1 || phase > 4) {
        return 0.0;
    }
    return (flux[phase - 1] - flux_prev[phase - 1]) / dt;
}

double Wfsm::get_d_axis_inductance() const {
    return connection_type == 1 ? d_inductance * 0.3333333333333333 : d_inductance;
}

double Wfsm::get_q_axis_inductance() const {
    return connection_type == 1 ? q_inductance * 0.3333333333333333 : q_inductance;
}

double Wfsm::get_coil_factor() const {
    return (coil_temperature - base_coil_temperature) * coil_coefficient * 1e-6 + 1.0;
}

double Wfsm::get_field_coil_factor() const {
    return (field_coil_temperature - base_field_coil_temperature) * field_coil_coefficient * 1e-6 + 1.0;
}

double Wfsm::get_field_resistance() const {
    return temperature_correction ? Rf * get_field_coil_factor() : Rf;
}

double Wfsm::get_copperloss() const {
    double sum = 0.0;
    for (int k = 1; k <= 4; ++k) {
        sum += get_resistance() * (get_current(k) * get_current(k));
    }
    return sum;
}

}  // namespace kzb_reference
