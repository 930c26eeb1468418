// Corrections, temperatures, magnet flux and inductance matrix of one sample, from the tables.
#include <cmath>

#include "bench/reference/pmsm.h"

namespace kzb_reference {

namespace {

const double third_turn = std::atan(1.0) * 4.0 * 2.0 / 3.0;

}  // namespace

double Pmsm::electrical_angle(double mechanical) const {
    return is_linear ? 2.0 * M_PI * (mechanical + angle_offset) / electrical_length
                     : number_of_poles * mechanical * 0.5;
}

double Pmsm::table_angle_of(double mechanical) const {
    return is_linear ? mechanical : mechanical * 180.0 / M_PI - angle_offset;
}

void Pmsm::update_correction(double amplitude, double beta) {
    for (int turn = 0; beta < 0.0 && turn < 1000000; ++turn) {
        beta += 360.0;
    }
    const double at[2] = {amplitude, beta};
    if (kzb_has_parameter("correction", "total-flux", store_) != 0) {
        correction_flux = look("correction", "total-flux", at, "Linear");
        correction_inductance = correction_flux;
    } else {
        if (kzb_has_parameter("correction", "mag-flux", store_) != 0) {
            correction_flux = look("correction", "mag-flux", at, "Linear");
        }
        if (kzb_has_parameter("correction", "inductance", store_) != 0) {
            correction_inductance = look("correction", "inductance", at, "Linear");
        }
    }
    if (kzb_has_parameter("correction", "torque", store_) != 0) {
        correction_torque = look("correction", "torque", at, "Linear");
    }
    flux_multiplier = turns1 * correction_flux * correction_steel;
    inductance_multiplier = correction_steel * correction_inductance * (turns1 * turns1);
    torque_multiplier = correction_torque;
}

void Pmsm::update_temperature_scale() {
    const double t = application == 1 ? (magnet_temperature + magnet_temperature_previous) * 0.5 : magnet_temperature;
    magnet_factor = (t - base_magnet_temperature) * (magnet_coefficient / 100.0) + 1.0;
    temperature_scale = magnet_factor * correction_magnet;
}

void Pmsm::update_resistance(double dt) {
    for (int k = 0; k < 3; ++k) {
        resistance[k] = winding.resistance_of(k + 1);
    }
    if (user_copperloss_on && kzb_has_parameter("equivalent_resistance_table", "copper_loss", store_) != 0) {
        const double rpm = dt == 0.0 ? 0.0 : (position - position_previous) / dt / (2.0 * M_PI) * 60.0;
        const double at[5] = {current_amplitude_previous * turns2, current_phase_previous, std::fabs(rpm), dc_voltage,
                              carrier_frequency};
        ac_resistance = look("equivalent_resistance_table", "copper_loss", at);
        for (double& r : resistance) {
            r += ac_resistance;
        }
    }
    for (double& r : resistance) {
        r *= 1.0 + (coil_temperature - base_coil_temperature) * coil_coefficient * 1e-6;
    }
}

void Pmsm::update_copper_loss() {
    const double square = current_amplitude_previous * current_amplitude_previous;
    ac_copper_loss = ac_resistance * 3.0 * square * 0.5;
    dc_copper_loss = winding.resistance_of(1) * 3.0 * square * 0.5;
}

double Pmsm::harmonic_table(const char* category, const char* key, double angle, double component) {
    if (inductance_dim == 4) {
        const double at[4] = {current_amplitude_previous * turns2, current_phase_previous, angle, component};
        return look(category, key, at);
    }
    const double at[5] = {turns2 * current_previous[0], turns2 * current_previous[1], turns2 * current_previous[2],
                          angle, component};
    return look(category, key, at);
}

void Pmsm::update_flux(double theta_e, double angle) {
    update_temperature_scale();
    if (application == 0) {
        const bool old_name = kzb_get_int("control", "accuracy_type", store_) == 0 && !is_linear &&
                              kzb_get_int("control", "number_of_tables", store_) == 4;
        for (int k = 0; k < 3; ++k) {
            const double at[2] = {angle, static_cast<double>(k)};
            const double p =
                old_name ? look("magflux", "magflux", at, "Spline") : look("mag_flux", "flux", at, "Spline");
            magnet_flux[k] = flux_multiplier * temperature_scale * p;
            flux_temperature_delta[k] = (temperature_scale - 1.0) * flux_multiplier * p;
        }
    } else if (application == 2) {
        const double angles[3] = {theta_e, theta_e - third_turn, theta_e + third_turn};
        for (int k = 0; k < 3; ++k) {
            const double p = std::sqrt(2.0 / 3.0) * d_flux * std::cos(angles[k]);
            magnet_flux[k] = flux_multiplier * temperature_scale * p;
        }
    } else if (application == 1) {
        for (int k = 0; k < 3; ++k) {
            total_flux[k] = harmonic_table("current_flux", "flux", angle, k);
        }
        double ratio = flux_multiplier_previous;
        if (inductance_multiplier_previous != 0.0) {
            ratio = flux_multiplier_previous / inductance_multiplier_previous;
        }
        for (int k = 0; k < 3; ++k) {
            const double* row = inductance_previous + 3 * k;
            const double linked =
                row[0] * current_previous[0] + row[1] * current_previous[1] + row[2] * current_previous[2];
            magnet_flux[k] = flux_multiplier * total_flux[k] - ratio * linked;
            flux_temperature_delta[k] = (temperature_scale - 1.0) * magnet_flux[k];
        }
    }
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
}

void Pmsm::update_inductance(double theta_e, double angle) {
    if (application == 1) {
        for (int t = 0; t < 9; ++t) {
            inductance[3 * (t % 3) + t / 3] =
                inductance_multiplier * harmonic_table("harmonic_inductance", "inductance", angle, t);
        }
    } else if (application == 0) {
        const double amplitude = current_amplitude_previous * turns2;
        const double period = is_linear ? electrical_length : 360.0 / (number_of_poles * 0.5);
        for (int t = 0; t < 9; ++t) {
            const int column = t / 3;
            const double c = current_previous[column];
            const double here[3] = {amplitude, angle, static_cast<double>(t)};
            const double there[3] = {amplitude, angle + period / 2.0, static_cast<double>(t)};
            double value = 0.0;
            if (minimum_current > amplitude) {
                const double sign = c < 0.0 ? -1.0 : 1.0;
                const double w = (minimum_current + sign * amplitude) / (2.0 * minimum_current);
                const double first = look("inductance", "inductance", here);
                const double second = look("inductance", "inductance", there);
                value = w * first + (1.0 - w) * second;
            } else {
                value = look("inductance", "inductance", c < 0.0 ? there : here);
            }
            inductance[3 * (t % 3) + column] = inductance_multiplier * value;
        }
    } else if (application == 2) {
        const double at[2] = {current_phase_previous, current_amplitude_previous * turns2};
        d_inductance = look("dq_inductance", "d_inductance", at) * inductance_multiplier;
        q_inductance = look("dq_inductance", "q_inductance", at) * inductance_multiplier;
        const double angles[3] = {theta_e, theta_e - third_turn, theta_e + third_turn};
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) {
                inductance[3 * r + c] = (2.0 / 3.0) * (d_inductance * std::cos(angles[r]) * std::cos(angles[c]) +
                                                       q_inductance * std::sin(angles[r]) * std::sin(angles[c]));
            }
        }
    }
}

