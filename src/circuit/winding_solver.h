// WindingSolver: one solve of a winding network, a modified nodal system of element currents and terminal potentials.
//
//   unknowns  x = (i_1 .. i_M, p_1 .. p_N): element currents (A), then terminal potentials (V); order M + N
//   element row  dt R i_e + Ll i_e + sum over coils c of K[e][c] i_c - dt p_from + dt p_to = right-hand side
//   node row     sum of currents leaving - sum of currents arriving = injected current
//
// Flux form: K = 2 L - L_previous; EMF form: K = L. The place of a driven terminal in the solution holds the right-hand
// side of its node row, normally 0.0, not the driven potential; its potential stands in the element rows instead.
// A solver lives for one call and allocates nothing.
#pragma once

#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cstddef>

#include "circuit/winding_network.h"

namespace kzb {

// Arrays are in element, coil or port order; M elements, C coils, P ports.
struct WindingInput {
    const double* voltages = nullptr;           // [P] V
    const bool* flags = nullptr;                // [P] true where the port is driven
    double dt = 0.0;                            // s
    const double* flux = nullptr;               // [C] Vs, flux form
    const double* previous_flux = nullptr;      // [C] Vs, flux form
    const double* emf = nullptr;                // [C] V, EMF form
    const double* coupling = nullptr;           // [C * C] H, row by row
    const double* previous_coupling = nullptr;  // [C * C] H, flux form
    const double* current = nullptr;            // [M] A
    const double* resistance = nullptr;         // [M] Ohm
    const double* leakage = nullptr;            // [M] H
};

// The four-current system (2 L - L_previous + dt R) y = L x + dt v; matrices [16] row by row, vectors [4].
struct DenseInput {
    const double* l = nullptr;
    const double* l_previous = nullptr;
    const double* r = nullptr;
    const double* x = nullptr;
    const double* v = nullptr;
};

class WindingSolver {
  public:
    static constexpr std::size_t max_order = 16;

    explicit WindingSolver(const WindingNetwork& network) : network_(network) {}

    // False when a driven port has no terminal or an element no known kind; the solve has still been made.
    bool solve_flux_form(const WindingInput& input);
    bool solve_emf_form(const WindingInput& input);
    // Of `input` only `voltages`, `flags` and `dt` are read. The solution is the M element currents.
    bool solve_dense(const WindingInput& input, const DenseInput& system);

    std::size_t element_count() const { return element_count_; }    // M
    std::size_t terminal_count() const { return terminal_count_; }  // N
    std::size_t order() const { return order_; }
    const double* solution() const { return solution_.data().begin(); }                    // [order]
    const double* terminal_currents() const { return terminal_currents_.data().begin(); }  // [N] A, not of solve_dense

  private:
    enum class Form { flux, emf };
    bool solve(const WindingInput& input, Form form);
    void solve_four(double dt, const DenseInput& system);
    void take_network(const WindingInput& input);
    bool set_order(std::size_t order);
    void node_rows();
    void element_rows(const WindingInput& input, Form form);
    void boundary_conditions(const WindingInput& input);
    void eliminate_system();
    void sum_terminal_currents();
    double* row(std::size_t i) { return system_.data().begin() + i * stride_; }
    double& rhs(std::size_t i) { return row(i)[order_]; }
    double* leaving(std::size_t terminal) { return incidence_.data().begin() + terminal * element_count_; }

    const WindingNetwork& network_;
    std::size_t terminal_count_ = 0;
    std::size_t port_count_ = 0;
    std::size_t element_count_ = 0;
    std::size_t order_ = 0;
    std::size_t stride_ = 0;
    // The system, each row with its right-hand side behind it.
    boost::numeric::ublas::bounded_matrix<double, max_order, max_order + 2> system_{0, 0};
    // The node rows as they were before the boundary conditions: 1.0, -1.0 or 0.0 per terminal and element.
    boost::numeric::ublas::bounded_matrix<double, max_order, max_order> incidence_{0, 0};
    boost::numeric::ublas::bounded_vector<double, max_order> solution_{0};
    boost::numeric::ublas::bounded_vector<double, max_order> terminal_currents_{0};
    bool ok_ = true;
};

}  // namespace kzb
