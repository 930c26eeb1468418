// Life of Calc_Eq_wfsm: environment, defaults, start calls, history and the plain results.
#include "models/calc_eq_wfsm.h"

#include <algorithm>

#include "models/environment.h"
#include "models/first_step.h"
#include "models/history.h"

namespace kzb {
namespace {

// Passes of one step at most. A larger number in the environment is cut here: a pass costs some microseconds, and an
// iteration that has not settled by then never does.
constexpr int most_iterations = 1000000;

}  // namespace

Calc_Eq_wfsm::Calc_Eq_wfsm() {
    tolerance_ = environment_double("DORN_KZ_DEBUG_ITR", tolerance_);
    max_iterations_ = std::min(environment_int("DORN_KZ_DEBUG_NITR", max_iterations_), most_iterations);
    acceleration_ = environment_double("DORN_KZ_DEBUG_ACCEL", acceleration_);
    debug_.open();
}

Calc_Eq_wfsm::~Calc_Eq_wfsm() = default;

void Calc_Eq_wfsm::reset() {
    store_ = nullptr;
    machine_ = WfsmMachine{};
    corrections_ = WfsmCorrections{};
    temperatures_ = WfsmTemperatures{};
    step_ = WfsmStep{};
    losses_ = WfsmLosses{};
    user_parameters_.reset();
    network_ = WindingNetwork{};
}

void Calc_Eq_wfsm::start_corrections(const ControlRecord& record) {
    corrections_.coef_flux = record.coef_flux;
    corrections_.coef_flux_fieldcoil = record.coef_flux_fieldcoil;
    corrections_.turns_coil2 = record.turns_coil2;
    corrections_.turns_coil2_fieldcoil = record.turns_coil2_fieldcoil;
    corrections_.coef_torque = record.coef_torque_or_force;
    corrections_.coef_material = record.coef_material;
}

void Calc_Eq_wfsm::start_temperatures(const ControlRecord& record) {
    temperatures_.base_coil_temperature = record.base_coil_temperature;
    temperatures_.base_field_coil_temperature = record.base_field_coil_temperature;
    temperatures_.coil_coefficient = record.coef_coil_temperature;
    temperatures_.field_coil_coefficient = record.coef_field_coil_temperature;
}

void Calc_Eq_wfsm::set_loss_mode(int ironloss_flag, int pwm_flag) {
    losses_.iron_loss_on = ironloss_flag == 1;
    losses_.voltage_filter_on = losses_.iron_loss_on && pwm_flag == 1;
}

double Calc_Eq_wfsm::own_coil_factor() const {
    const WfsmTemperatures& t = temperatures_;
    return (t.coil_temperature - t.base_coil_temperature) * t.coil_coefficient * 1e-6 + 1.0;
}

double Calc_Eq_wfsm::field_coil_factor() const {
    const WfsmTemperatures& t = temperatures_;
    return (t.field_coil_temperature - t.base_field_coil_temperature) * t.field_coil_coefficient * 1e-6 + 1.0;
}

void Calc_Eq_wfsm::set_initial_current(int coil, double ampere) {
    if (is_coil(coil)) {
        const auto k = static_cast<std::size_t>(coil - 1);
        step_.current_previous[k] = ampere;
        step_.initial_set[k] = true;
    }
}

void Calc_Eq_wfsm::set_initial_time(double second) {
    step_.time_previous = second;
    step_.initial_set[WfsmStep::initial_time] = true;
}

void Calc_Eq_wfsm::accept() {
    WfsmStep& s = step_;
    shift_history(s.time, s.time_previous);
    shift_history(s.position, s.position_previous);
    shift_history(s.Iamp, s.Iamp_previous);
    shift_history(s.beta, s.beta_previous);
    // The terminal current, not the coil current behind the iron loss.
    shift_history(s.terminal_current, s.current_previous);
    shift_history(s.Id, s.Id_previous);
    shift_history(s.Iq, s.Iq_previous);
    shift_history(s.flux, s.flux_previous);
    count_step(s.step_count);
}

double Calc_Eq_wfsm::induced_voltage(int coil) {
    const double dt = step_.time - step_.time_previous;
    if (!is_coil(coil) || dt <= 0.0) {
        return 0.0;
    }
    const auto k = static_cast<std::size_t>(coil - 1);
    return (step_.flux[k] - step_.flux_previous[k]) / dt;
}

double Calc_Eq_wfsm::inductance(int row, int column) const {
    if (!is_coil(row) || !is_coil(column)) {
        return 0.0;
    }
    return step_.inductance[static_cast<std::size_t>((row - 1) * 4 + (column - 1))];
}

}  // namespace kzb
