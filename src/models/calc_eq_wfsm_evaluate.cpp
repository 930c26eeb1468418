// Calc_Eq_wfsm driven by currents: everything that one set of currents and a position give, without a solve.
#include "models/calc_eq_wfsm.h"
#include "models/calc_eq_wfsm_frame.h"

namespace kzb {

void Calc_Eq_wfsm::evaluate(const double* currents, double position, double time) {
    if (store_ == nullptr) {
        return;
    }
    WfsmStep& s = step_;
    s.current = {currents[0], currents[1], currents[2], currents[3]};
    s.position = position;
    s.time = time;
    const PhaseAngles at(electrical_angle(position));
    update_scales();
    evaluate_lookups(at);
    if (losses_.iron_loss_on) {
        split_loss_current(at);
    }
    s.terminal_current = s.current;
    take_polar_current(at);
    s.torque = compute_torque(at);
}

void Calc_Eq_wfsm::evaluate_lookups(const PhaseAngles& at) {
    WfsmStep& s = step_;
    if (s.step_count == 1) {
        first_step();
    }
    const Point point = axis_vector(s.current, s.position, at);
    update_flux(point);
    update_inductance(point);
    update_user_parameters(point);
    const DqPair dq = wfsm::park(wfsm::armature(s.current), at);
    update_dq_inductance(amplitude_of(dq.d, dq.q), wfsm::current_phase(dq.d, dq.q), s.current[3],
                         table_angle(s.position), at);
    s.field_inductance = s.inductance[3 * 4 + 3];
    write_inductance_row();
}

// The voltage is that of the evaluation before. As no evaluation has a voltage of its own, the loss current stays 0.0
// while the losses themselves are told: kept.
void Calc_Eq_wfsm::split_loss_current(const PhaseAngles& at) {
    WfsmStep& s = step_;
    s.terminal_current = s.current;
    const DqPair i = wfsm::park(wfsm::armature(s.terminal_current), at);
    const double rpm = speed_rpm(s.time - s.time_previous);
    const LossCurrent loss = compute_iron_loss(i, s.current[3], rpm, losses_.loss_resistance * losses_.loss_current);
    losses_.loss_resistance = loss.resistance;
    losses_.loss_current = loss.amplitude;
    const Phases phases = wfsm::inverse_park({0.0, sqrt_three_halves * loss.amplitude}, at);
    for (std::size_t k = 0; k < 3; ++k) {
        s.current[k] = s.terminal_current[k] - phases[k];
    }
}

}  // namespace kzb
