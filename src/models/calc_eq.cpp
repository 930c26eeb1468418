#include "models/calc_eq.h"

namespace kzb {

Calc_Eq::Calc_Eq() {
    reset();
    debug_.open();
}

Calc_Eq::~Calc_Eq() = default;

void Calc_Eq::reset() {
    store_ = nullptr;
    machine_ = PmsmMachine{};
    corrections_ = PmsmCorrections{};
    temperatures_ = PmsmTemperatures{};
    step_ = PmsmStep{};
    losses_ = PmsmLosses{};
    integral_ = FluxIntegralState{};
    skew_ = SkewParameters{};
    user_parameters_.reset();
    winding_.reset();
}

void Calc_Eq::set_initial_current(int phase, double ampere) {
    if (is_phase(phase)) {
        const auto k = static_cast<std::size_t>(phase - 1);
        step_.current_previous[k] = ampere;
        step_.initial_current_set[k] = true;
    }
}

void Calc_Eq::set_initial_time(double second) {
    step_.time_previous = second;
    step_.initial_time_set = true;
}

void Calc_Eq::set_current(int phase, double ampere) {
    if (is_phase(phase)) {
        const auto k = static_cast<std::size_t>(phase - 1);
        step_.current_previous[k] = step_.current[k];
        step_.current[k] = ampere;
    }
}

double Calc_Eq::inductance(int row, int column) const {
    if (!is_phase(row) || !is_phase(column)) {
        return 0.0;
    }
    return step_.inductance[static_cast<std::size_t>((row - 1) * 3 + (column - 1))];
}

}  // namespace kzb
