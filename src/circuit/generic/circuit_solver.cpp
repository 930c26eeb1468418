#include "circuit/generic/circuit_solver.h"

#include <algorithm>
#include <cmath>

#include "circuit/dense_elimination.h"

namespace kzb {

void KZCircuitSolverForGeneric::bind(const KZCircuitForGeneric& circuit) {
    branches_.clear();
    terminals_.clear();
    for (const auto& element : circuit.branches()) {
        Branch branch{element.get(), {}};
        if (const KZFEMCoil* const coil = as_fem_coil(element->element_type.get())) {
            for (const int id : coil->interacted) {
                const KZLineElement* const other = circuit.branch_of_element_type(id);
                const KZFEMCoil* const other_coil = other == nullptr ? nullptr : as_fem_coil(other->element_type.get());
                if (other_coil != nullptr) {
                    branch.interactions.push_back({other, other_coil});
                }
            }
        }
        branches_.push_back(std::move(branch));
    }
    for (const auto& terminal : circuit.terminals()) {
        terminals_.push_back(terminal.get());
    }
}

void KZCircuitSolverForGeneric::begin(double dt, bool track_best) {
    dt_ = dt;
    track_best_ = track_best;
    iteration_ = 0;
    best_residual_ = 0.0;
    best_iteration_ = 0;
    int next = 0;
    for (const Branch& branch : branches_) {
        branch.element->equation = branch.element->is_probe != 0 ? -1 : next++;
    }
    for (KZCircuitTerminal* const terminal : terminals_) {
        terminal->equation = terminal->is_unknown() ? next++ : -1;
    }
    unknowns_ = static_cast<std::size_t>(next);
    best_.assign(unknowns_, 0.0);
    clear();
}

void KZCircuitSolverForGeneric::clear() {
    matrix_.assign(unknowns_ * unknowns_, 0.0);
    rhs_.assign(unknowns_, 0.0);
}

void KZCircuitSolverForGeneric::solve_once() {
    ++iteration_;
    assemble();
    eliminate(matrix_.data(), rhs_.data(), unknowns_);
}

void KZCircuitSolverForGeneric::assemble() {
    for (const Branch& branch : branches_) {
        if (branch.element->equation >= 0) {
            add_current_law(*branch.element);
            add_element_law(branch);
        }
    }
    for (const KZCircuitTerminal* const terminal : terminals_) {
        if (terminal->type == terminal_current_source) {
            rhs(terminal->equation) += terminal->source_current;
        }
    }
}

// Assigned, not summed: a branch with both ends on one terminal holds -1.0 there.
void KZCircuitSolverForGeneric::add_current_law(const KZLineElement& element) {
    if (element.first_terminal->equation >= 0) {
        matrix(element.first_terminal->equation, element.equation) = 1.0;
    }
    if (element.second_terminal->equation >= 0) {
        matrix(element.second_terminal->equation, element.equation) = -1.0;
    }
}

void KZCircuitSolverForGeneric::add_element_law(const Branch& branch) {
    const KZLineElement& element = *branch.element;
    const int k = element.equation;
    const KZLineElementType& type = *element.element_type;
    switch (type.type) {
        case element_type_resistor:
            add_voltage(element);
            matrix(k, k) += static_cast<const KZConstantResistor&>(type).value * dt_;
            break;
        case element_type_inductor: {
            const double inductance = static_cast<const KZConstantCoil&>(type).value;
            add_voltage(element);
            matrix(k, k) += inductance;
            rhs(k) += element.previous_current * inductance;
            break;
        }
        case element_type_capacitor:
            add_voltage(element);
            matrix(k, k) += dt_ * dt_ / static_cast<const KZConstantCapacitor&>(type).value;
            rhs(k) -= dt_ * element.first_terminal->previous_potential;
            rhs(k) += dt_ * element.second_terminal->previous_potential;
            break;
        case element_type_fem_coil:
            add_fem_coil(branch, static_cast<const KZFEMCoil&>(type));
            break;
        default:
            break;
    }
}

void KZCircuitSolverForGeneric::add_voltage(const KZLineElement& element) {
    const int k = element.equation;
    const KZCircuitTerminal& first = *element.first_terminal;
    const KZCircuitTerminal& second = *element.second_terminal;
    if (first.equation >= 0) {
        matrix(k, first.equation) -= dt_;
    } else {
        rhs(k) += first.potential * dt_;
    }
    if (second.equation >= 0) {
        matrix(k, second.equation) += dt_;
    } else {
        rhs(k) -= second.potential * dt_;
    }
}

// One Newton step of psi(i) + R i dt - u dt = psi_prev. The flux is scaled by the coil's corrections, the previous one
// is as the table gave it, as established.
void KZCircuitSolverForGeneric::add_fem_coil(const Branch& branch, const KZFEMCoil& coil) {
    const KZLineElement& element = *branch.element;
    const int k = element.equation;
    matrix(k, k) += coil.resistance * element.temperature_factor() * dt_;
    rhs(k) -= coil.scaled_flux() - coil.previous_flux;
    add_voltage(element);
    for (const CoilInteraction& other : branch.interactions) {
        const double m = other.coil->scaled_inductance(coil.id);
        matrix(k, other.branch->equation) += m;
        rhs(k) += other.branch->current * m;
    }
}

double KZCircuitSolverForGeneric::residual() const {
    double sum = 0.0;
    for (const Branch& branch : branches_) {
        if (branch.element->equation >= 0) {
            sum += std::fabs(rhs_[static_cast<std::size_t>(branch.element->equation)] - branch.element->current);
        }
    }
    return sum;
}

void KZCircuitSolverForGeneric::record_best() {
    if (track_best_) {
        const double distance = residual();
        if (iteration_ != 1 && !(best_residual_ > distance)) {
            return;
        }
        best_residual_ = distance;
        best_iteration_ = iteration_;
    }
    std::copy(rhs_.begin(), rhs_.end(), best_.begin());
}

void KZCircuitSolverForGeneric::apply_iterate(double factor) {
    for (const Branch& branch : branches_) {
        KZLineElement& element = *branch.element;
        if (element.equation >= 0) {
            element.current = (rhs(element.equation) - element.current) * factor + element.current;
        }
    }
    for (KZCircuitTerminal* const terminal : terminals_) {
        if (terminal->equation >= 0) {
            terminal->potential = rhs(terminal->equation);
        }
    }
}

void KZCircuitSolverForGeneric::apply_best() {
    for (const Branch& branch : branches_) {
        if (branch.element->equation >= 0) {
            branch.element->current = best_[static_cast<std::size_t>(branch.element->equation)];
        }
    }
    for (KZCircuitTerminal* const terminal : terminals_) {
        if (terminal->equation >= 0) {
            terminal->potential = best_[static_cast<std::size_t>(terminal->equation)];
        }
    }
}

}  // namespace kzb
