// The network of the wound-field machine and its solve: four element currents first, terminal potentials behind.
//
//   star   elements 1-5, 2-5, 3-5, 4-6 on six terminals, the sixth at potential zero
//   delta  elements 1-2, 2-3, 3-1, 4-5 on five terminals, the fifth at potential zero
#pragma once

#include <memory>
#include <vector>

namespace kzb_reference {

struct WfsmElement {
    int from;
    int to;
    double resistance;
};

struct WfsmTerminal {
    int id;
    int kind = 3;  // 2: base potential
    double potential = 0.0;
};

struct WfsmNetwork {
    int port_count = 0;
    std::vector<std::shared_ptr<WfsmElement>> elements;
    std::vector<std::shared_ptr<WfsmTerminal>> terminals;

    // 13 star, 14 delta.
    void build(int pattern, double resistance, double field_resistance);
};

// Element currents and terminal potentials.
std::vector<double> wfsm_solve_emf_form(const WfsmNetwork& network, const double* voltage, double dt, const double* emf,
                                        const double* coupling, const double* current, const double* resistance,
                                        const double* leakage, const bool* flags);

}  // namespace kzb_reference
