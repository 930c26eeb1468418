// Current-driven evaluation of Calc_Eq: the caller states the currents, nothing is solved.
#include "models/calc_eq.h"

namespace kzb {

double Calc_Eq::torque_from_currents() {
    if (store_ == nullptr) {
        return 0.0;
    }
    const double theta_e = electrical_angle(step_.position);
    const double angle = table_angle(step_.position);
    const PhaseAngles at(theta_e);
    const double dt = step_.time - step_.time_previous;
    step_.current_output = step_.current;
    update_polar_current(at);
    update_corrections(step_.current_amplitude * corrections_.turns2, step_.current_phase);
    update_resistance(dt);
    update_copper_loss();
    update_flux(at, angle);
    update_inductance(at, angle);
    if (step_.step_count == 1) {
        temperatures_.magnet_temperature_previous = temperatures_.magnet_temperature;
    }

    const Phases& i = step_.current;
    const double q = -sqrt_two_thirds * (at.s[0] * i[0] + at.s[1] * i[1] + at.s[2] * i[2]);
    const double tq = temperature_torque(theta_e, q);
    update_torque(at, angle, dt, tq);
    update_force(angle, tq);
    reduce_torque_by_iron_loss(dt);
    update_user_parameters(angle);
    return step_.torque;
}

void Calc_Eq::dq_inductances_from_currents(double position) {
    if (store_ == nullptr) {
        return;
    }
    if (step_.step_count == 1) {
        take_start();
    }
    update_corrections(step_.current_amplitude_previous * corrections_.turns2, step_.current_phase);
    update_coil_flux();
    if (machine_.application == ld_lq) {
        update_ld_lq();
    }
    update_dq_inductances(table_angle(position), PhaseAngles(electrical_angle(position)));
}

}  // namespace kzb
