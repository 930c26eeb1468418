// The one-step implicit solves of the equivalent circuit: four currents from voltages, or the secondary's from the
// primary's.
#include <cmath>

#include "bench/reference/im.h"
#include "bench/reference/winding.h"

namespace kzb_reference {

namespace {

// (2 L - Lp + dt R) y = L x + dt V; of L's rows the right-hand side takes the two entries that are not zero.
std::vector<double> solve_dense(const double* l, const double* l_prev, const double* r, const double* x,
                                const double* v, double dt) {
    Matrix a(4, 4);
    std::vector<double> b(4);
    for (int row = 0; row < 4; ++row) {
        for (int c = 0; c < 4; ++c) {
            a(row, c) = 2.0 * l[4 * row + c] + dt * r[4 * row + c] - l_prev[4 * row + c];
        }
    }
    b[0] = l[0] * x[0] + dt * v[0] + l[2] * x[2];
    b[1] = l[5] * x[1] + dt * v[1] + l[7] * x[3];
    b[2] = l[8] * x[0] + dt * v[2] + l[10] * x[2];
    b[3] = l[13] * x[1] + dt * v[3] + l[15] * x[3];
    eliminate(a, b);
    return b;
}

}  // namespace

void Induction::step_voltage_driven(double displacement, double at_time) {
    time = at_time;
    theta = number_of_poles * 0.5 * displacement;
    parameter_update();
    first_step_rule();
    const double dt = time - time_prev;
    if (dt <= 0.0) {
        for (int i = 0; i < 6; ++i) {
            current_latest[i] = current_accepted[i];
        }
        output_stage({}, {}, Path::voltage_implicit);
        return;
    }
    const TwoAxis v = source_voltage();
    const double w = electrical_speed();
    const double Rt = Rs + R_equivalent;
    const double l[16] = {m_Ls, 0.0, m_Msr, 0.0, 0.0, m_Ls, 0.0, m_Msr, m_Mrs, 0.0, m_Lr, 0.0, 0.0, m_Mrs, 0.0, m_Lr};
    const double l_prev[16] = {m_Ls_prev,  0.0, m_Msr_prev, 0.0, 0.0, m_Ls_prev,  0.0, m_Msr_prev,
                               m_Mrs_prev, 0.0, m_Lr_prev,  0.0, 0.0, m_Mrs_prev, 0.0, m_Lr_prev};
    const double r[16] = {Rt,  0.0,       0.0, 0.0,      0.0,        Rt,  0.0,       0.0,
                          0.0, w * m_Mrs, Rr,  w * m_Lr, -w * m_Mrs, 0.0, -w * m_Lr, Rr};
    const TwoAxis p1 = clarke(current_accepted);
    const TwoAxis p2 = rotor_to_two_axis(current_accepted + 3, theta_prev);
    const double x[4] = {p1.a, p1.b, p2.a, p2.b};
    const double source[4] = {v.a, v.b, 0.0, 0.0};
    const std::vector<double> y = solve_dense(l, l_prev, r, x, source, dt);
    output_stage({y[0], y[1]}, {y[2], y[3]}, Path::voltage_implicit);
}

void Induction::step_current_driven(const double* currents, double displacement, double at_time) {
    time = at_time;
    theta = number_of_poles * 0.5 * displacement;
    parameter_update();
    first_step_rule();
    const double dt = time - time_prev;
    if (dt <= 0.0) {
        for (int i = 0; i < 6; ++i) {
            current_latest[i] = current_accepted[i];
        }
        output_stage({}, {}, Path::current_implicit);
        return;
    }
    const TwoAxis i1 = clarke(currents);
    const TwoAxis p1 = clarke(current_accepted);
    const TwoAxis p2 = rotor_to_two_axis(current_accepted + 3, theta_prev);
    const double w = electrical_speed();
    const double a = (2.0 * m_Lr - m_Lr_prev) / dt + Rr;
    const double c = w * m_Lr;
    const double determinant = a * a + c * c;
    const double inverse[2][2] = {{a / determinant, -c / determinant}, {c / determinant, a / determinant}};
    const double b = (2.0 * m_Mrs - m_Mrs_prev) / dt;
    const double r0 = m_Mrs / dt * p1.a - (b * i1.a + m_Mrs * w * i1.b) + m_Lr / dt * p2.a;
    const double r1 = m_Mrs * w * i1.a - b * i1.b + m_Mrs / dt * p1.b + m_Lr / dt * p2.b;
    TwoAxis i2;
    i2.a = inverse[0][0] * r0 + inverse[0][1] * r1;
    i2.b = inverse[1][0] * r0 + inverse[1][1] * r1;
    output_stage(i1, i2, Path::current_implicit);
}

}  // namespace kzb_reference
