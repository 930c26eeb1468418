// What Calc_Eq_im_transient makes of a step's two-axis currents: phase currents and flux linkages.
#include <cmath>

#include "models/calc_eq_im.h"

namespace kzb {

// `voltages` of the debug row; null where the step is not driven by voltages of its own.
void Calc_Eq_im_transient::take_currents(const Currents& currents, const double* voltages) {
    const Phases primary = inverse_clarke(currents.primary);
    const Phases secondary = two_axis_to_rotor(currents.secondary, at_theta_);
    step_.current_latest = {primary[0], primary[1], primary[2], secondary[0], secondary[1], secondary[2]};
    step_.current_out = step_.current_latest;
    write_step_rows(voltages);
    step_.secondary_current = peak_of(currents.secondary);
}

// From the phase currents, whoever has set them last.
Calc_Eq_im_transient::Currents Calc_Eq_im_transient::currents_out() const {
    const SixCurrents& i = step_.current_out;
    return {clarke(i[0], i[1], i[2]), rotor_to_two_axis(i[3], i[4], i[5], at_theta_)};
}

// Formed in the frame at `flux_angle` and turned back: the stationary frame, though the names say d and q, as
// established.
void Calc_Eq_im_transient::update_secondary_flux(const Currents& currents) {
    const double c = std::cos(step_.flux_angle);
    const double s = std::sin(step_.flux_angle);
    const TwoAxis& i1 = currents.primary;
    const TwoAxis& i2 = currents.secondary;
    const double i1_d = c * i1.alpha + s * i1.beta;
    const double i1_q = c * i1.beta - s * i1.alpha;
    const double i2_d = c * i2.alpha + s * i2.beta;
    const double i2_q = c * i2.beta - s * i2.alpha;
    const ImInductances& l = step_.inductances;
    const double psi_d = l.m_Msr * i1_d + l.m_Lr * i2_d;
    const double psi_q = l.m_Msr * i1_q + l.m_Lr * i2_q;
    step_.secondary_flux_d = c * psi_d - s * psi_q;
    step_.secondary_flux_q = s * psi_d + c * psi_q;
}

// The primary flux takes m_Mrs here, where the voltage equation has m_Msr, as established.
void Calc_Eq_im_transient::update_total_flux(const Currents& currents) {
    const ImInductances& l = step_.inductances;
    step_.flux_total = inverse_clarke({l.m_Ls * currents.primary.alpha + l.m_Mrs * currents.secondary.alpha,
                                       l.m_Ls * currents.primary.beta + l.m_Mrs * currents.secondary.beta});
    step_.voltage_induced = Phases{};
    if (step_.time != step_.time_prev) {
        for (std::size_t k = 0; k < 3; ++k) {
            step_.voltage_induced[k] =
                (step_.flux_total[k] - step_.flux_total_prev[k]) / (step_.time - step_.time_prev);
        }
    }
}

}  // namespace kzb
