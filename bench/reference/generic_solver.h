// One step's linear system of a generic circuit: branch currents first, free potentials behind, backward Euler.
#pragma once

#include "bench/reference/generic_circuit.h"
#include "bench/reference/winding.h"

namespace kzb_reference::generic {

class Solver {
  public:
    Solver(const Circuit& circuit, double dt, bool track_best);
    void solve_once();
    void record_best();
    double residual() const;
    void apply_iterate(double factor) const;
    void clear();
    void apply_best() const;

    int iteration = 0;
    int best_iteration = 0;

  private:
    bool in_range(int equation) const { return equation >= 0 && equation < unknowns_; }
    void assemble();
    void terminal_terms(const Branch& branch);
    void fem_coil_row(const Branch& branch, const FEMCoil& coil);
    double& rhs(int i) { return rhs_[static_cast<std::size_t>(i)]; }

    const Circuit& circuit_;
    int unknowns_ = 0;
    Matrix matrix_{0, 0};
    std::vector<double> rhs_;
    double dt_;
    bool track_best_;
    double best_residual_ = 0.0;
    std::vector<double> best_;
};

}  // namespace kzb_reference::generic
