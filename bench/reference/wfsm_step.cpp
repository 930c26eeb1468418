// One time step: flux and inductance at the estimate, network solve, relaxation, until the currents settle.
#include <algorithm>
#include <cmath>

#include "bench/reference/wfsm.h"

namespace kzb_reference {

void Wfsm::first_step() {
    for (int k = 0; k < 4; ++k) {
        if (!initial_set[k]) {
            current_prev[k] = 0.0;
        }
    }
    if (!initial_set[4]) {
        time_prev = 0.0;
    }
    Iamp_prev = 0.0;
    beta_prev = 0.0;
    if (initial_set[0] || initial_set[1] || initial_set[2]) {
        const WfsmAxes dq = wfsm_park(current_prev, position);  // the angle itself, without the pole pairs
        Iamp_prev = wfsm_amplitude(dq);
        beta_prev = wfsm_current_phase(dq.d, dq.q);
    }
}

bool Wfsm::step(const double* v, double at_position, double at_time, const double* signal) {
    position = at_position;
    time = at_time;
    if (step_count == 1) {
        first_step();
    }
    const double angle = position * 180.0 / 3.141592653589793 - angle_offset;
    const double dt = time - time_prev;
    double resistance[4] = {R, R, R, Rf};
    if (temperature_correction) {
        for (int k = 0; k < 3; ++k) {
            resistance[k] = R * (1.0 + (coil_temperature - base_coil_temperature) * coil_coefficient * 1e-6);
        }
        resistance[3] =
            Rf * (1.0 + (field_coil_temperature - base_field_coil_temperature) * field_coil_coefficient * 1e-6);
    }
    bool flags[5] = {};
    for (int k = 0; k < 4; ++k) {
        flags[k] = signal[k] != 0.0 || std::isnan(signal[k]);
    }
    if (!iterate(v, dt, resistance, flags)) {
        return false;
    }
    terminal_current[3] = current[3];
    if (!iron_loss_on) {
        std::copy_n(current, 3, terminal_current);
    } else if (!iron_step(v, dt)) {
        return false;
    }
    const WfsmAxes dq = wfsm_park(terminal_current, theta());
    Id = dq.d;
    Iq = dq.q;
    Iamp = wfsm_amplitude(dq);
    beta = wfsm_current_phase(dq.d, dq.q);
    const Vector at =
        axis_vector(terminal_current[0], terminal_current[1], terminal_current[2], terminal_current[3], position);
    update_flux(at);
    update_inductance(at);
    update_user_parameters(at);
    torque = compute_torque(current, position);
    update_dq_inductance(Iamp, beta, terminal_current[3], angle, theta());
    field_inductance = inductance[15];
    return true;
}

bool Wfsm::iterate(const double* v, double dt, const double* resistance, const bool* flags) {
    static constexpr double leakage[4] = {};
    double x[4] = {};
    double best[4] = {};
    std::copy_n(current_prev, 4, x);
    std::copy_n(x, 4, best);  // kept where no pass has an error below the largest double
    double best_error = no_value;
    for (int nr_i = 0; nr_i < max_iterations; ++nr_i) {
        ++passes;
        update_scales();
        const Vector at = axis_vector(x[0], x[1], x[2], x[3], position);
        update_flux(at);
        update_inductance(at);
        double e[4] = {};
        for (int k = 0; k < 4; ++k) {
            e[k] = flux[k] - flux_prev[k];
        }
        std::vector<double> solution;
        if (dt <= 0.0 || step_count == 1) {
            std::copy_n(current_prev, 4, current);
            std::fill_n(e, 4, 0.0);
        } else {
            for (double& each : e) {
                each /= dt;
            }
            solution = wfsm_solve_emf_form(network, v, dt, e, inductance, x, resistance, leakage, flags);
            const std::size_t coils = network.elements.size();
            for (std::size_t k = 0; k < coils; ++k) {
                if (!std::isfinite(solution[k])) {
                    return false;
                }
            }
            std::copy_n(solution.begin(), coils, current);
        }
        std::copy_n(e, 4, induced);
        if (network.terminals.size() == 5) {
            wfsm_inverse_park(wfsm_park(current, theta()), theta(), current);
        } else if (network.terminals.size() == 6) {
            if (!solution.empty()) {
                neutral_voltage = solution[network.elements.size() + 4];
            }
        } else {
            std::fill_n(induced, 4, 0.0);
        }
        double error = 0.0;
        for (int k = 0; k < 4; ++k) {
            const double delta = current[k] - x[k];
            current[k] = x[k] + acceleration * delta;
            error += std::fabs(delta);
        }
        if (error < best_error) {
            best_error = error;
            std::copy_n(current, 4, best);
        }
        if (nr_i >= 1) {
            if (nr_i + 1 == max_iterations) {
                std::copy_n(best, 4, current);
                break;
            }
            if (error < tolerance) {
                break;
            }
        }
        std::copy_n(current, 4, x);
    }
    return true;
}

void Wfsm::update() {
    time_prev = time;
    position_prev = position;
    Iamp_prev = Iamp;
    beta_prev = beta;
    std::copy_n(terminal_current, 4, current_prev);
    std::copy_n(flux, 4, flux_prev);
    ++step_count;
}

}  // namespace kzb_reference
