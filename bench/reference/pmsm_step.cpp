// One time step of kinds 0, 1 and 2: flux, inductance, network solve, torque, losses; and its acceptance.
#include <algorithm>
#include <cmath>

#include "bench/reference/pmsm.h"

namespace kzb_reference {

void Pmsm::prepare_first_step() {
    for (int k = 0; k < 3; ++k) {
        if (!initial_current_set[k]) {
            current_previous[k] = 0.0;
        }
    }
    current_amplitude = 0.0;
    current_phase = 0.0;
    if (!initial_time_set) {
        time_previous = 0.0;
    }
    if (application == 1) {
        magnet_temperature_previous = magnet_temperature;
    }
}

bool Pmsm::step(const double* v, double at_position, double at_time, double* signal) {
    if (kzb_has_category("CorrectionTable", store_) != 0) {
        return false;
    }
    time = at_time;
    if (step_count == 1) {
        prepare_first_step();
    }
    const double dt = time - time_previous;
    const double theta_e = electrical_angle(at_position);
    const double angle = table_angle_of(at_position);
    position = at_position;
    update_resistance(dt);
    update_copper_loss();
    update_correction(current_amplitude_previous * turns2, current_phase_previous);
    if (step_count == 1) {
        flux_multiplier_previous = flux_multiplier;
        inductance_multiplier_previous = inductance_multiplier;
    }
    update_flux(theta_e, angle);
    if (step_count == 1) {
        std::copy_n(magnet_flux, 3, magnet_flux_previous);
        std::copy_n(total_flux, 3, total_flux_previous);
        std::copy_n(coil_flux, 3, coil_flux_previous);
        std::copy_n(noload_flux, 3, noload_flux_previous);
    }
    update_inductance(theta_e, angle);
    if (dt > 0.0 && time_previous - time_older > 0.0) {
        for (int k = 0; k < 3; ++k) {
            signal[k] = signal[k] != 0.0 ? 1.0 : 0.0;
        }
        if (!solve(v, signal, dt, theta_e)) {
            return false;
        }
    } else {
        std::copy_n(current_previous, 3, current);
    }
    std::copy_n(current, 3, current_output);
    const Dq dq = park(current, theta_e);
    current_amplitude = amplitude_of(dq);
    current_phase = phase_of(dq);
    const double tq = temperature_torque(theta_e, dq.q);
    update_torque(angle, theta_e, tq, dt);
    update_force(angle, tq);
    if (ironloss_on) {
        torque -= loss_torque(position, dt);
    }
    update_axis_inductance(theta_e, angle);
    update_user_parameters(angle);
    return true;
}

void Pmsm::lagged_voltage(double dt, double* e) const {
    const double dt1 = time_previous - time_older;
    double ratio = flux_multiplier_previous;
    if (inductance_multiplier_previous != 0.0) {
        ratio = flux_multiplier_previous / inductance_multiplier_previous;
    }
    for (int k = 0; k < 3; ++k) {
        const double* row = inductance_previous + 3 * k;
        const double linked = row[0] * (current_previous[0] - current_older[0]) +
                              row[1] * (current_previous[1] - current_older[1]) +
                              row[2] * (current_previous[2] - current_older[2]);
        double s = flux_multiplier * total_flux[k] - flux_multiplier_previous * total_flux_previous[k] - ratio * linked;
        s *= temperature_scale;
        e[k] = dt / dt1 > 1.0 && time > 0.0 ? dt1 * induced_voltage_previous[k] / dt : s / dt1;
    }
}

bool Pmsm::solve(const double* v, const double* signal, double dt, double theta_e) {
    const bool flags[3] = {signal[0] != 0.0, signal[1] != 0.0, signal[2] != 0.0};
    double e[3] = {};
    WindingSolver solver;
    if (application == 1) {
        lagged_voltage(dt, e);
        solver.solve_emf_form(winding, v, dt, e, inductance, current_previous, resistance, leakage_inductance, flags);
    } else {
        solver.solve_flux_form(winding, v, dt, magnet_flux, magnet_flux_previous, inductance, inductance_previous,
                               current_previous, resistance, leakage_inductance, flags);
    }
    const std::vector<double>& x = solver.solution();
    const std::size_t elements = winding.elements.size();
    for (std::size_t k = 0; k < elements; ++k) {
        if (!std::isfinite(x[k])) {
            return false;
        }
    }
    for (std::size_t k = 0; k < elements; ++k) {
        current[k] = x[k];
    }
    const std::size_t terminals = winding.terminals.size();
    if (application == 1) {
        if (terminals == 3 && inductance_dim == 4) {
            const Dq dq = park(current, theta_e);
            inverse_park(dq, theta_e, current);
        }
        std::copy_n(e, 3, induced_voltage);
        if (terminals == 4) {
            neutral_voltage = x[6];
        }
    } else if (terminals == 3) {
        for (int k = 0; k < 3; ++k) {
            induced_voltage[k] = (magnet_flux[k] - magnet_flux_previous[k]) / dt;
        }
    } else if (terminals == 4) {
        neutral_voltage = x[6];
        for (int k = 0; k < 3; ++k) {
            const int from = winding.elements[static_cast<std::size_t>(k)]->from;
            induced_voltage[k] = ((1.0 - signal[k]) * x[static_cast<std::size_t>(3 + from - 1)] + signal[k] * v[k]) -
                                 neutral_voltage - current[k] * resistance[k];
        }
    } else {
        std::fill_n(induced_voltage, 3, 0.0);
    }
    return true;
}

double Pmsm::temperature_torque(double theta_e, double q) const {
    const double sign = temperature_scale - 1.0 > 0.0 ? 1.0 : -1.0;
    // the mechanical-to-electrical conversion acts on an electrical angle here: established so
    double m = amplitude_of(park(flux_temperature_delta, electrical_angle(theta_e)));
    if (!(m > 1e-12)) {
        m = 0.0;
    }
    double tq = 0.0;
    if (is_linear) {
        tq = -(m * sign * q) * (2.0 * M_PI);
        if (electrical_length != 0.0) {
            tq /= electrical_length;
        }
    } else {
        tq = sign * m * number_of_poles * -0.5 * q;
    }
    return application == 3 ? tq : tq / correction_flux;
}

void Pmsm::update_torque(double angle, double theta_e, double tq, double dt) {
    const double g = torque_multiplier;
    if (torque_dim == 3) {
        const double at[3] = {current_phase, angle, current_amplitude * turns2};
        torque = (look(torque_category.c_str(), torque_table.c_str(), at) * correction_steel - tq) * g;
    } else if (torque_dim == 4) {
        const double at[4] = {turns2 * current[0], turns2 * current[1], angle, turns2 * current[2]};
        torque = (look(torque_category.c_str(), torque_table.c_str(), at) * correction_steel - tq) * g;
    } else if (application == 2) {
        torque = ldlq_torque(theta_e);
    } else if (dt > 0.0) {
        double gradient = 0.0;
        if (position != position_previous) {
            const double* i = current;
            const double* m = magnet_flux;
            coenergy =
                -(((i[1] * i[1] * inductance[4] + i[0] * i[0] * inductance[0] + i[2] * i[2] * inductance[8]) * 0.5) /
                      correction_inductance +
                  (i[0] * m[0] + i[1] * m[1] + i[2] * m[2]) / correction_flux);
            gradient = (coenergy - coenergy_previous) / (position - position_previous);
        }
        torque = (gradient - tq) * g;
    }
}

double Pmsm::ldlq_torque(double theta_e) {
    const double amplitude = current_amplitude * turns2;
    const double i = amplitude * std::sqrt(1.5);
    const double at[2] = {current_phase, amplitude};
    const double s = inductance_multiplier / turns1 / turns1 / correction_inductance;
    const AxisInductance leak = leakage_forms(theta_e);
    const double ld = look("dq_inductance", "d_inductance", at) * s + leak.d;
    const double lq = look("dq_inductance", "q_inductance", at) * s + leak.q;
    const double beta = current_phase * M_PI / 180.0;
    return (std::sin(2.0 * beta) * (lq - ld) * 0.5 * (i * i) + std::cos(beta) * i * magnet_factor *
                                                                   (flux_multiplier / turns1 / correction_flux) *
                                                                   correction_magnet * d_flux) *
           number_of_poles * torque_multiplier * 0.5;
}

void Pmsm::update_force(double angle, double tq) {
    if (!is_linear || kzb_has_parameter("distance_force", "attractive_force", store_) == 0) {
        return;
    }
    if (torque_dim == 3) {
        const double at[3] = {current_phase, angle, current_amplitude * turns2};
        force = (look("distance_force", "attractive_force", at) * correction_steel - tq) * torque_multiplier;
    } else if (torque_dim == 4) {
        const double at[4] = {turns2 * current[0], turns2 * current[1], angle, turns2 * current[2]};
        force = (look("distance_force", "attractive_force", at) * correction_steel - tq) * torque_multiplier;
    }
}

void Pmsm::update() {
    std::copy_n(current_previous, 3, current_older);
    std::copy_n(current_output, 3, current_previous);
    std::copy_n(magnet_flux, 3, magnet_flux_previous);
    std::copy_n(total_flux, 3, total_flux_previous);
    std::copy_n(coil_flux, 3, coil_flux_previous);
    std::copy_n(noload_flux, 3, noload_flux_previous);
    ++step_count;
    std::copy_n(inductance, 9, inductance_previous);
    coenergy_previous = coenergy;
    position_previous = position;
    time_older = time_previous;
    time_previous = time;
    current_amplitude_previous = current_amplitude;
    current_phase_previous = current_phase;
    flux_multiplier_previous = flux_multiplier;
    inductance_multiplier_previous = inductance_multiplier;
    std::copy_n(induced_voltage, 3, induced_voltage_previous);
    magnet_temperature_previous = magnet_temperature;
    neutral_voltage = 0.0;
    current_dq0_previous = current_dq0;
}

}  // namespace kzb_reference
