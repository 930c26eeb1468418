// Kind 3 of Calc_Eq after the integration: phase currents, torque, fluxes and voltages that belong to the new flux.
//
//   psi_uvw = inverse Park of the state - L_leakage i,   v_induced from the flux's change or from its derivative
//
// At time 0.0 the state becomes the flux of the machine without current.
#include "models/calc_eq.h"
#include "models/flux_inputs.h"

namespace kzb {

Dq0 Calc_Eq::noload_flux_at(double angle) {
    const double d = tables_.fd_noload.at(*store_, method(), &angle, 1);
    const double q = tables_.fq_noload.at(*store_, method(), &angle, 1);
    const double zero = tables_.f0_noload.at(*store_, method(), &angle, 1);
    return {d, q, zero};
}

double Calc_Eq::noload_scale() const {
    return corrections_.flux_multiplier * corrections_.correction_magnet * magnet_factor_of_step();
}

Dq0 Calc_Eq::scaled_noload_flux(double angle) {
    Dq0 flux = noload_flux_at(angle);
    const double scale = noload_scale();
    for (double& x : flux) {
        x *= scale;
    }
    return flux;
}

Phases Calc_Eq::phases_by_connection(const Dq0& x, const PhaseAngles& at) const {
    return machine_.connection == connection_delta ? inverse_park(x, at) : inverse_park_dq(x[0], x[1], at);
}

void Calc_Eq::flux_update(double time, double position, double* state) {
    if (store_ == nullptr) {
        return;
    }
    FluxIntegralState& s = integral_;
    if (time == 0.0) {
        update_corrections(0.0, 0.0);
        s.noload_flux = scaled_noload_flux(table_angle(position));
        state[0] = s.noload_flux[0];
        state[1] = s.noload_flux[1];
        state[2] = s.noload_flux[2];
    } else {
        position = step_.position;
    }
    const double theta_e = electrical_angle(position);
    const double angle = table_angle(position);
    const PhaseAngles at(theta_e);
    const double dt = time - step_.time_previous;

    step_.current_output = phases_by_connection(s.current_dq0, at);
    step_.current_previous = step_.current;
    step_.current = phases_by_connection(s.table_current_dq0, at);
    const Dq0& i = s.table_current_dq0;
    step_.current_amplitude = amplitude_of(i[0], i[1]);
    step_.current_phase = phase_of(i[0], i[1]);
    update_torque(at, angle, dt, temperature_torque(theta_e, i[1]));
    take_fluxes_of_state(state, at, dt);

    update_copper_loss();
    update_user_parameters(angle);
    const DqPair l = dq_from_flux(step_.current_amplitude, step_.current_phase, angle, at);
    const DqPair leak = leakage_dq(at);
    step_.d_inductance = l.d + leak.d;
    step_.q_inductance = l.q + leak.q;
    step_.current_amplitude = amplitude_of(s.current_dq0[0], s.current_dq0[1]);
    step_.current_phase = phase_of(s.current_dq0[0], s.current_dq0[1]);
}

void Calc_Eq::take_fluxes_of_state(const double* state, const PhaseAngles& at, double dt) {
    const Phases flux = inverse_park({state[0], state[1], state[2]}, at);
    const bool corrected =
        deviates(temperature_scale() * corrections_.flux_multiplier) || deviates(corrections_.inductance_multiplier);
    const Phases of_derivative = inverse_park(integral_.flux_derivative_dq0, at);
    for (std::size_t k = 0; k < 3; ++k) {
        step_.coil_flux[k] = flux[k] - step_.current_output[k] * machine_.leakage_inductance[k];
        step_.total_flux[k] = step_.coil_flux[k];
        step_.induced_voltage[k] =
            corrected ? (step_.coil_flux[k] - step_.total_flux_previous[k]) / dt : of_derivative[k];
    }
}

}  // namespace kzb
