#include "models/calc_eq_im.h"

#include <cmath>
#include <cstdlib>

#include "models/first_step.h"
#include "models/history.h"

namespace kzb {
namespace {

// The integer in DORN_KZ_TORQUE_TYPE; 0 when it is not set.
int torque_type_of_environment() {
    const char* const text = std::getenv("DORN_KZ_TORQUE_TYPE");
    return text == nullptr ? 0 : std::atoi(text);
}

bool is_current(int phase) {
    return phase >= 1 && phase <= 6;
}

}  // namespace

Calc_Eq_im_transient::Calc_Eq_im_transient() : torque_type_(torque_type_of_environment()) {
    debug_.open();
}

Calc_Eq_im_transient::~Calc_Eq_im_transient() = default;

void Calc_Eq_im_transient::reset() {
    store_ = nullptr;
    machine_ = ImMachine{};
    corrections_ = CoilCorrections{};
    resistances_ = ImResistances{};
    temperatures_ = ImTemperatures{};
    step_ = ImStep{};
    read_parameter_file_ = false;
    losses_ = ImLosses{};
    angles_.clear();
    at_theta_ = RotorAngles{};
    at_theta_prev_ = RotorAngles{};
    network_.reset();
}

void Calc_Eq_im_transient::set_initial_current(int phase, double ampere) {
    if (is_current(phase)) {
        const auto k = static_cast<std::size_t>(phase - 1);
        step_.current_accepted[k] = ampere;
        step_.initial_set[k] = true;
    }
}

void Calc_Eq_im_transient::set_initial_time(double second) {
    step_.time_prev = second;
    step_.initial_time_set = true;
}

void Calc_Eq_im_transient::set_current(int phase, double ampere) {
    if (is_current(phase)) {
        const auto k = static_cast<std::size_t>(phase - 1);
        step_.current_latest[k] = ampere;
        step_.current_out[k] = ampere;
    }
}

double Calc_Eq_im_transient::current_output(int phase) const {
    return is_current(phase) ? step_.current_out[static_cast<std::size_t>(phase - 1)] : 0.0;
}

double Calc_Eq_im_transient::slip_frequency() const {
    return std::fabs(step_.slip_omega) < 1e-20 ? 0.0 : step_.slip_omega / 6.283185307179586;
}

int Calc_Eq_im_transient::inductance_type(const KZB_STORE& store) const {
    if (machine_.inductance_type != inductance_untested) {
        return machine_.inductance_type;
    }
    return has_category(store, im_tables) ? inductance_tables : inductance_constants;
}

void Calc_Eq_im_transient::execute(const double* voltages, double displacement, double time, const double* signals,
                                   double step_size, double* state) {
    if (machine_.inductance_type != inductance_tables) {
        step_voltage_driven(voltages, displacement, time, signals);
        return;
    }
    // Between the two nothing touches tables or method: the derivative stands at the point of the observation.
    tables_.last_point.open();
    observe_state(time, displacement, state);
    double derivative[4];
    voltage_derivative(voltages, time, displacement, derivative, state);
    tables_.last_point.close();
    for (std::size_t i = 0; i < 4; ++i) {
        state[i] = state[i] + derivative[i] * step_size;
    }
}

double Calc_Eq_im_transient::torque_from_currents(const double* currents, double displacement, double time,
                                                  double step_size, double* state) {
    if (machine_.inductance_type != inductance_tables) {
        step_current_driven(currents, displacement, time);
        return compute_torque();
    }
    const TwoAxis primary = clarke(currents[0], currents[1], currents[2]);
    const double x[4] = {primary.alpha, primary.beta, state[0], state[1]};
    tables_.last_point.open();
    observe_state(time, displacement, x);
    double derivative[4];
    current_derivative(currents, time, displacement, derivative, state);
    tables_.last_point.close();
    for (std::size_t i = 0; i < 4; ++i) {
        state[i] = state[i] + derivative[i] * step_size;
    }
    return step_.torque;
}

void Calc_Eq_im_transient::accept() {
    ImStep& s = step_;
    shift_history(s.current_latest, s.current_accepted);
    count_step(s.step_count);
    shift_history(s.time, s.time_prev);
    shift_history(s.theta, s.theta_prev);
    shift_history(at_theta_, at_theta_prev_);
    shift_history(s.inductances, s.inductances_prev);
    shift_history(s.flux_total, s.flux_total_prev);
}

}  // namespace kzb
