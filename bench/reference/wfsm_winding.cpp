#include "bench/reference/wfsm_winding.h"

#include <cstddef>

#include "bench/reference/winding.h"

namespace kzb_reference {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

void fix_base_terminals(const WfsmNetwork& network, Matrix& a2) {
    const int m = static_cast<int>(network.elements.size());
    const int n = static_cast<int>(network.terminals.size());
    for (int t = 0; t < n; ++t) {
        if (network.terminals[at(t)]->kind != 2) {
            continue;
        }
        for (int row = 0; row < m; ++row) {
            a2(row, m + t) = 0.0;
        }
        for (int column = 0; column < n; ++column) {  // the columns beyond keep their numbers
            a2(m + t, column) = 0.0;
        }
        a2(m + t, m + t) = 1.0;
    }
}

void fix_driven_ports(const WfsmNetwork& network, const bool* flags, Matrix& a2) {
    const int m = static_cast<int>(network.elements.size());
    const int order = m + static_cast<int>(network.terminals.size());
    for (int k = 0; k < network.port_count; ++k) {
        if (flags[k]) {
            for (int column = 0; column < order; ++column) {
                a2(m + k, column) = 0.0;
            }
            a2(m + k, m + k) = 1.0;
        }
    }
}

}  // namespace

void WfsmNetwork::build(int pattern, double resistance, double field_resistance) {
    static constexpr int star[4][2] = {{1, 5}, {2, 5}, {3, 5}, {4, 6}};
    static constexpr int delta[4][2] = {{1, 2}, {2, 3}, {3, 1}, {4, 5}};
    elements.clear();
    terminals.clear();
    if (pattern != 13 && pattern != 14) {
        return;
    }
    port_count = 4;
    const auto& ends = pattern == 13 ? star : delta;
    for (int k = 0; k < 4; ++k) {
        const double r = k == 3 ? field_resistance : resistance;
        elements.push_back(std::make_shared<WfsmElement>(WfsmElement{ends[k][0], ends[k][1], r}));
    }
    const int count = pattern == 13 ? 6 : 5;
    for (int id = 1; id <= count; ++id) {
        terminals.push_back(std::make_shared<WfsmTerminal>(WfsmTerminal{id, id == count ? 2 : 3}));
    }
}

std::vector<double> wfsm_solve_emf_form(const WfsmNetwork& network, const double* voltage, double dt, const double* emf,
                                        const double* coupling, const double* current, const double* resistance,
                                        const double* leakage, const bool* flags) {
    for (int k = 0; k < network.port_count; ++k) {
        if (flags[k]) {
            network.terminals[at(k)]->potential = voltage[k];
        }
    }
    const int m = static_cast<int>(network.elements.size());
    const int order = m + static_cast<int>(network.terminals.size());
    Matrix a(order, order);
    std::vector<double> b(at(order));
    for (int i = 0; i < m; ++i) {
        const WfsmElement& element = *network.elements[at(i)];
        a(m + element.from - 1, i) = 1.0;
        a(m + element.to - 1, i) = -1.0;
    }
    int pair = 0;
    for (int i = 0; i < m; ++i) {
        const WfsmElement& element = *network.elements[at(i)];
        a(i, m + element.from - 1) = -dt;
        a(i, m + element.to - 1) = dt;
        b[at(i)] = -(emf[i] * dt);
        a(i, i) = dt * resistance[i] + leakage[i];
        b[at(i)] += current[i] * leakage[i];
        for (int j = 0; j < m; ++j, ++pair) {
            b[at(i)] += current[j] * coupling[pair];
            a(i, j) += coupling[pair];
        }
    }
    Matrix a2 = a;
    std::vector<double> b2 = b;
    for (int k = 0; k < network.port_count; ++k) {
        if (flags[k]) {
            for (int row = 0; row < m; ++row) {
                b2[at(row)] -= network.terminals[at(k)]->potential * a(row, m + k);
            }
        }
    }
    fix_driven_ports(network, flags, a2);
    fix_base_terminals(network, a2);
    eliminate(a2, b2);
    return b2;
}

}  // namespace kzb_reference
