#include "models/calc_eq_sm.h"

#include <cmath>

#include "models/coil_dump.h"
#include "models/history.h"

namespace kzb {
namespace {

constexpr double pi = 3.141592653589793;
constexpr int pattern_separate_four = 4;
constexpr std::size_t coils = 4;

// Current of a phase, from those of its two half coils.
double difference(const std::vector<double>& current, std::size_t plus) {
    return current[plus] - current[plus + 1];
}

}  // namespace

void Calc_Eq_sm::reset() {
    CoilMachine::reset();
    magnet_ = CoilMagnet{};
    voltage_.clear();
    voltage_new_.clear();
    torque_ = 0.0;
    pole_pairs_ = 0;
    phase_current_memo_ = 0.0;
    tables_ = Tables{};
}

void Calc_Eq_sm::bind(KZB_STORE& store) {
    // Two stores may have the same revision: nothing that another one answered is kept.
    tables_ = Tables{};
    set_application(store, "2-PhaseStepping", "");
    take_resistance(store, "RA+");
    circuit_.build(pattern_separate_four);
    magnet_.resize(coils);
    voltage_.resize(coils, 0.0);
    voltage_new_.resize(coils, 0.0);
    fold_corrections(store);
    pole_pairs_ = static_cast<int>(get_int(store, "control", "number_of_poles") * 0.5);
    store_ = &store;
}

void Calc_Eq_sm::step(double d0, double d1, double d2, double d3, double position, double time, double signal0,
                      double signal1, double signal2, double signal3) {
    if (store_ == nullptr) {
        return;
    }
    position_ = position;
    circuit_.begin(time, coil_factor());
    const double ang = angle();
    magnet_.update(*store_, tables_.flux, ang, magnet_factor(), corrections_.correction_flux);
    if (circuit_.first_step()) {
        magnet_.keep_first();
    }
    update_inductance(ang);
    circuit_.keep_first_inductance();
    const double dt = circuit_.dt();
    if (dt > 0.0) {
        const double voltages[coils] = {d0, d1, d2, d3};
        const double signals[coils] = {signal0, signal1, signal2, signal3};
        circuit_.solve(voltages, signals);
        for (std::size_t k = 0; k < coils; ++k) {
            voltage_new_[k] = magnet_.voltage(k, dt);
        }
    } else if (dt <= 0.0) {
        circuit_.current = circuit_.current_prev;
    }
    update_torque(ang, temperature_torque(circuit_.current_out));
    if (debug_dump_) {
        write_dump();
    }
}

double Calc_Eq_sm::evaluate_torque() {
    if (store_ != nullptr) {
        const double ang = angle();
        magnet_.update(*store_, tables_.flux, ang, magnet_factor(), corrections_.correction_flux);
        // Kept: this way takes the solved currents where a step takes those of the terminals.
        update_torque(ang, temperature_torque(circuit_.current));
        update_inductance(ang);
    }
    return torque_;
}

// Of the tables, mechanical degrees.
double Calc_Eq_sm::angle() const {
    return position_ * 180.0 / pi;
}

// Tables store the matrix by columns: element 4 c + r stands at row r, column c. Rows of a phase see its own current.
void Calc_Eq_sm::update_inductance(double angle) {
    const double i_a = difference(circuit_.current_prev, 0) * corrections_.turns2;
    // Kept: the second phase goes without the ratio of turns.
    const double i_b = difference(circuit_.current_prev, 2);
    for (std::size_t r = 0; r < coils; ++r) {
        phase_current_memo_ = r < 2 ? i_a : i_b;
        const double point[2] = {std::fabs(phase_current_memo_), angle};
        double* const row = circuit_.inductance.data() + r * coils;
        tables_.inductance.components(*store_, method(), point, 2, {int{coils}, static_cast<int>(r), int{coils}}, row);
        for (std::size_t c = 0; c < coils; ++c) {
            row[c] *= corrections_.correction_inductance;
        }
    }
}

// What the warm magnet lost, as a torque: the flux of each half coil over the rotor angle is a sine of its own phase.
double Calc_Eq_sm::temperature_torque(const std::vector<double>& current) const {
    static constexpr double offset[coils] = {0.0, 0.0, 1.0, 1.0};
    static constexpr double sign[coils] = {1.0, -1.0, 1.0, -1.0};
    const auto pairs = static_cast<double>(pole_pairs_);
    double sum = 0.0;
    for (std::size_t k = 0; k < coils; ++k) {
        sum += std::sin((position_ - pi / (2 * pairs) * offset[k]) * pairs) * pairs * sign[k] *
               magnet_.flux_temperature_delta[k] * current[k];
    }
    return sum;
}

void Calc_Eq_sm::update_torque(double angle, double temperature_term) {
    const double j_a = difference(circuit_.current_out, 0) * corrections_.turns2;
    const double j_b = difference(circuit_.current_out, 2) * corrections_.turns2;
    const double point[3] = {j_a, angle, j_b};
    torque_ = tables_.torque.at(*store_, method(), point, 3) * corrections_.correction_torque - temperature_term;
}

void Calc_Eq_sm::accept() {
    CoilMachine::accept();
    magnet_.accept();
    shift_history(voltage_new_, voltage_);
}

double Calc_Eq_sm::induced_voltage(int phase) {
    const double dt = circuit_.dt();
    if (phase < 1 || phase > 5 || dt <= 0.0) {
        return 0.0;
    }
    const auto k = static_cast<std::size_t>(phase - 1);
    if (k >= magnet_.magnet_flux.size()) {
        // Kept: a fifth phase reads so.
        return (CoilMagnet::no_such_coil - 0.0) / dt;
    }
    const CoilCircuit& c = circuit_;
    const double linkage = magnet_.magnet_flux[k] + c.row_times(c.inductance, k, c.current);
    const double linkage_prev = magnet_.magnet_flux_prev[k] + c.row_times(c.inductance_prev, k, c.current_prev);
    return (linkage - linkage_prev) / dt;
}

// Kept: of the whole matrix the first element of the last row answers, for any row of the first column.
double Calc_Eq_sm::inductance_element(int row, int column) const {
    const bool answered = row >= 1 && row <= circuit_.phase_count && column == 1;
    return answered ? circuit_.inductance_element(circuit_.phase_count, 1) : 0.0;
}

void Calc_Eq_sm::write_dump() const {
    const double i_a = difference(circuit_.current_prev, 0) * corrections_.turns2;
    CoilDump dump(circuit_.time, circuit_.step_count);
    dump.line("Angle For Flux Reference [deg]", {angle()});
    dump.block("Flux Linkage", magnet_.magnet_flux, 1);
    dump.line("Current For Inductance Referenece",
              {std::fabs(i_a / corrections_.turns2), std::fabs(phase_current_memo_)});
    dump.block("Inductance Matrix", circuit_.inductance, 4);
    dump.phase_currents("Current For Torque Reference", circuit_.current);
    dump.line("Torque", {torque_});
    dump.append_to("KZstep.txt");
}

}  // namespace kzb
