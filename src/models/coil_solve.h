// The step of separate coils when every port is driven: the element rows alone.
//
//   (dt R delta_kc + 2 L_kc - L'_kc) i_c = sum over c of L_kc I_c + dt v_k
//
// In the whole system of elements and terminals every terminal row is then a unit row with 0.0 behind it, and all that
// it adds to an element row is a product with 0.0. Left out, the currents stay the same to the last bit, as long as all
// numbers are finite and no current comes out as a zero, whose sign these products may turn.
#pragma once

#include <cstddef>

namespace kzb {

inline constexpr std::size_t most_solved_coils = 5;

struct DrivenCoils {
    std::size_t count;
    double dt;                 // s
    const double* voltage;     // [count] V
    const double* resistance;  // [count] Ohm
    const double* inductance;  // [count * count] H, row by row
    const double* inductance_prev;
    const double* current_prev;  // [count] A
};

// Writes the currents [count]; false where only the whole system tells them, they are then undefined.
bool solve_driven_coils(const DrivenCoils& coils, double* current);

}  // namespace kzb