double Pmsm::flux_q(double amplitude, double beta, double angle, double theta_e) {
    double flux[3] = {};
    if (inductance_dim == 4) {
        for (int k = 0; k < 3; ++k) {
            const double at[4] = {amplitude, beta, angle, static_cast<double>(k)};
            flux[k] = look("current_flux", "flux", at);
        }
    } else {
        const double b = beta * M_PI / 180.0;
        const Dq dq{-std::sin(b) * amplitude * std::sqrt(1.5), std::cos(b) * amplitude * std::sqrt(1.5), 0.0};
        double i[3];
        inverse_park(dq, theta_e, i);
        for (int k = 0; k < 3; ++k) {
            const double at[5] = {i[0], i[1], i[2], angle, static_cast<double>(k)};
            flux[k] = look("current_flux", "flux", at);
        }
    }
    return park(flux, theta_e).q;
}

Pmsm::AxisInductance Pmsm::quadratic_forms(double theta_e) const {
    const double angles[3] = {theta_e, theta_e - third_turn, theta_e + third_turn};
    AxisInductance sum;
    for (int c = 0; c < 3; ++c) {
        AxisInductance column;
        for (int r = 0; r < 3; ++r) {
            column.d += std::cos(angles[r]) * inductance[3 * r + c];
            column.q += std::sin(angles[r]) * inductance[3 * r + c];
        }
        sum.d += column.d * std::cos(angles[c]);
        sum.q += column.q * std::sin(angles[c]);
    }
    return {2.0 / 3.0 * sum.d, 2.0 / 3.0 * sum.q};
}

