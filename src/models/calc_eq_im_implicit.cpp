// Steps of Calc_Eq_im_transient with constants: one implicit solve, driven by voltages or by primary currents.
//
//   voltages:  (2 L - L_prev + dt R) y = L x + dt V,   x the accepted and y the new i1a, i1b, i2a, i2b
//   currents:  the two rotor rows of the same system, with i1a and i1b given and both sides divided by dt
//
//   L = [Ls  0   Msr 0 ]    R = [Rt     0      0     0   ]    Rt = Rs + R_equivalent,  w the electrical speed
//       [0   Ls  0   Msr]       [0      Rt     0     0   ]
//       [Mrs 0   Lr  0 ]        [0      w Mrs  Rr    w Lr]
//       [0   Mrs 0   Lr]        [-w Mrs 0      -w Lr Rr  ]
//
// Over a time step of 0 or less all six currents are 0.
#include <cmath>

#include "circuit/winding_solver.h"
#include "models/calc_eq_im.h"

namespace kzb {
namespace {

using Matrix4 = std::array<double, 16>;

Matrix4 inductance_matrix(const ImInductances& l) {
    return {l.m_Ls,  0.0,     l.m_Msr, 0.0,      //
            0.0,     l.m_Ls,  0.0,     l.m_Msr,  //
            l.m_Mrs, 0.0,     l.m_Lr,  0.0,      //
            0.0,     l.m_Mrs, 0.0,     l.m_Lr};
}

}  // namespace

// What both steps begin with; solve(dt) gives the currents where time has gone on.
template <class Solve>
Calc_Eq_im_transient::Currents Calc_Eq_im_transient::implicit_currents(double time, double displacement, Solve solve) {
    start_step(time, displacement);
    update_parameters();
    apply_first_step_rule();
    const double dt = step_.time - step_.time_prev;
    if (dt <= 0.0) {
        step_.current_latest = step_.current_accepted;
        return {};
    }
    return solve(dt);
}

void Calc_Eq_im_transient::step_voltage_driven(const double* voltages, double displacement, double time,
                                               const double* signals) {
    if (store_ == nullptr) {
        return;
    }
    const Currents currents =
        implicit_currents(time, displacement, [&](double dt) { return solve_currents(voltages, signals, dt); });
    finish_from_currents(currents, voltages);
    update_total_flux(currents_out());
}

void Calc_Eq_im_transient::step_current_driven(const double* currents, double displacement, double time) {
    if (store_ == nullptr) {
        return;
    }
    finish_from_currents(
        implicit_currents(time, displacement, [&](double dt) { return solve_secondary(currents, dt); }), nullptr);
}

void Calc_Eq_im_transient::finish_from_currents(const Currents& currents, const double* voltages) {
    take_currents(currents, voltages);
    step_.primary_current = peak_of(currents.primary);
    const Currents out = currents_out();
    update_losses(out);
    update_secondary_flux(out);
}

TwoAxis Calc_Eq_im_transient::terminal_voltage(const double* voltages) const {
    const TwoAxis v = clarke(voltages[0], voltages[1], voltages[2]);
    if (machine_.connection_type != im_connection_delta) {
        return v;
    }
    const double r = sqrt_three * std::sqrt(v.alpha * v.alpha + v.beta * v.beta);
    // The angle counts from the beta axis.
    const double a = std::atan2(v.alpha, v.beta) - 0.5235987755982988;
    return {r * std::sin(a), r * std::cos(a)};
}

Calc_Eq_im_transient::Currents Calc_Eq_im_transient::accepted_currents() const {
    const SixCurrents& i = step_.current_accepted;
    return {clarke(i[0], i[1], i[2]), rotor_to_two_axis(i[3], i[4], i[5], at_theta_prev_)};
}

Calc_Eq_im_transient::Currents Calc_Eq_im_transient::solve_currents(const double* voltages, const double* signals,
                                                                    double dt) {
    const TwoAxis terminal = terminal_voltage(voltages);
    const double w = electrical_speed();
    const ImInductances& l = step_.inductances;
    const Matrix4 inductance = inductance_matrix(l);
    const Matrix4 inductance_prev = inductance_matrix(step_.inductances_prev);
    const double rt = resistances_.Rs + resistances_.R_equivalent;
    const double rr = resistances_.Rr;
    const Matrix4 resistance = {rt,           0.0,         0.0,         0.0,         //
                                0.0,          rt,          0.0,         0.0,         //
                                0.0,          w * l.m_Mrs, rr,          w * l.m_Lr,  //
                                -w * l.m_Mrs, 0.0,         -w * l.m_Lr, rr};
    const Currents previous = accepted_currents();
    const double x[4] = {previous.primary.alpha, previous.primary.beta, previous.secondary.alpha,
                         previous.secondary.beta};
    const double v[4] = {terminal.alpha, terminal.beta, 0.0, 0.0};

    // Port voltages and flags reach the network's terminals; they do not enter the numbers. The fourth port has no
    // signal.
    const double ports[4] = {voltages[0], voltages[1], voltages[2], 0.0};
    const bool flags[8] = {signals[0] > 0.0, signals[1] > 0.0, signals[2] > 0.0, false, true, true, true, true};
    WindingInput in;
    in.voltages = ports;
    in.flags = flags;
    in.dt = dt;
    WindingSolver solver(*network_);
    solver.solve_dense(in, {inductance.data(), inductance_prev.data(), resistance.data(), x, v});
    const double* const y = solver.solution();
    return {{y[0], y[1]}, {y[2], y[3]}};
}

Calc_Eq_im_transient::Currents Calc_Eq_im_transient::solve_secondary(const double* currents, double dt) const {
    const TwoAxis i1 = clarke(currents[0], currents[1], currents[2]);
    const Currents previous = accepted_currents();
    const TwoAxis& p1 = previous.primary;
    const TwoAxis& p2 = previous.secondary;
    const double w = electrical_speed();
    const ImInductances& l = step_.inductances;
    const ImInductances& l_prev = step_.inductances_prev;

    const double a = (2.0 * l.m_Lr - l_prev.m_Lr) / dt + resistances_.Rr;
    const double w_lr = w * l.m_Lr;
    const double determinant = a * a + w_lr * w_lr;
    const double b = (2.0 * l.m_Mrs - l_prev.m_Mrs) / dt;
    const double r0 = l.m_Mrs / dt * p1.alpha - (b * i1.alpha + l.m_Mrs * w * i1.beta) + l.m_Lr / dt * p2.alpha;
    const double r1 = l.m_Mrs * w * i1.alpha - b * i1.beta + l.m_Mrs / dt * p1.beta + l.m_Lr / dt * p2.beta;
    const double diagonal = a / determinant;
    const double upper = -w_lr / determinant;
    const double lower = w_lr / determinant;
    return {i1, {diagonal * r0 + upper * r1, lower * r0 + diagonal * r1}};
}

}  // namespace kzb
