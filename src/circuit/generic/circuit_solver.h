// KZCircuitSolverForGeneric: the linear system of one pass of the Newton iteration, a modified nodal analysis.
//
//   unknowns     one current per branch that is no probe, then one potential per terminal that is not fixed
//   branch row   the element's law under backward Euler, multiplied by dt where a resistance or a capacitance stands
//   node row     sum of branch currents leaving = injected current
//
//   resistor   R dt i = u dt                    inductor  L i - L i_prev = u dt
//   capacitor  dt^2 / C i = (u - u_prev) dt     FEM coil  R dt i + sum m (i_j - i_j,now) = u dt - (psi - psi_prev)
//
// u is the potential of the first terminal less that of the second. A solver serves one step; its arrays keep their
// memory from step to step.
#pragma once

#include <vector>

#include "circuit/generic/generic_circuit.h"

namespace kzb {

class KZCircuitSolverForGeneric {
  public:
    // Finds the coils that act on each FEM coil; the circuit's structure doesn't change after.
    void bind(const KZCircuitForGeneric& circuit);

    // Starts a step: numbers the unknowns and clears.
    void begin(double dt, bool track_best);
    // Adds 1 to `iteration`, assembles, eliminates. A singular system gives large or non-finite numbers.
    void solve_once();
    // Keeps the solution that moves the currents least, the earlier one of two; the last one when not tracked.
    void record_best();
    // Sum of the distances between solved and present branch currents (A).
    double residual() const;
    // Writes the solution into the circuit, the currents relaxed by `factor`, the potentials as they are.
    void apply_iterate(double factor);
    // Zeroes matrix and right-hand side.
    void clear();
    void apply_best();

    int iteration() const { return iteration_; }
    int best_iteration() const { return best_iteration_; }

  private:
    struct CoilInteraction {
        const KZLineElement* branch;
        const KZFEMCoil* coil;
    };
    struct Branch {
        KZLineElement* element;
        std::vector<CoilInteraction> interactions;  // of a FEM coil
    };

    double& matrix(int row, int column) {
        return matrix_[static_cast<std::size_t>(row) * unknowns_ + static_cast<std::size_t>(column)];
    }
    double& rhs(int row) { return rhs_[static_cast<std::size_t>(row)]; }
    void assemble();
    void add_current_law(const KZLineElement& element);
    void add_element_law(const Branch& branch);
    void add_voltage(const KZLineElement& element);
    void add_fem_coil(const Branch& branch, const KZFEMCoil& coil);

    std::vector<Branch> branches_;
    std::vector<KZCircuitTerminal*> terminals_;
    int iteration_ = 0;
    std::size_t unknowns_ = 0;
    std::vector<double> matrix_;  // row by row
    std::vector<double> rhs_;     // after the elimination the solution
    double dt_ = 0.0;             // s
    bool track_best_ = true;
    double best_residual_ = 0.0;  // A
    int best_iteration_ = 0;
    std::vector<double> best_;
};

}  // namespace kzb
