// Debug rows of Calc_Eq, written at the end of a step.
#include "diagnostics/number_text.h"
#include "models/calc_eq.h"
#include "models/flux_inputs.h"

namespace kzb {

void Calc_Eq::write_step_rows(const double* voltages, double dt) {
    if (!debug_.on()) {
        return;
    }
    const PmsmStep& s = step_;
    const bool has_voltage = machine_.application == harmonic && dt > 0.0 && s.time_previous - s.time_older > 0.0;
    const Phases e = has_voltage ? lagged_voltage(dt) : Phases{};
    const Phases& m = s.magnet_flux;
    debug_.flux.row({s.time, m[0], m[1], m[2], e[0], e[1], e[2]});
    const Matrix3& l = s.inductance;
    debug_.inductance.row({s.time, l[0], l[1], l[2], l[3], l[4], l[5], l[6], l[7], l[8], s.resistance[0]});
    // Six fields under a header of four names, as established.
    debug_.current_polar.row(
        {s.time, s.current_amplitude, s.current_phase, s.position, s.current_amplitude, s.current_phase});
    const Phases& i = s.current_output;
    debug_.current_voltage.row({s.time, i[0], i[1], i[2], voltages[0], voltages[1], voltages[2], s.neutral_voltage});
    debug_.loss_table.row({0.0, losses_.ac_resistance, element_resistance(0), s.current_amplitude, s.current_phase,
                           speed_rpm(s.position, dt), losses_.dc_voltage, losses_.carrier_frequency});
}

void Calc_Eq::write_iron_loss_row(double loss, double omega, double loss_torque) {
    if (!debug_.loss_table.is_open()) {
        return;
    }
    std::string line = "TotalLoss, omega, LossTorque";
    for (const double field : {loss, omega, loss_torque}) {
        line += ", ";
        append_scientific(line, field, 10, 5);
    }
    line += '\n';
    debug_.loss_table.write(line);
}

// Terms in the order of the header's names.
void Calc_Eq::write_flux_integral_row(const FluxInputs& in, const Dq0& v, double loss, const DqPair& loss_part,
                                      const Dq0& table, const double* derivative) {
    if (!debug_.on()) {
        return;
    }
    const FluxIntegralState& s = integral_;
    const double r = step_.resistance[0];
    const double w_fq = in.omega * in.state[1];
    const double w_fd = in.omega * in.state[0];
    const double fields[] = {loss,
                             derivative[0] - w_fq,
                             derivative[1] + w_fd,
                             s.filtered_d,
                             s.filtered_q,
                             v[0],
                             v[1],
                             r * s.current_dq0[0],
                             s.current_dq0[1] * r,
                             w_fq,
                             w_fd,
                             table[0],
                             table[1],
                             loss_part.d,
                             loss_part.q,
                             in.voltages[0],
                             in.voltages[1],
                             in.voltages[2],
                             in.theta_e,
                             in.state[0],
                             in.state[1],
                             in.omega * 100.0 * 0.5 / pi};
    debug_.flux_integral_row(in.time, fields, static_cast<int>(sizeof fields / sizeof fields[0]));
}

}  // namespace kzb
