// Steps of Calc_Eq_im_transient with tables: what belongs to a state, and its derivative. The caller integrates.
//
//   state      x = i1a, i1b, psi2a, psi2b;   driven by currents x = psi2a, psi2b
//   di1/dt     = Msr Rr / (Lsig Lr^2) psi2 - (Msr Rr Mrs / (Lsig Lr^2) + Rt / Lsig) i1 - j w Msr / (Lsig Lr) psi2
//                + v / Lsig,   sigma = 1 - Msr Mrs / (Ls Lr),  Lsig = sigma Ls,  Rt = Rs + R_equivalent
//   dpsi2/dt   = Rr Mrs / Lr i1 - Rr / Lr psi2 + j w psi2
#include "models/calc_eq_im.h"

namespace kzb {

void Calc_Eq_im_transient::observe_state(double time, double displacement, const double* x) {
    if (store_ == nullptr) {
        return;
    }
    start_step(time, displacement);
    // First of all, so that the tables see the new current.
    step_.primary_current = amplitude_of(x[0], x[1]);
    update_parameters();
    apply_first_step_rule();
    const double dt = step_.time - step_.time_prev;
    const ImInductances& l = step_.inductances;
    Currents currents;
    if (dt > 0.0) {
        currents.primary = {x[0], x[1]};
        currents.secondary = {(x[2] - l.m_Msr * x[0]) / l.m_Lr, (x[3] - l.m_Msr * x[1]) / l.m_Lr};
    }
    take_currents(currents, nullptr);
    const Currents out = currents_out();
    update_losses(out);
    step_.secondary_flux_d = x[2];
    step_.secondary_flux_q = x[3];
    update_total_flux(out);
}

void Calc_Eq_im_transient::voltage_derivative(const double* voltages, double time, double displacement, double* out,
                                              const double* x) {
    out[0] = out[1] = out[2] = out[3] = 0.0;
    if (store_ == nullptr) {
        return;
    }
    start_step(time, displacement);
    angles_.push(time, step_.theta);
    step_.primary_current = amplitude_of(x[0], x[1]);
    update_parameters();
    const double w = electrical_speed();
    const TwoAxis v = terminal_voltage(voltages);

    const ImInductances& l = step_.inductances;
    const double rr = resistances_.Rr;
    const double sigma = 1.0 - l.m_Msr * l.m_Mrs / (l.m_Ls * l.m_Lr);
    const double l_sigma = sigma * l.m_Ls;
    const double rt = resistances_.Rs + resistances_.R_equivalent;
    const double l_sigma_lr2 = l_sigma * (l.m_Lr * l.m_Lr);
    const double of_flux = l.m_Msr * rr / l_sigma_lr2;
    const double of_current = l.m_Msr * rr * l.m_Mrs / l_sigma_lr2 + rt / l_sigma;
    const double of_turning_flux = l.m_Msr * w / (l_sigma * l.m_Lr);
    out[0] = of_flux * x[2] - of_current * x[0] + of_turning_flux * x[3] + v.alpha / l_sigma;
    out[1] = of_flux * x[3] - of_current * x[1] - of_turning_flux * x[2] + v.beta / l_sigma;
    const double coupling = rr * l.m_Mrs / l.m_Lr;
    const double decay = rr / l.m_Lr;
    out[2] = coupling * x[0] - decay * x[2] - w * x[3];
    out[3] = coupling * x[1] + w * x[2] - decay * x[3];
    debug_.derivative_row({step_.time, resistances_.Rs, rr, l.m_Ls, l.m_Msr, l.m_Mrs, l.m_Lr, x[0], x[1], x[2], x[3],
                           v.alpha, v.beta, w});
}

void Calc_Eq_im_transient::current_derivative(const double* currents, double time, double displacement, double* out,
                                              const double* x) {
    out[0] = out[1] = out[2] = out[3] = 0.0;
    if (store_ == nullptr) {
        return;
    }
    start_step(time, displacement);
    angles_.push(time, step_.theta);
    const TwoAxis i1 = clarke(currents[0], currents[1], currents[2]);
    step_.primary_current = peak_of(i1);
    update_parameters();
    const double w = electrical_speed();

    const ImInductances& l = step_.inductances;
    const double rr = resistances_.Rr;
    const double coupling = rr * l.m_Mrs / l.m_Lr;
    const double decay = rr / l.m_Lr;
    out[0] = coupling * i1.alpha - decay * x[0] - w * x[1];
    out[1] = coupling * i1.beta + w * x[0] - decay * x[1];
    debug_.current_derivative_row(
        {step_.time, resistances_.Rs, rr, l.m_Ls, l.m_Msr, l.m_Mrs, l.m_Lr, i1.alpha, i1.beta, x[0], x[1], w});
}

}  // namespace kzb
