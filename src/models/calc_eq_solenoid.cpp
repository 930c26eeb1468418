#include "models/calc_eq_solenoid.h"

#include <cmath>

#include "models/coil_dump.h"
#include "models/history.h"

namespace kzb {
namespace {

constexpr int pattern_single = 7;

}  // namespace

void Calc_Eq_solenoid::reset() {
    CoilMachine::reset();
    magnet_ = CoilMagnet{};
    voltage_.clear();
    current_out_prev_.clear();
    force_ = 0.0;
    position_prev_ = 0.0;
    upper_limit_ = 0.0;
    lower_limit_ = 0.0;
    coil_flux_ = 0.0;
    coil_flux_prev_ = 0.0;
    tables_ = Tables{};
}

void Calc_Eq_solenoid::bind(KZB_STORE& store) {
    // Two stores may have the same revision: nothing that another one answered is kept.
    tables_ = Tables{};
    set_application(store, "LinearSolenoid", "");
    take_resistance(store, "RA");
    circuit_.build(pattern_single);
    const std::size_t coils = circuit_.current.size();
    magnet_.resize(coils);
    voltage_.resize(coils, 0.0);
    current_out_prev_.resize(coils, 0.0);
    fold_corrections(store);
    upper_limit_ = get_double(store, "parameter", "DispLimitMax");
    lower_limit_ = get_double(store, "parameter", "DispLimitMin");
    store_ = &store;
}

void Calc_Eq_solenoid::step(double d, double position, double time, double signal) {
    if (store_ == nullptr) {
        return;
    }
    position_ = position;
    circuit_.begin(time, coil_factor());
    magnet_.update(*store_, tables_.flux, position_, magnet_factor(), corrections_.correction_flux);
    if (circuit_.first_step()) {
        magnet_.keep_first();
    }
    update_inductance();
    circuit_.keep_first_inductance();
    const double dt = circuit_.dt();
    if (dt > 0.0) {
        circuit_.solve(&d, &signal);
        voltage_[0] = magnet_.voltage(0, dt);
    } else if (dt <= 0.0) {
        circuit_.current = circuit_.current_prev;
        circuit_.current_out = current_out_prev_;
        coil_flux_prev_ = coil_flux_;
    }
    evaluate_force();
    if (debug_dump_) {
        write_dump();
    }
}

double Calc_Eq_solenoid::evaluate_force() {
    if (store_ != nullptr) {
        update_force(position_ - position_prev_);
        update_coil_flux();
    }
    return force_;
}

void Calc_Eq_solenoid::update_inductance() {
    double s = 0.0;
    for (const double current : circuit_.current_prev) {
        s += current;
    }
    const double point[3] = {std::fabs(s * corrections_.turns2), position_, 0.0};
    circuit_.inductance[0] = tables_.inductance.at(*store_, method(), point, 3) * corrections_.correction_inductance;
}

// The force table knows the sign of the current, unlike that of the inductance.
void Calc_Eq_solenoid::update_force(double dx) {
    const double i = circuit_.current_out[0];
    double temperature_force = 0.0;
    if (dx != 0.0) {
        temperature_force = ((2 * i - current_out_prev_[0]) * magnet_.flux_temperature_delta[0] -
                             i * magnet_.flux_temperature_delta_prev[0]) /
                            dx;
    }
    const double point[2] = {position_, i * corrections_.turns2};
    force_ = tables_.force.at(*store_, method(), point, 2) * corrections_.correction_torque - temperature_force;
}

// Always by "Linear".
void Calc_Eq_solenoid::update_coil_flux() {
    const double i = circuit_.current[0];
    const double inductance_point[3] = {std::fabs(i * corrections_.turns2), position_, 0.0};
    const double flux_point[2] = {position_, 0.0};
    const double inductance = tables_.inductance.at(*store_, tables_.linear, inductance_point, 3);
    const double flux = tables_.flux.at(*store_, tables_.linear, flux_point, 2);
    coil_flux_ =
        inductance * corrections_.correction_inductance * i + magnet_factor() * flux * corrections_.correction_flux;
}

void Calc_Eq_solenoid::accept() {
    CoilMachine::accept();
    magnet_.accept();
    shift_history(circuit_.current_out, current_out_prev_);
    shift_history(position_, position_prev_);
    shift_history(coil_flux_, coil_flux_prev_);
}

double Calc_Eq_solenoid::induced_voltage(int) {
    const double dt = circuit_.dt();
    return dt > 0.0 ? (coil_flux_ - coil_flux_prev_) / dt : 0.0;
}

// The layout is that of a machine of four coils and speaks of an angle, kept.
void Calc_Eq_solenoid::write_dump() const {
    CoilDump dump(circuit_.time, circuit_.step_count);
    dump.line("Angle For Flux Reference [deg]", {position_});
    dump.block("Flux Linkage", magnet_.magnet_flux, 1);
    dump.line("Current For Inductance Referenece", {std::fabs(circuit_.current_out[0])});
    dump.block("Inductance Matrix", circuit_.inductance, 4);
    dump.phase_currents("Current For Force Reference", circuit_.current);
    dump.line("Force", {force_});
    dump.append_to("KZsolenoid.txt");
}

}  // namespace kzb
