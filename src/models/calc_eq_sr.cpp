#include "models/calc_eq_sr.h"

#include <cmath>

#include "models/coil_dump.h"
#include "models/history.h"

namespace kzb {

void Calc_Eq_sr::reset() {
    CoilMachine::reset();
    phases_ = 0;
    torque_ = 0.0;
    flux_.clear();
    flux_prev_.clear();
    tables_ = Tables{};
    poles_revision_ = 0;
}

void Calc_Eq_sr::bind(KZB_STORE& store, int phases) {
    // Two stores may have the same revision: nothing that another one answered is kept.
    tables_ = Tables{};
    poles_revision_ = 0;
    take_resistance(store, "RU");
    set_application(store, "SR", "");
    phases_ = phases;
    const bool has_pattern = phases >= 3 && phases <= 5;
    circuit_.build(has_pattern ? phases + 5 : -1);
    flux_.resize(circuit_.current.size(), 0.0);
    flux_prev_.resize(circuit_.current.size(), 0.0);
    fold_corrections(store);
    store_ = &store;
}

void Calc_Eq_sr::step(const double* voltages, double position, double time, const double* signals) {
    if (store_ == nullptr) {
        return;
    }
    position_ = position;
    circuit_.begin(time, coil_factor());
    const double ang = angle();
    update_inductance(ang);
    circuit_.keep_first_inductance();
    if (circuit_.dt() > 0.0) {
        circuit_.solve(voltages, signals);
    } else if (circuit_.dt() <= 0.0) {
        circuit_.current = circuit_.current_prev;
        flux_prev_ = flux_;
    }
    update_torque(ang);
    update_flux(ang);
    if (debug_dump_) {
        write_dump();
    }
}

double Calc_Eq_sr::evaluate_torque() {
    if (store_ != nullptr) {
        const double ang = angle();
        update_torque(ang);
        update_flux(ang);
    }
    return torque_;
}

// Of the tables, mechanical degrees.
double Calc_Eq_sr::angle() const {
    return position_ * 180.0 / 3.141592653589793;
}

// Tables store the matrix by columns: element n * c + r stands at row r, column c. A row sees the current of its phase.
void Calc_Eq_sr::look_up_row(const Method& method, std::size_t r, double current, double angle, double* row) {
    const int n = circuit_.element_count;
    const double point[2] = {std::fabs(current * corrections_.turns2), angle};
    tables_.inductance.components(*store_, method, point, 2, {n, static_cast<int>(r), n}, row);
}

void Calc_Eq_sr::update_inductance(double angle) {
    const std::size_t n = circuit_.current_prev.size();
    for (std::size_t r = 0; r < n; ++r) {
        double* const row = circuit_.inductance.data() + r * n;
        look_up_row(method(), r, circuit_.current_prev[r], angle, row);
        for (std::size_t c = 0; c < n; ++c) {
            row[c] *= corrections_.correction_inductance;
        }
    }
}

// Each phase sees the table of the first at its own angle.
void Calc_Eq_sr::update_torque(double angle) {
    const double pole_pitch = 360.0 / number_of_poles();
    const auto n = static_cast<double>(circuit_.current_out.size());
    double sum = 0.0;
    double k = 0.0;
    for (const double current : circuit_.current_out) {
        const double point[2] = {k * pole_pitch / n + angle, current * corrections_.turns2};
        sum += tables_.torque.at(*store_, method(), point, 2);
        k += 1.0;
    }
    torque_ = sum * corrections_.correction_torque;
}

// Always by "Linear", and at the currents just found.
void Calc_Eq_sr::update_flux(double angle) {
    const std::vector<double>& current = circuit_.current;
    const std::size_t n = current.size();
    for (std::size_t r = 0; r < n; ++r) {
        double row[CoilCircuit::most_coils];
        look_up_row(tables_.linear, r, current[r], angle, row);
        double sum = 0.0;
        for (std::size_t c = 0; c < n; ++c) {
            sum += row[c] * corrections_.correction_inductance * current[c];
        }
        flux_[r] = sum;
    }
}

// The file's present answer: a caller may change it between samples.
int Calc_Eq_sr::number_of_poles() {
    if (poles_revision_ != store_->revision) {
        poles_revision_ = store_->revision;
        poles_ = get_int(*store_, "control", "number_of_poles");
    }
    return poles_;
}

void Calc_Eq_sr::accept() {
    CoilMachine::accept();
    shift_history(flux_, flux_prev_);
}

double Calc_Eq_sr::induced_voltage(int phase) {
    const double dt = circuit_.dt();
    if (!(dt > 0.0)) {
        return 0.0;
    }
    return (CoilCircuit::of_phase(flux_, phase) - CoilCircuit::of_phase(flux_prev_, phase)) / dt;
}

// The layout is that of a machine of two phases, kept.
void Calc_Eq_sr::write_dump() const {
    CoilDump dump(circuit_.time, circuit_.step_count);
    dump.block("Inductance Matrix", circuit_.inductance, 8);
    dump.phase_currents("Current For Torque Reference", circuit_.current);
    dump.line("Torque", {torque_});
    dump.append_to("KZSR.txt");
}

}  // namespace kzb
