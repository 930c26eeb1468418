// The fixed three-phase network of a machine and its solve: element currents first, terminal potentials behind.
//
//   star   elements 1-4, 2-4, 3-4 on four terminals        delta  elements 1-2, 2-3, 3-1 on three
//   element row   dt R i + leakage i + sum of coupling * i - dt p_from + dt p_to = right-hand side
//   node row      +1 for every element leaving the terminal, -1 for every element arriving
#pragma once

#include <memory>
#include <vector>

namespace kzb_reference {

struct Element {
    int from;
    int to;
    double resistance;
};

struct Terminal {
    int id;
    double potential = 0.0;
};

struct Network {
    int port_count = 0;
    std::vector<std::shared_ptr<Element>> elements;
    std::vector<std::shared_ptr<Terminal>> terminals;

    // 0 star, 1 delta; another connection builds nothing.
    void build(int connection, double resistance);
    double resistance_of(int index) const;
};

// A dense matrix with its numbers on the heap, addressed row by row.
class Matrix {
  public:
    Matrix(int rows, int columns)
        : columns_(columns), numbers_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), 0.0) {}
    double& operator()(int row, int column) { return numbers_[static_cast<std::size_t>(row * columns_ + column)]; }
    double operator()(int row, int column) const { return numbers_[static_cast<std::size_t>(row * columns_ + column)]; }

  private:
    int columns_;
    std::vector<double> numbers_;
};

void eliminate(Matrix& matrix, std::vector<double>& rhs);

// One solve; made and destroyed by the step.
class WindingSolver {
  public:
    bool solve_flux_form(const Network& network, const double* voltage, double dt, const double* flux,
                         const double* previous_flux, const double* coupling, const double* previous_coupling,
                         const double* current, const double* resistance, const double* leakage, const bool* flags);
    bool solve_emf_form(const Network& network, const double* voltage, double dt, const double* emf,
                        const double* coupling, const double* current, const double* resistance, const double* leakage,
                        const bool* flags);
    const std::vector<double>& solution() const { return solution_; }
    const std::vector<double>& terminal_currents() const { return terminal_currents_; }

  private:
    void solve(const Network& network, const Matrix& a, const std::vector<double>& b, const bool* flags);
    void set_nodes(const Network& network, Matrix& a, double dt) const;
    void set_potentials(const Network& network, const double* voltage, const bool* flags) const;
    std::vector<double> solution_;
    std::vector<double> terminal_currents_;
};

}  // namespace kzb_reference
