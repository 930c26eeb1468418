// The calls of one sample: units, the two kinds of step, and the results.
#include <cmath>

#include "bench/reference/im.h"

namespace kzb_reference {

void Induction::set_initial_current(int phase, double value) {
    current_accepted[phase - 1] = value;
    initial_set[phase - 1] = 1;
}

void Induction::set_initial_time(double value) {
    time_prev = value;
    initial_time_set = true;
}

void Induction::set_initial_displacement(double value) {
    initial_displacement_ = value / 180.0 * M_PI;
}

int Induction::set_time(double value) {
    if (value < 0.0) {
        return 180032;
    }
    time = value;
    time_ = value;
    return 0;
}

void Induction::set_displacement(double value) {
    displacement_ = value / 180.0 * M_PI + initial_displacement_;
}

void Induction::set_current(int phase, double value) {
    current_latest[phase - 1] = value;
    current_out[phase - 1] = value;
    current_[phase - 1] = value;
}

void Induction::execute() {
    if (check_inductance_type() != 1) {
        step_voltage_driven(displacement_, time_);
        return;
    }
    double derivative[4] = {};
    observe_state(time_, displacement_, state_);
    voltage_derivative(time_, displacement_, derivative, state_);
    for (int i = 0; i < 4; ++i) {
        state_[i] = state_[i] + derivative[i] * step_size_;
    }
}

double Induction::get_torque() {
    if (calc_mode_ == 1) {
        return torque;
    }
    if (check_inductance_type() != 1) {
        step_current_driven(current_, displacement_, time_);
        compute_torque();
        return torque;
    }
    const TwoAxis i1 = clarke(current_);
    const double x[4] = {i1.a, i1.b, state_[0], state_[1]};
    observe_state(time_, displacement_, x);
    const double result = torque;
    double derivative[4] = {};
    current_derivative(current_, time_, displacement_, derivative, state_);
    for (int i = 0; i < 4; ++i) {
        state_[i] = state_[i] + derivative[i] * step_size_;
    }
    return result;
}

void Induction::update() {
    for (int i = 0; i < 6; ++i) {
        current_accepted[i] = current_latest[i];
    }
    step_count += 1;
    time_prev = time;
    theta_prev = theta;
    m_Ls_prev = m_Ls;
    m_Msr_prev = m_Msr;
    m_Lr_prev = m_Lr;
    m_Mrs_prev = m_Mrs;
    for (int k = 0; k < 3; ++k) {
        flux_total_prev[k] = flux_total[k];
    }
}

double Induction::get_voltage(int phase) const {
    return phase < 1 || phase > 3 ? 0.0 : voltage_induced[phase - 1];
}

double Induction::get_copperloss() const {
    const double secondary = 0.0;  // a current that nothing writes
    double sum = 0.0;
    for (int k = 1; k <= 3; ++k) {
        sum += get_resistance() * (get_current(k) * get_current(k));
    }
    return sum + 3.0 * Rr * (secondary * secondary);
}

double Induction::get_user_copper_loss() const {
    return user_copperloss_flag_ ? user_copper_loss : 0.0;
}

double Induction::get_slip_frequency() const {
    if (check_inductance_type() != 1) {
        return 180061.0;
    }
    return slip_hz();
}

}  // namespace kzb_reference
