// The calls of one sample: units, dispatch by kind, and the results.
#include <algorithm>
#include <cmath>

#include "bench/reference/pmsm.h"

namespace kzb_reference {

void Pmsm::set_initial_current(int phase, double value) {
    current_previous[phase - 1] = value;
    initial_current_set[phase - 1] = true;
}

void Pmsm::set_initial_time(double value) {
    time_previous = value;
    initial_time_set = true;
}

void Pmsm::set_initial_displacement(double value) {
    initial_displacement_ = motor_type_ == 10000 ? value / 180.0 * M_PI : value;
    if (motor_type_ == 10000 && application == 3) {
        position = initial_displacement_;
    }
}

int Pmsm::set_time(double value) {
    if (value < 0.0) {
        return 180032;
    }
    if (application != 3) {
        time = value;
    }
    previous_time_ = time_;
    time_ = value;
    return 0;
}

void Pmsm::set_displacement(double value) {
    displacement_ = motor_type_ == 10000 ? value / 180.0 * M_PI + initial_displacement_ : value + initial_displacement_;
    if (motor_type_ == 10005 || application != 3) {
        position = displacement_;
    }
}

void Pmsm::set_current(int phase, double value) {
    current_previous[phase - 1] = current[phase - 1];
    current[phase - 1] = value;
}

void Pmsm::execute() {
    if (application != 3) {
        step(voltage_, displacement_, time_, signal_);
        return;
    }
    if (time_ > 0.0) {
        flux_derivative(displacement_, time_);
        for (int k = 0; k < 3; ++k) {
            state_[k] += (time_ - previous_time_) * derivative_[k];
        }
    }
    flux_update(time_, displacement_);
}

double Pmsm::induced_voltage_of(int phase) const {
    const double dt = time - time_previous;
    if (phase < 1 || phase > 3 || step_count < 3 || !(dt > 0.0)) {
        return 0.0;
    }
    const int k = phase - 1;
    if (application == 3) {
        return induced_voltage[k];
    }
    if (application == 1) {
        return (total_flux[k] - total_flux_previous[k]) / dt;
    }
    double now = 0.0;
    double before = 0.0;
    for (int j = 0; j < 3; ++j) {
        now += inductance[3 * k + j] * current[j];
        before += inductance_previous[3 * k + j] * current_previous[j];
    }
    return (now + magnet_flux[k] - before - magnet_flux_previous[k]) / dt;
}

double Pmsm::torque_from_currents() {
    std::copy_n(current, 3, current_output);
    const double dt = time - time_previous;
    const double theta_e = electrical_angle(position);
    const double angle = table_angle_of(position);
    const Dq dq = park(current, theta_e);
    current_amplitude = amplitude_of(dq);
    current_phase = phase_of(dq);
    update_correction(current_amplitude * turns2, current_phase);
    update_resistance(dt);
    update_copper_loss();
    update_flux(theta_e, angle);
    update_inductance(theta_e, angle);
    if (step_count == 1) {
        magnet_temperature_previous = magnet_temperature;
    }
    const double a = 2.0943951023931953;
    const double q = -std::sqrt(2.0 / 3.0) * (std::sin(theta_e) * current[0] + std::sin(theta_e - a) * current[1] +
                                              std::sin(theta_e + a) * current[2]);
    const double tq = temperature_torque(theta_e, q);
    update_torque(angle, theta_e, tq, dt);
    update_force(angle, tq);
    if (ironloss_on) {
        torque -= loss_torque(position, dt);
    }
    update_user_parameters(angle);
    return torque;
}

void Pmsm::dq_inductances_from_currents(double at_position) {
    if (step_count == 1) {
        prepare_first_step();
    }
    update_correction(current_amplitude_previous * turns2, current_phase);
    const double theta_e = electrical_angle(at_position);
    const double angle = table_angle_of(at_position);
    for (int k = 0; k < 3; ++k) {
        if (application == 1) {
            const double* row = inductance_previous + 3 * k;
            const double linked =
                row[0] * current_previous[0] + row[1] * current_previous[1] + row[2] * current_previous[2];
            coil_flux[k] = linked + magnet_flux[k] + flux_temperature_delta[k];
        } else {
            coil_flux[k] = magnet_flux[k];
        }
    }
    if (application == 2) {
        const double at[2] = {current_phase_previous, current_amplitude_previous * turns2};
        d_inductance = look("dq_inductance", "d_inductance", at) * inductance_multiplier;
        q_inductance = look("dq_inductance", "q_inductance", at) * inductance_multiplier;
    }
    update_axis_inductance(theta_e, angle);
}

double Pmsm::get_torque() {
    if (motor_type_ != 10000) {
        return 180034.0;
    }
    if (calc_mode_ == 1) {
        return torque;
    }
    if (calc_mode_ != 2) {
        return 0.0;
    }
    torque_from_currents();
    dq_inductances_from_currents(displacement_);
    return torque;
}

double Pmsm::get_force() {
    return motor_type_ == 10005 ? torque_from_currents() : 180035.0;
}

double Pmsm::get_inductance(int row, int column) const {
    return row == 1 && column == 3 ? inductance[6] : inductance[3 * (row - 1) + column - 1];
}

double Pmsm::get_d_axis_inductance() const {
    return connection == 1 ? d_inductance * 0.3333333333333333 : d_inductance;
}

double Pmsm::get_q_axis_inductance() const {
    return connection == 1 ? q_inductance * 0.3333333333333333 : q_inductance;
}

double Pmsm::get_mag_flux(int phase) {
    double flux = 0.0;
    if (application == 2) {
        const double a = std::atan(1.0) * 4.0 * 2.0 / 3.0;
        const double theta_e = electrical_angle(position);
        const double angles[3] = {theta_e, theta_e - a, theta_e + a};
        d_flux = kzb_get_double("d_flux", "d_flux", store_);
        flux = std::sqrt(2.0 / 3.0) * d_flux * std::cos(angles[phase - 1]);
    } else if (application == 0) {
        const double at[2] = {table_angle_of(position), static_cast<double>(phase - 1)};
        flux = look("mag_flux", "flux", at, "Spline");
    }
    return flux * flux_multiplier;
}

double Pmsm::get_copperloss() const {
    double sum = 0.0;
    for (int k = 0; k < 3; ++k) {
        sum += resistance[0] * (current_output[k] * current_output[k]);
    }
    return sum;
}

double Pmsm::get_eddyloss() const {
    if (motor_type_ != 10000) {
        return 180039.0;
    }
    return kzb_has_parameter("loss_table", "iron_loss", store_) != 0 ? 0.0 : eddy_loss;
}

double Pmsm::get_hysteresisloss() const {
    if (motor_type_ != 10000) {
        return 180039.0;
    }
    return kzb_has_parameter("loss_table", "iron_loss", store_) != 0 ? 0.0 : hysteresis_loss;
}

double Pmsm::get_ironloss() const {
    if (motor_type_ != 10000) {
        return 180039.0;
    }
    return kzb_has_parameter("loss_table", "iron_loss", store_) != 0 ? eddy_loss : eddy_loss + hysteresis_loss;
}

double Pmsm::get_user_copper_loss() const {
    if (motor_type_ != 10000) {
        return 180039.0;
    }
    return user_copperloss_flag_ ? ac_copper_loss : 0.0;
}

}  // namespace kzb_reference
