// What a sample shows: currents, losses, torque, fluxes and induced voltages.
#include <cmath>

#include "bench/reference/im.h"

namespace kzb_reference {

namespace {

constexpr const char* tables = "InductionParam_HigherAccuracy";
constexpr double two_pi = 6.283185307179586;

}  // namespace

void Induction::output_stage(const TwoAxis& i1, const TwoAxis& i2, Path path) {
    inverse_clarke(i1, current_latest);
    two_axis_to_rotor(i2, theta, current_latest + 3);
    for (int i = 0; i < 6; ++i) {
        current_out[i] = current_latest[i];
    }
    if (path != Path::explicit_state) {
        primary_current = std::sqrt(2.0 / 3.0) * std::sqrt(i1.a * i1.a + i1.b * i1.b);
    }
    secondary_current = std::sqrt(2.0 / 3.0) * std::sqrt(i2.a * i2.a + i2.b * i2.b);
    iron_loss = compute_iron_loss();
    double primary_squares = 0.0;
    double secondary_squares = 0.0;
    for (int k = 0; k < 3; ++k) {
        primary_squares += current_out[k] * current_out[k];
        secondary_squares += current_out[k + 3] * current_out[k + 3];
    }
    primary_copper_loss = primary_squares * Rs;
    user_copper_loss = primary_squares * R_equivalent;
    secondary_copper_loss = secondary_squares * Rr;
    compute_torque();
    if (path != Path::explicit_state) {
        compute_secondary_flux();
    }
    if (path == Path::current_implicit) {
        return;
    }
    compute_total_flux();
    for (int k = 0; k < 3; ++k) {
        voltage_induced[k] = time == time_prev ? 0.0 : (flux_total[k] - flux_total_prev[k]) / (time - time_prev);
    }
}

double Induction::compute_iron_loss() {
    if (!ironloss_enabled) {
        return 0.0;
    }
    if (kzb_has_parameter("loss_table", "iron_loss", store_) != 0 && use_old_ironloss == 0) {
        const double at[5] = {primary_current, std::fabs(slip_hz()), std::fabs(electrical_speed() / two_pi), dc_voltage,
                              carrier_frequency};
        return look("loss_table", "iron_loss", at);
    }
    if (kzb_has_parameter(tables, "ironloss_table", store_) != 0) {
        const double at[2] = {slip_hz(), primary_current};
        return look(tables, "ironloss_table", at);
    }
    return 0.0;
}

void Induction::compute_torque() {
    if (torque_type == 0) {
        const TwoAxis s = clarke(current_out);
        const TwoAxis r = rotor_to_two_axis(current_out + 3, theta);
        torque = number_of_poles * 0.5 * m_Msr * (r.a * s.b - r.b * s.a);
    } else if (torque_type == 1) {
        const double w = electrical_speed();
        const double f = (w + slip_omega) / two_pi;
        const double P = number_of_poles * 0.5;
        const double wsync = f * two_pi / P;
        const double T = 3.0 / wsync * (secondary_current * secondary_current) * 0.5 * Rr;
        const double s = slip_hz() / f;
        torque = T / s;
    }
    if (ironloss_enabled) {
        const double wm = electrical_speed() / (number_of_poles * 0.5);
        if (wm != 0.0) {
            torque -= iron_loss / wm;
        }
    }
}

void Induction::compute_secondary_flux() {
    const TwoAxis s = clarke(current_out);
    const TwoAxis r = rotor_to_two_axis(current_out + 3, theta);
    const double a = flux_angle;
    const double s_d = std::cos(a) * s.a + std::sin(a) * s.b;
    const double s_q = std::cos(a) * s.b - std::sin(a) * s.a;
    const double r_d = std::cos(a) * r.a + std::sin(a) * r.b;
    const double r_q = std::cos(a) * r.b - std::sin(a) * r.a;
    const double g_d = m_Msr * s_d + m_Lr * r_d;
    const double g_q = m_Msr * s_q + m_Lr * r_q;
    secondary_flux_d = std::cos(a) * g_d - std::sin(a) * g_q;
    secondary_flux_q = std::sin(a) * g_d + std::cos(a) * g_q;
}

void Induction::compute_total_flux() {
    const TwoAxis s = clarke(current_out);
    const TwoAxis r = rotor_to_two_axis(current_out + 3, theta);
    TwoAxis f;
    f.a = m_Ls * s.a + m_Mrs * r.a;
    f.b = m_Ls * s.b + m_Mrs * r.b;
    inverse_clarke(f, flux_total);
}

}  // namespace kzb_reference
