// The state form of the machine with tables: outputs of a state, and its derivative under voltages or currents.
#include <cmath>

#include "bench/reference/im.h"

namespace kzb_reference {

void Induction::observe_state(double at_time, double displacement, const double* x) {
    time = at_time;
    theta = number_of_poles * 0.5 * displacement;
    primary_current = std::sqrt((x[0] * x[0] + x[1] * x[1]) * 2.0 / 3.0);
    parameter_update();
    first_step_rule();
    const double dt = time - time_prev;
    TwoAxis i1;
    TwoAxis i2;
    if (dt > 0.0) {
        i1.a = x[0];
        i1.b = x[1];
        i2.a = (x[2] - m_Msr * x[0]) / m_Lr;
        i2.b = (x[3] - m_Msr * x[1]) / m_Lr;
    }
    output_stage(i1, i2, Path::explicit_state);
    secondary_flux_d = x[2];
    secondary_flux_q = x[3];
}

void Induction::voltage_derivative(double at_time, double displacement, double* out, const double* x) {
    time = at_time;
    theta = number_of_poles * 0.5 * displacement;
    push_angle(at_time, displacement);
    primary_current = std::sqrt((x[0] * x[0] + x[1] * x[1]) * 2.0 / 3.0);
    parameter_update();
    const double w = electrical_speed();
    const TwoAxis v = source_voltage();
    const double sigma = 1.0 - m_Msr * m_Mrs / (m_Ls * m_Lr);
    const double Lsig = sigma * m_Ls;
    const double Rt = Rs + R_equivalent;
    const double Lr_squared = m_Lr * m_Lr;
    out[0] = (m_Msr * Rr / (Lsig * Lr_squared)) * x[2] - (m_Msr * Rr * m_Mrs / (Lsig * Lr_squared) + Rt / Lsig) * x[0] +
             (m_Msr * w / (Lsig * m_Lr)) * x[3] + v.a / Lsig;
    out[1] = (m_Msr * Rr / (Lsig * Lr_squared)) * x[3] - (m_Msr * Rr * m_Mrs / (Lsig * Lr_squared) + Rt / Lsig) * x[1] -
             (m_Msr * w / (Lsig * m_Lr)) * x[2] + v.b / Lsig;
    out[2] = (Rr * m_Mrs / m_Lr) * x[0] - (Rr / m_Lr) * x[2] - w * x[3];
    out[3] = (Rr * m_Mrs / m_Lr) * x[1] + w * x[2] - (Rr / m_Lr) * x[3];
}

void Induction::current_derivative(const double* currents, double at_time, double displacement, double* out,
                                   const double* x) {
    time = at_time;
    theta = number_of_poles * 0.5 * displacement;
    push_angle(at_time, displacement);
    const TwoAxis i1 = clarke(currents);
    primary_current = std::sqrt(2.0 / 3.0) * std::sqrt(i1.a * i1.a + i1.b * i1.b);
    parameter_update();
    const double w = electrical_speed();
    out[0] = (Rr * m_Mrs / m_Lr) * i1.a - (Rr / m_Lr) * x[0] - w * x[1];
    out[1] = (Rr * m_Mrs / m_Lr) * i1.b + w * x[0] - (Rr / m_Lr) * x[1];
    out[2] = 0.0;
    out[3] = 0.0;
}

}  // namespace kzb_reference
