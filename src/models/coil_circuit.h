// CoilCircuit: the coils of a machine without terminals in common, each between two ports of its own.
//
//   v_k = R i_k + d/dt (sum over c of L_kc i_c)
//
// One step, with the inductances L taken at the accepted currents I and L' those of the step before:
//
//   dt R i_k + sum over c of (2 L_kc - L'_kc) i_c - dt p_from + dt p_to = sum over c of L_kc I_c
//
// The first port of each coil is driven where its signal is above 0.0; the second is always driven, with 0.0 V.
// `_prev` holds what the last accepted step left; a step starts from there and commits nothing. Vectors are in the
// order of the coils, matrices row by row; all are empty until the circuit is built.
#pragma once

#include <cstddef>
#include <vector>

#include "circuit/winding_network.h"

namespace kzb {

struct CoilCircuit {
    static constexpr int most_coils = 5;

    WindingNetwork network;
    int element_count = 0;  // coils of `network`
    int phase_count = 0;    // the same: every coil is a phase
    std::vector<double> current;
    std::vector<double> current_prev;
    std::vector<double> current_out;  // out of the first terminals
    std::vector<int> initial_set;
    std::vector<double> inductance;
    std::vector<double> inductance_prev;
    std::vector<double> element_resistance;  // Ohm, of the present step
    double R_base = 0.0;                     // Ohm, at base temperature
    double R = 0.0;                          // Ohm, of the present step
    int step_count = 1;
    double time = 0.0;  // s
    double time_prev = 0.0;
    bool initial_time_set = false;

    // Makes the network of `pattern` with `R_base` and sizes the vectors; values that stand already stay.
    void build(int pattern);

    // A phase counts from 1; one that the circuit does not have is left alone, or 0.0.
    void set_initial_current(int phase, double ampere);
    void set_initial_time(double second);
    void set_current(int phase, double ampere);
    static double of_phase(const std::vector<double>& values, int phase);
    double inductance_element(int row, int column) const;

    // ---- one step, in this order
    // Takes the time and the resistance at temperature, and on a first step forgets what was not set.
    void begin(double new_time, double coil_factor);
    bool first_step() const { return step_count == 1; }
    void keep_first_inductance();
    double dt() const { return time - time_prev; }
    // Solves for dt > 0.0; `voltages` and `signals` are of the first ports.
    void solve(const double* voltages, const double* signals);

    // Sum over c of m[row][c] * i[c].
    double row_times(const std::vector<double>& m, std::size_t row, const std::vector<double>& i) const;
    void accept();

  private:
    double network_R = 0.0;  // Ohm, what `network` was built with
    void build_network(int pattern, double resistance);
    void take_resistances();
    bool solve_driven(const double* voltages, const double* signals);
    void solve_network(const double* voltages, const double* signals);
};

}  // namespace kzb
