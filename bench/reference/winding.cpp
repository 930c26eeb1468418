#include "bench/reference/winding.h"

#include <cstddef>

namespace kzb_reference {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

}  // namespace

void Network::build(int connection, double resistance) {
    static constexpr int star[3][2] = {{1, 4}, {2, 4}, {3, 4}};
    static constexpr int delta[3][2] = {{1, 2}, {2, 3}, {3, 1}};
    elements.clear();
    terminals.clear();
    if (connection != 0 && connection != 1) {
        return;
    }
    port_count = 3;
    const auto& ends = connection == 0 ? star : delta;
    for (const auto& end : ends) {
        elements.push_back(std::make_shared<Element>(Element{end[0], end[1], resistance}));
    }
    for (int id = 1; id <= (connection == 0 ? 4 : 3); ++id) {
        terminals.push_back(std::make_shared<Terminal>(Terminal{id}));
    }
}

double Network::resistance_of(int index) const {
    return index >= 1 && at(index) <= elements.size() ? elements[at(index - 1)]->resistance : 0.0;
}

void eliminate(Matrix& matrix, std::vector<double>& rhs) {
    const int n = static_cast<int>(rhs.size());
    for (int i = 0; i < n; ++i) {
        if (matrix(i, i) == 0.0) {
            matrix(i, i) = 1e-20;
        }
        for (int r = i + 1; r < n; ++r) {
            matrix(r, i) /= matrix(i, i);
            for (int c = i + 1; c < n; ++c) {
                matrix(r, c) -= matrix(i, c) * matrix(r, i);
            }
            rhs[at(r)] -= rhs[at(i)] * matrix(r, i);
        }
    }
    for (int i = n - 1; i >= 0; --i) {
        for (int c = i + 1; c < n; ++c) {
            rhs[at(i)] -= rhs[at(c)] * matrix(i, c);
        }
        rhs[at(i)] /= matrix(i, i);
    }
}

void WindingSolver::set_potentials(const Network& network, const double* voltage, const bool* flags) const {
    for (int k = 0; k < network.port_count; ++k) {
        if (flags[k]) {
            network.terminals[at(k)]->potential = voltage[k];
        }
    }
}

void WindingSolver::set_nodes(const Network& network, Matrix& a, double dt) const {
    const int m = static_cast<int>(network.elements.size());
    for (int i = 0; i < m; ++i) {
        const Element& element = *network.elements[at(i)];
        a(m + element.from - 1, i) = 1.0;
        a(m + element.to - 1, i) = -1.0;
    }
    for (int i = 0; i < m; ++i) {
        const Element& element = *network.elements[at(i)];
        a(i, m + element.from - 1) = -dt;
        a(i, m + element.to - 1) = dt;
    }
}

bool WindingSolver::solve_flux_form(const Network& network, const double* voltage, double dt, const double* flux,
                                    const double* previous_flux, const double* coupling,
                                    const double* previous_coupling, const double* current, const double* resistance,
                                    const double* leakage, const bool* flags) {
    set_potentials(network, voltage, flags);
    const int m = static_cast<int>(network.elements.size());
    const int order = m + static_cast<int>(network.terminals.size());
    Matrix a(order, order);
    std::vector<double> b(at(order));
    set_nodes(network, a, dt);
    int pair = 0;
    for (int i = 0; i < m; ++i) {
        b[at(i)] = previous_flux[i] - flux[i];
        a(i, i) = dt * resistance[i] + leakage[i];
        b[at(i)] += current[i] * leakage[i];
        for (int j = 0; j < m; ++j, ++pair) {
            b[at(i)] += current[j] * coupling[pair];
            a(i, j) += 2.0 * coupling[pair] - previous_coupling[pair];
        }
    }
    solve(network, a, b, flags);
    return true;
}

bool WindingSolver::solve_emf_form(const Network& network, const double* voltage, double dt, const double* emf,
                                   const double* coupling, const double* current, const double* resistance,
                                   const double* leakage, const bool* flags) {
    set_potentials(network, voltage, flags);
    const int m = static_cast<int>(network.elements.size());
    const int order = m + static_cast<int>(network.terminals.size());
    Matrix a(order, order);
    std::vector<double> b(at(order));
    set_nodes(network, a, dt);
    int pair = 0;
    for (int i = 0; i < m; ++i) {
        b[at(i)] = -(emf[i] * dt);
        a(i, i) = dt * resistance[i] + leakage[i];
        b[at(i)] += current[i] * leakage[i];
        for (int j = 0; j < m; ++j, ++pair) {
            b[at(i)] += current[j] * coupling[pair];
            a(i, j) += coupling[pair];
        }
    }
    solve(network, a, b, flags);
    return true;
}

void WindingSolver::solve(const Network& network, const Matrix& a, const std::vector<double>& b, const bool* flags) {
    const int m = static_cast<int>(network.elements.size());
    const int order = static_cast<int>(b.size());
    Matrix a2 = a;
    std::vector<double> b2 = b;
    for (int k = 0; k < network.port_count; ++k) {
        if (flags[k]) {
            for (int row = 0; row < m; ++row) {
                b2[at(row)] -= network.terminals[at(k)]->potential * a(row, m + k);
            }
        }
    }
    for (int k = 0; k < network.port_count; ++k) {
        if (flags[k]) {
            for (int column = 0; column < order; ++column) {
                a2(m + k, column) = 0.0;
            }
            a2(m + k, m + k) = 1.0;
        }
    }
    eliminate(a2, b2);
    solution_ = b2;
    terminal_currents_.assign(at(order - m), 0.0);
    for (int t = 0; t < order - m; ++t) {
        for (int j = 0; j < m; ++j) {
            terminal_currents_[at(t)] += b2[at(j)] * a(m + t, j);
        }
    }
}

}  // namespace kzb_reference
