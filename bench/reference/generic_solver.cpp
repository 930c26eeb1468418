#include "bench/reference/generic_solver.h"

#include <algorithm>
#include <cmath>

namespace kzb_reference::generic {

Solver::Solver(const Circuit& circuit, double dt, bool track_best)
    : circuit_(circuit), dt_(dt), track_best_(track_best) {
    for (const auto& branch : circuit_.branches) {
        branch->equation = branch->is_probe != 0 ? -1 : unknowns_++;
    }
    for (const auto& terminal : circuit_.terminals) {
        terminal->equation = terminal->unknown() ? unknowns_++ : -1;
    }
    clear();
}

void Solver::clear() {
    matrix_ = Matrix(unknowns_, unknowns_);
    rhs_.assign(static_cast<std::size_t>(unknowns_), 0.0);
    if (iteration == 0) {
        best_.assign(static_cast<std::size_t>(unknowns_), 0.0);
    }
}

void Solver::solve_once() {
    ++iteration;
    assemble();
    eliminate(matrix_, rhs_);
}

void Solver::assemble() {
    for (const auto& branch : circuit_.branches) {
        const int k = branch->equation;
        if (k < 0) {
            continue;
        }
        if (branch->first->unknown()) {
            matrix_(branch->first->equation, k) = 1.0;
        }
        if (branch->second->unknown()) {
            matrix_(branch->second->equation, k) = -1.0;
        }
        const LineElementType& type = *branch->element_type;
        if (type.type == -1) {
            terminal_terms(*branch);
            matrix_(k, k) += type.get_parameter("resistance") * dt_;
        } else if (type.type == -3) {
            terminal_terms(*branch);
            matrix_(k, k) += type.get_parameter("inductance");
            rhs(k) += branch->previous_current * type.get_parameter("inductance");
        } else if (type.type == -2) {
            terminal_terms(*branch);
            matrix_(k, k) += dt_ * dt_ / type.get_parameter("capacitance");
            rhs(k) -= dt_ * branch->first->previous_potential;
            rhs(k) += dt_ * branch->second->previous_potential;
        } else if (type.type == 1) {
            fem_coil_row(*branch, dynamic_cast<const FEMCoil&>(type));
        }
    }
    for (const auto& terminal : circuit_.terminals) {
        if (terminal->type == 3) {
            rhs(terminal->equation) += terminal->source_current;
        }
    }
}

void Solver::terminal_terms(const Branch& branch) {
    const int k = branch.equation;
    if (branch.first->unknown()) {
        matrix_(k, branch.first->equation) -= dt_;
    } else {
        rhs(k) += branch.first->potential * dt_;
    }
    if (branch.second->unknown()) {
        matrix_(k, branch.second->equation) += dt_;
    } else {
        rhs(k) -= branch.second->potential * dt_;
    }
}

void Solver::fem_coil_row(const Branch& branch, const FEMCoil& coil) {
    const int k = branch.equation;
    const double phi = coil.scaled_flux();
    const double phi_prev = coil.previous_flux;
    matrix_(k, k) += coil.resistance * branch.temperature_factor() * dt_;
    rhs(k) -= phi - phi_prev;
    terminal_terms(branch);
    for (const int j : coil.interacted) {
        const auto other = circuit_.branch_of_element_type(j);
        const auto coil_j = other ? std::dynamic_pointer_cast<FEMCoil>(other->element_type) : nullptr;
        if (!coil_j) {
            continue;
        }
        const double m = coil_j->scaled_inductance(coil.id);
        matrix_(k, other->equation) += m;
        rhs(k) += other->current * m;
    }
}

double Solver::residual() const {
    double sum = 0.0;
    for (const auto& branch : circuit_.branches) {
        if (in_range(branch->equation)) {
            sum += std::fabs(rhs_[static_cast<std::size_t>(branch->equation)] - branch->current);
        }
    }
    return sum;
}

void Solver::record_best() {
    if (!track_best_) {
        best_ = rhs_;
        return;
    }
    const double r = residual();
    if (iteration == 1 || best_residual_ > r) {
        best_residual_ = r;
        best_iteration = iteration;
        best_ = rhs_;
    }
}

void Solver::apply_iterate(double factor) const {
    for (const auto& branch : circuit_.branches) {
        if (in_range(branch->equation)) {
            const double present = branch->current;
            branch->current = (rhs_[static_cast<std::size_t>(branch->equation)] - present) * factor + present;
        }
    }
    for (const auto& terminal : circuit_.terminals) {
        if (terminal->unknown() && in_range(terminal->equation)) {
            terminal->potential = rhs_[static_cast<std::size_t>(terminal->equation)];
        }
    }
}

void Solver::apply_best() const {
    for (const auto& branch : circuit_.branches) {
        if (in_range(branch->equation)) {
            branch->current = best_[static_cast<std::size_t>(branch->equation)];
        }
    }
    for (const auto& terminal : circuit_.terminals) {
        if (terminal->unknown() && in_range(terminal->equation)) {
            terminal->potential = best_[static_cast<std::size_t>(terminal->equation)];
        }
    }
}

}  // namespace kzb_reference::generic
