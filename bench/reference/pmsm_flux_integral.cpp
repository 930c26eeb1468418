// Kind 3: the flux linkage in d, q, zero is integrated by the caller, the tables give the currents of a flux.
//
//   d(psi_d)/dt = v_d - R i_d + w psi_q      d(psi_q)/dt = v_q - R i_q - w psi_d
#include <algorithm>
#include <cmath>

#include "bench/reference/pmsm.h"

namespace kzb_reference {

Dq Pmsm::noload_flux_at(double angle) {
    const double at[1] = {angle};
    Dq flux;
    flux.d = look("flux_table", "fd_noload", at);
    flux.q = look("flux_table", "fq_noload", at);
    flux.zero = look("flux_table", "f0_noload", at);
    return flux;
}

Dq Pmsm::table_current_at(const Dq& flux, double angle) {
    Dq i;
    if (inductance_dim == 5) {
        const double at[4] = {flux.d, flux.q, flux.zero, angle};
        i.d = look("current_table", "id", at) / turns2;
        i.q = look("current_table", "iq", at) / turns2;
        i.zero = look("current_table", "i0", at) / turns2;
    } else {
        const double at[3] = {flux.d, flux.q, angle};
        i.d = look("current_table", "id", at) / turns2;
        i.q = look("current_table", "iq", at) / turns2;
    }
    return i;
}

void Pmsm::flux_derivative(double at_position, double at_time) {
    update_temperature_scale();
    const int on[3] = {static_cast<int>(signal_[0]) != 0, static_cast<int>(signal_[1]) != 0,
                       static_cast<int>(signal_[2]) != 0};
    const int driven = on[0] + on[1] + on[2];
    const double dt = at_time - time_previous;
    const bool valid = at_time > 0.0 && std::fabs(dt) > 1e-12;
    const double theta_e = electrical_angle(at_position);
    const double angle = table_angle_of(at_position);
    const double speed = valid ? (theta_e - electrical_angle(position)) / dt : 0.0;
    update_correction(amplitude_of(current_dq0) * turns2, phase_of(current_dq0));
    Dq loss_current;
    if (ironloss_on) {
        loss_torque(at_position, dt);
        const double loss = eddy_loss + hysteresis_loss;
        const double square = loss_filter_output_d * loss_filter_output_d + loss_filter_output_q * loss_filter_output_q;
        if (square > 0.0 && loss > 0.0) {
            const double k = square / loss;
            loss_current.d = loss_filter_output_d / k;
            loss_current.q = loss_filter_output_q / k;
        }
    }
    double v[3] = {voltage_[0], voltage_[1], voltage_[2]};
    if (driven == 2) {
        const int open = on[0] == 0 ? 0 : (on[1] == 0 ? 1 : 2);
        v[open] = valid ? (coil_flux[open] - coil_flux_previous[open]) / dt + zero_voltage : 0.0;
    }
    Dq vdq;
    if (connection == 1) {
        const double line[3] = {v[0] - v[1], v[1] - v[2], v[2] - v[0]};
        vdq = park(line, theta_e);
    } else {
        vdq = park(v, theta_e);
    }
    const AxisInductance leak = leakage_forms(theta_e);
    Dq flux{state_[0] - leak.d * current_dq0.d, state_[1] - leak.q * current_dq0.q, state_[2]};
    const double s = flux_multiplier * correction_magnet * magnet_factor;
    if (!(std::fabs(s - 1.0) < 1e-8 && std::fabs(inductance_multiplier - 1.0) < 1e-8)) {
        const Dq noload = noload_flux_at(angle);
        flux.d = (flux.d - noload.d * s) / inductance_multiplier + noload.d;
        flux.q = (flux.q - noload.q * s) / inductance_multiplier + noload.q;
        flux.zero = (flux.zero - noload.zero * s) / inductance_multiplier + noload.zero;
        double phases[3];
        inverse_park_with_zero(noload, theta_e, phases);
        for (int k = 0; k < 3; ++k) {
            flux_temperature_delta[k] = (temperature_scale - 1.0) * phases[k];
        }
    }
    const double zero_before = state_[2];
    if (driven >= 2) {
        table_current_dq0 = table_current_at(flux, angle);
    }
    if (connection != 1 && inductance_dim == 4) {
        zero_voltage = 0.0;
        const double at[3] = {amplitude_of(table_current_dq0) * turns2, phase_of(table_current_dq0), angle};
        flux.zero = look("flux_table", "f0_ibeta", at);
        if (valid) {
            double i[3];
            inverse_park(table_current_dq0, theta_e, i);
            zero_voltage =
                ((v[0] + v[1] + v[2] - (i[0] * resistance[0] + i[1] * resistance[1] + i[2] * resistance[2])) -
                 std::sqrt(3.0) * (flux.zero - zero_before) / dt) /
                3.0;
        }
    }
    if (driven >= 2) {
        const double r = resistance[0];
        current_dq0.d = table_current_dq0.d + loss_current.d;
        current_dq0.q = table_current_dq0.q + loss_current.q;
        current_dq0.zero = table_current_dq0.zero;
        flux_derivative_dq0.d = vdq.d - r * current_dq0.d + speed * state_[1];
        flux_derivative_dq0.q = vdq.q - current_dq0.q * r - speed * state_[0];
        flux_derivative_dq0.zero =
            connection == 1 ? vdq.zero - current_dq0.zero * r : (valid ? (flux.zero - zero_before) / dt : 0.0);
    } else {
        const Dq noload = noload_flux_at(angle);
        noload_flux[0] = noload.d * s;
        noload_flux[1] = noload.q * s;
        noload_flux[2] = noload.zero * s;
        flux = {noload_flux[0], noload_flux[1], noload_flux[2]};
        flux_derivative_dq0 = {};
        if (valid) {
            flux_derivative_dq0.d = (noload_flux[0] - noload_flux_previous[0]) / dt;
            flux_derivative_dq0.q = (noload_flux[1] - noload_flux_previous[1]) / dt;
            flux_derivative_dq0.zero = (noload_flux[2] - noload_flux_previous[2]) / dt;
        }
        current_dq0 = {};
        table_current_dq0 = {};
    }
    if (ironloss_on) {
        const double induced_d = flux_derivative_dq0.d - speed * state_[1];
        const double induced_q = flux_derivative_dq0.q + speed * state_[0];
        double first = 0.0;
        if (loss_current_filter_d.time == 0.0) {
            const double at[1] = {angle};
            first = s * look("flux_table", "fd_noload", at) * speed;
        }
        loss_filter_output_d = loss_current_filter_d.step(at_time, induced_d, first, speed);
        loss_filter_output_q = loss_current_filter_q.step(at_time, induced_q, 0.0, speed);
    }
    derivative_[0] = flux_derivative_dq0.d;
    derivative_[1] = flux_derivative_dq0.q;
    derivative_[2] = flux_derivative_dq0.zero;
    air_gap_flux_dq0 = flux;
    time = at_time;
    position = at_position;
}

void Pmsm::flux_update(double at_time, double at_position) {
    double used_position = position;
    if (at_time == 0.0) {
        used_position = at_position;
        update_temperature_scale();
        update_correction(0.0, 0.0);
        const double s = flux_multiplier * correction_magnet * magnet_factor;
        const Dq noload = noload_flux_at(table_angle_of(used_position));
        noload_flux[0] = noload.d * s;
        noload_flux[1] = noload.q * s;
        noload_flux[2] = noload.zero * s;
        std::copy_n(noload_flux, 3, state_);
    }
    const double theta_e = electrical_angle(used_position);
    const double angle = table_angle_of(used_position);
    std::copy_n(current, 3, current_previous);
    if (connection == 1) {
        inverse_park_with_zero(current_dq0, theta_e, current_output);
        inverse_park_with_zero(table_current_dq0, theta_e, current);
    } else {
        inverse_park(current_dq0, theta_e, current_output);
        inverse_park(table_current_dq0, theta_e, current);
    }
    current_phase = phase_of(table_current_dq0);
    current_amplitude = amplitude_of(table_current_dq0);
    const double dt = at_time - time_previous;
    const double tq = temperature_torque(theta_e, table_current_dq0.q);
    update_torque(angle, theta_e, tq, dt);
    inverse_park_with_zero({state_[0], state_[1], state_[2]}, theta_e, coil_flux);
    for (int k = 0; k < 3; ++k) {
        coil_flux[k] -= current_output[k] * leakage_inductance[k];
        total_flux[k] = coil_flux[k];
    }
    if (std::fabs(temperature_scale * flux_multiplier - 1.0) >= 1e-8 ||
        std::fabs(inductance_multiplier - 1.0) >= 1e-8) {
        for (int k = 0; k < 3; ++k) {
            induced_voltage[k] = (coil_flux[k] - total_flux_previous[k]) / dt;
        }
    } else {
        inverse_park_with_zero(flux_derivative_dq0, theta_e, induced_voltage);
    }
    update_copper_loss();
    update_user_parameters(angle);
    const AxisInductance l = dq_from_flux(current_amplitude, current_phase, angle, theta_e);
    const AxisInductance leak = leakage_forms(theta_e);
    d_inductance = l.d + leak.d;
    q_inductance = l.q + leak.q;
    current_phase = phase_of(current_dq0);
    current_amplitude = amplitude_of(current_dq0);
}

Pmsm::AxisInductance Pmsm::dq_of_flux_integral(double beta, double angle) {
    const double at[1] = {angle};
    const double noload_q = look("flux_table", "fq_noload", at);
    const double noload_d = look("flux_table", "fd_noload", at);
    const bool near_plus = std::fabs(beta - 90.0) < 5.0;
    const bool near_minus = std::fabs(beta + 90.0) < 5.0;
    double lq = q_inductance_kept;
    if (step_count == 1) {
        lq = 0.0;
    } else if (!near_plus && !near_minus) {
        lq = (air_gap_flux_dq0.q - noload_q) / (turns2 * table_current_dq0.q);
    }
    q_inductance_kept = lq;

    double f = air_gap_flux_dq0.d;
    if ((std::fabs(f) < std::fabs(noload_d) && near_plus) || near_minus) {
        f = noload_d;
    }
    const double dh = 0.01 * std::fabs(f);
    const auto id_at = [&](double d) {
        if (inductance_dim == 5) {
            const double point[4] = {d, air_gap_flux_dq0.q, air_gap_flux_dq0.zero, angle};
            return look("current_table", "id", point);
        }
        const double point[3] = {d, air_gap_flux_dq0.q, angle};
        return look("current_table", "id", point);
    };
    const double above = id_at(air_gap_flux_dq0.d + dh);
    const double below = id_at(air_gap_flux_dq0.d - dh);
    const double difference = above - below;
    const double id = current_dq0.d;
    double ld = d_inductance_kept;
    if (!(std::fabs(id) < 1e-8 || std::fabs(difference) < 1e-8 || std::fabs(difference / id) < 0.001)) {
        ld = 2.0 * dh / difference * inductance_multiplier;
        if (std::fabs(d_inductance_kept) > 1e-8 && std::fabs(id) > 1e-8 &&
            std::fabs((id - current_dq0_previous.d) / id) < 0.01 &&
            std::fabs((ld - d_inductance_kept) / d_inductance_kept) >= 0.01) {
            ld = d_inductance_kept;
        }
    }
    d_inductance_kept = ld;
    return {ld, lq * inductance_multiplier};
}

}  // namespace kzb_reference
