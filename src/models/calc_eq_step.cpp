// One voltage-driven sample of Calc_Eq, kinds 0 to 2.
//
//   v = R i + L_l di/dt + d/dt (L i + psi_magnet), discretised over dt = time - time_previous with the tables taken at
//   the previous current, so that one linear solve of the winding network gives the currents.
//
// Kind 1 takes the motional voltage from the flux of the last two accepted steps and so lags by one step.
#include <cmath>

#include "circuit/winding_solver.h"
#include "models/calc_eq.h"
#include "models/first_step.h"

namespace kzb {

bool Calc_Eq::step(double v_u, double v_v, double v_w, double position, double time, double signal_u, double signal_v,
                   double signal_w, int& error) {
    error = 0;
    if (store_ == nullptr) {
        return false;
    }
    // A file corrected by the faulty older method is not stepped at all.
    if (tables_.facts(*store_).corrected_by_old_method) {
        error = error_old_correction;
        return false;
    }
    step_.time = time;
    const bool first = step_.step_count == 1;
    if (first) {
        take_start();
        if (machine_.application == harmonic) {
            temperatures_.magnet_temperature_previous = temperatures_.magnet_temperature;
        }
    }
    const double theta_e = electrical_angle(position);
    const double angle = table_angle(position);
    const PhaseAngles at(theta_e);
    step_.position = position;
    const double dt = step_.time - step_.time_previous;

    update_resistance(dt);
    update_copper_loss();
    update_corrections(step_.current_amplitude_previous * corrections_.turns2, step_.current_phase_previous);
    if (first) {
        take_first_multipliers();
    }
    update_flux(at, angle);
    update_coil_flux();
    if (first) {
        take_first_fluxes();
    }
    update_inductance(at, angle);

    const double voltages[3] = {v_u, v_v, v_w};
    if (dt > 0.0 && step_.time_previous - step_.time_older > 0.0) {
        const bool driven[3] = {signal_u != 0.0, signal_v != 0.0, signal_w != 0.0};
        if (!solve_currents(dt, voltages, driven, at, error)) {
            return false;
        }
    } else {
        step_.current = step_.current_previous;
    }

    step_.current_output = step_.current;
    const double q = update_polar_current(at);
    const double tq = temperature_torque(theta_e, q);
    update_torque(at, angle, dt, tq);
    update_force(angle, tq);
    reduce_torque_by_iron_loss(dt);
    update_dq_inductances(angle, at);
    update_user_parameters(angle);
    write_step_rows(voltages, dt);
    return true;
}

void Calc_Eq::take_start() {
    forget_unset_start(step_.initial_current_set, step_.current_previous, step_.initial_time_set, step_.time_previous);
    step_.current_amplitude = 0.0;
    step_.current_phase = 0.0;
}

void Calc_Eq::take_first_multipliers() {
    corrections_.flux_multiplier_previous = corrections_.flux_multiplier;
    corrections_.inductance_multiplier_previous = corrections_.inductance_multiplier;
}

void Calc_Eq::take_first_fluxes() {
    step_.magnet_flux_previous = step_.magnet_flux;
    step_.total_flux_previous = step_.total_flux;
    step_.coil_flux_previous = step_.coil_flux;
    integral_.noload_flux_previous = integral_.noload_flux;
}

// Voltage that the motion induces (kind 1), from the fluxes at the currents of the last two accepted steps.
Phases Calc_Eq::lagged_voltage(double dt) const {
    const double dt1 = step_.time_previous - step_.time_older;
    const bool longer_step = dt / dt1 > 1.0 && step_.time > 0.0;
    const double ratio = flux_per_inductance_previous();
    const double scale = temperature_scale();
    Phases di;
    for (std::size_t j = 0; j < 3; ++j) {
        di[j] = step_.current_previous[j] - step_.current_older[j];
    }
    Phases e;
    for (std::size_t k = 0; k < 3; ++k) {
        double s = corrections_.flux_multiplier * step_.total_flux[k] -
                   corrections_.flux_multiplier_previous * step_.total_flux_previous[k] -
                   ratio * row_times(step_.inductance_previous, k, di);
        s *= scale;
        // A step longer than the last takes the last value again, scaled.
        e[k] = longer_step ? dt1 * step_.induced_voltage_previous[k] / dt : s / dt1;
    }
    return e;
}

bool Calc_Eq::solve_currents(double dt, const double* voltages, const bool* driven, const PhaseAngles& at, int& error) {
    const bool emf_form = machine_.application == harmonic;
    WindingInput in;
    in.voltages = voltages;
    in.flags = driven;
    in.dt = dt;
    in.coupling = step_.inductance.data();
    in.current = step_.current_previous.data();
    in.resistance = step_.resistance.data();
    in.leakage = machine_.leakage_inductance.data();
    WindingSolver solver(*winding_);
    Phases e{};
    if (emf_form) {
        e = lagged_voltage(dt);
        in.emf = e.data();
        solver.solve_emf_form(in);
    } else {
        in.flux = step_.magnet_flux.data();
        in.previous_flux = step_.magnet_flux_previous.data();
        in.previous_coupling = step_.inductance_previous.data();
        solver.solve_flux_form(in);
    }

    const std::size_t elements = solver.element_count();
    const std::size_t terminals = solver.terminal_count();
    const double* const x = solver.solution();
    for (std::size_t k = 0; k < elements; ++k) {
        if (!std::isfinite(x[k])) {
            error = error_infinite;
            return false;
        }
        // Never true behind the finite test; the order of the tests stays.
        if (std::isnan(x[k])) {
            error = error_not_a_number;
            return false;
        }
    }
    for (std::size_t k = 0; k < elements && k < 3; ++k) {
        step_.current[k] = x[k];
    }

    if (!emf_form) {
        take_voltage_of_flux(dt, voltages, driven, x, elements, terminals);
        return true;
    }
    if (terminals == 3 && machine_.inductance_dim == 4) {
        // A delta's circulating current is not part of tables over amplitude and phase.
        step_.current = inverse_park_dq(park_d(step_.current, at), park_q(step_.current, at), at);
    }
    step_.induced_voltage = e;
    if (terminals == 4) {
        step_.neutral_voltage = x[elements + 3];
    }
    return true;
}

void Calc_Eq::take_voltage_of_flux(double dt, const double* voltages, const bool* driven, const double* x,
                                   std::size_t elements, std::size_t terminals) {
    if (terminals == 4) {
        step_.neutral_voltage = x[elements + 3];
    }
    for (std::size_t k = 0; k < 3; ++k) {
        if (terminals == 3) {
            step_.induced_voltage[k] = (step_.magnet_flux[k] - step_.magnet_flux_previous[k]) / dt;
        } else if (terminals == 4) {
            const auto from = static_cast<std::size_t>(winding_->elements[k]->from_terminal);
            const double s = driven[k] ? 1.0 : 0.0;
            // The place of a driven terminal holds 0.0, not its potential.
            const double potential = (1.0 - s) * x[elements + from - 1] + s * voltages[k];
            step_.induced_voltage[k] = potential - step_.neutral_voltage - step_.current[k] * step_.resistance[k];
        } else {
            step_.induced_voltage[k] = 0.0;
        }
    }
}

// Amplitude and phase of `current`; returns its q part.
double Calc_Eq::update_polar_current(const PhaseAngles& at) {
    const double d = park_d(step_.current, at);
    const double q = park_q(step_.current, at);
    step_.current_amplitude = amplitude_of(d, q);
    step_.current_phase = phase_of(d, q);
    return q;
}

}  // namespace kzb
