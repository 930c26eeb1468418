// One voltage-driven sample of Calc_Eq_wfsm.
//
// Flux and incremental inductance are taken at an estimate x of the currents; the winding network, linear about x,
//
//   dt R i + L(x) i - dt p_from + dt p_to = -(psi(x) - psi_previous) + L(x) x
//
// gives new currents, the next estimate after relaxation, until the sum of their changes is below `tolerance`.
#include <cmath>

#include "circuit/winding_solver.h"
#include "models/calc_eq_wfsm.h"
#include "models/calc_eq_wfsm_frame.h"
#include "models/first_step.h"

namespace kzb {
namespace {

constexpr std::size_t delta_terminals = 5;
constexpr std::size_t star_terminals = 6;

}  // namespace

bool Calc_Eq_wfsm::step(const double* voltages, double position, double time, const double* signals, int& error) {
    error = 0;
    if (store_ == nullptr) {
        return false;
    }
    step_.time = time;
    step_.position = position;
    if (step_.step_count == 1) {
        first_step();
    }
    const PhaseAngles at(electrical_angle(position));
    const double angle = table_angle(position);
    Drive drive{};
    drive.dt = step_.time - step_.time_previous;
    for (std::size_t k = 0; k < 4; ++k) {
        drive.voltages[k] = voltages[k];
        drive.flags[k] = signals[k] != 0.0;  // a not-a-number drives as well
    }
    drive.resistance = coil_resistances();

    bool ok = true;
    if (!iterate(drive, at, ok, error)) {
        return false;
    }
    if (!finish_currents(drive, at, error)) {
        return false;
    }
    const Point point = axis_vector(step_.terminal_current, position, at);
    update_flux(point);
    update_inductance(point);
    update_user_parameters(point);
    // At the coil currents, while flux and inductance are those of the terminal currents.
    step_.torque = compute_torque(at);
    update_dq_inductance(step_.Iamp, step_.beta, step_.current[3], angle, at);
    step_.field_inductance = step_.inductance[3 * 4 + 3];
    return ok;
}

void Calc_Eq_wfsm::first_step() {
    WfsmStep& s = step_;
    forget_unset_start(s.initial_set, s.current_previous, s.initial_set[WfsmStep::initial_time], s.time_previous);
    if (!s.initial_set[0] && !s.initial_set[1] && !s.initial_set[2]) {
        s.Iamp_previous = 0.0;
        s.beta_previous = 0.0;
        return;
    }
    // By the position itself, not by the electrical angle: kept.
    const DqPair dq = wfsm::park(wfsm::armature(s.current_previous), PhaseAngles(s.position));
    s.Iamp_previous = amplitude_of(dq.d, dq.q);
    s.beta_previous = wfsm::current_phase(dq.d, dq.q);
}

WfsmCoils Calc_Eq_wfsm::coil_resistances() const {
    double armature = machine_.R;
    double field = machine_.Rf;
    if (temperature_correction()) {
        armature *= own_coil_factor();
        field *= field_coil_factor();
    }
    return {armature, armature, armature, field};
}

// The passes of one step. False with `error` set when a solved current is not finite; `ok` is the answer of the last
// solve.
bool Calc_Eq_wfsm::iterate(const Drive& drive, const PhaseAngles& at, bool& ok, int& error) {
    if (max_iterations_ < 1) {
        return true;
    }
    WfsmCoils x = step_.current_previous;
    WfsmCoils best = x;
    double best_error = KZB_NO_VALUE;
    int best_pass = 0;
    bool ran_out = false;
    double change = KZB_NO_VALUE;
    int pass = 0;
    for (;; ++pass) {
        update_scales();
        const Point point = axis_vector(x, step_.position, at);
        update_flux(point);
        update_inductance(point);
        if (!solve_currents(drive, x, at, ok, error)) {
            count_passes(drive, pass + 1, false);
            return false;
        }
        write_pass_rows(pass, drive);
        change = relax(x);
        if (change < best_error) {
            best_error = change;
            best_pass = pass;
            best = step_.current;
        }
        write_pass_polar_row(pass, at);
        // The first pass is never tested.
        if (pass >= 1) {
            if (pass + 1 == max_iterations_) {
                step_.current = best;
                ran_out = true;
                break;
            }
            if (change < tolerance_) {
                break;
            }
        }
        x = step_.current;
        if (pass + 1 >= max_iterations_) {
            break;
        }
    }
    write_step_rows(drive, at, pass, ran_out ? best_pass : pass);
    count_passes(drive, pass + 1, change < tolerance_);
    return true;
}

void Calc_Eq_wfsm::count_passes(const Drive& drive, int passes, bool converged) {
    if (solves(drive)) {
        pass_counts_.add(passes, converged);
    }
}

// Moves `current` from the estimate x by `acceleration` of its change; returns the sum of the whole changes.
double Calc_Eq_wfsm::relax(const WfsmCoils& x) {
    double change = 0.0;
    for (std::size_t k = 0; k < 4; ++k) {
        const double delta = step_.current[k] - x[k];
        step_.current[k] = x[k] + acceleration_ * delta;
        change += std::fabs(delta);
    }
    return change;
}

// The currents of one pass, not yet relaxed: those of the solve, or the accepted ones where there is nothing to solve.
bool Calc_Eq_wfsm::solve_currents(const Drive& drive, const WfsmCoils& x, const PhaseAngles& at, bool& ok, int& error) {
    WfsmStep& s = step_;
    WfsmCoils e{};
    if (!solves(drive)) {
        s.current = s.current_previous;
    } else {
        for (std::size_t k = 0; k < 4; ++k) {
            e[k] = (s.flux[k] - s.flux_previous[k]) / drive.dt;
        }
        if (!solve_network(drive, e, x, ok, error)) {
            return false;
        }
    }
    const std::size_t terminals = network_.terminals.size();
    // Without a network nothing is induced.
    s.induced = terminals == delta_terminals || terminals == star_terminals ? e : WfsmCoils{};
    if (terminals == delta_terminals) {
        // A delta's circulating current is not part of tables over two armature axes. Accepted currents lose theirs as
        // solved ones do.
        const Phases i = wfsm::inverse_park(wfsm::park(wfsm::armature(s.current), at), at);
        s.current = {i[0], i[1], i[2], s.current[3]};
    }
    return true;
}

bool Calc_Eq_wfsm::solve_network(const Drive& drive, const WfsmCoils& e, const WfsmCoils& x, bool& ok, int& error) {
    WfsmStep& s = step_;
    constexpr WfsmCoils no_leakage{};
    WindingInput in;
    in.voltages = drive.voltages.data();
    in.flags = drive.flags;
    in.dt = drive.dt;
    in.emf = e.data();
    in.coupling = s.inductance.data();
    in.current = x.data();
    in.resistance = drive.resistance.data();
    in.leakage = no_leakage.data();
    WindingSolver solver(network_);
    ok = solver.solve_emf_form(in);
    const double* const solution = solver.solution();
    const std::size_t elements = solver.element_count();
    if (!all_finite(solution, elements, error)) {
        return false;
    }
    for (std::size_t k = 0; k < elements && k < 4; ++k) {
        s.current[k] = solution[k];
    }
    if (solver.terminal_count() == star_terminals) {
        s.neutral_voltage = solution[elements + 4];
    }
    return true;
}

bool Calc_Eq_wfsm::all_finite(const double* values, std::size_t count, int& error) {
    for (std::size_t k = 0; k < count; ++k) {
        if (!std::isfinite(values[k])) {
            error = error_infinite;
            return false;
        }
        // Never true behind the finite test; the order of the tests stays.
        if (std::isnan(values[k])) {
            error = error_not_a_number;
            return false;
        }
    }
    return true;
}

// Terminal currents, the iron loss current split off where it is on, and the polar view of the terminals.
bool Calc_Eq_wfsm::finish_currents(const Drive& drive, const PhaseAngles& at, int& error) {
    WfsmStep& s = step_;
    s.terminal_current = s.current;
    if (losses_.iron_loss_on && !iron_step(drive, at, error)) {
        return false;
    }
    take_polar_current(at);
    return true;
}

void Calc_Eq_wfsm::take_polar_current(const PhaseAngles& at) {
    const DqPair dq = wfsm::park(wfsm::armature(step_.terminal_current), at);
    step_.Id = dq.d;
    step_.Iq = dq.q;
    step_.Iamp = amplitude_of(dq.d, dq.q);
    step_.beta = wfsm::current_phase(dq.d, dq.q);
}

}  // namespace kzb