Pmsm::AxisInductance Pmsm::leakage_forms(double theta_e) const {
    const double angles[3] = {theta_e, theta_e - third_turn, theta_e + third_turn};
    double c[3];
    double s[3];
    for (int k = 0; k < 3; ++k) {
        c[k] = std::cos(angles[k]);
        s[k] = std::sin(angles[k]);
    }
    const double* l = leakage_inductance;
    return {2.0 / 3.0 * (l[0] * (c[0] * c[0]) + l[1] * (c[1] * c[1]) + l[2] * (c[2] * c[2])),
            2.0 / 3.0 * (l[0] * (s[0] * s[0]) + l[1] * (s[1] * s[1]) + l[2] * (s[2] * s[2]))};
}

Pmsm::AxisInductance Pmsm::dq_from_flux(double amplitude, double beta, double angle, double theta_e) {
    if (application == 3) {
        return dq_of_flux_integral(beta, angle);
    }
    const double root = std::sqrt(1.5);
    const double f0 = flux_q(0.0, beta, angle, theta_e);
    double lq = 0.0;
    if (amplitude < 1e-6) {
        lq = 0.0;
    } else if (std::fabs(beta - 90.0) < 5.0 || std::fabs(beta + 90.0) < 5.0) {
        const double a = std::cos((beta + 10.0) * M_PI / 180.0) * amplitude * root;
        const double b = std::cos((beta - 10.0) * M_PI / 180.0) * amplitude * root;
        const double below = (flux_q(amplitude, beta - 10.0, angle, theta_e) - f0) / b;
        const double above = (flux_q(amplitude, beta + 10.0, angle, theta_e) - f0) / a;
        lq = (below + above) * 0.5;
    } else {
        const double flux = -std::sqrt(2.0 / 3.0) *
                            (std::sin(theta_e) * total_flux[0] + std::sin(theta_e - third_turn) * total_flux[1] +
                             std::sin(theta_e + third_turn) * total_flux[2]);
        lq = (flux - f0) / (std::cos(beta * M_PI / 180.0) * amplitude * root);
    }
    return {quadratic_forms(theta_e).d, lq * inductance_multiplier};
}

void Pmsm::update_axis_inductance(double theta_e, double angle) {
    AxisInductance l{d_inductance, q_inductance};
    if (application == 0) {
        l = quadratic_forms(theta_e);
    } else if (application == 1 && inductance_dim == 4) {
        l = dq_from_flux(current_amplitude_previous * turns2, current_phase_previous, angle, theta_e);
    } else if (application == 1) {
        const double i[3] = {turns2 * current_previous[0], turns2 * current_previous[1], turns2 * current_previous[2]};
        double amplitude = 0.0;
        double beta = 0.0;
        if (std::fabs(i[0]) >= 1e-6 || std::fabs(i[1]) >= 1e-6 || std::fabs(i[2]) >= 1e-6) {
            const Dq dq = park(i, theta_e);
            amplitude = amplitude_of(dq);
            beta = phase_of(dq);
        }
        l = dq_from_flux(amplitude, beta, angle, theta_e);
    }
    const AxisInductance leak = leakage_forms(theta_e);
    d_inductance = l.d + leak.d;
    q_inductance = l.q + leak.q;
}

}  // namespace kzb_reference
