// Machines for the benchmarks and their tests: saturating, with slotting harmonics, every table filled by formula.
//
//   i_d = -sin(beta) I sqrt(1.5), i_q = cos(beta) I sqrt(1.5), theta = position * pole pairs + beta_zero
//   psi_d = psi_m + L_d i_d / (1 + |i_d| / i_s),  psi_q = L_q i_q / (1 + |i_q| / i_s),  plus sixth harmonics
//
// The numbers are those of a traction machine of some 50 kW; nothing is fitted, the tables only need a real shape.
#pragma once

#include "bench/reference/store.h"

namespace kzb_reference {

struct SampleMachine {
    int motor_type = 10000;
    int accuracy_type = 3;  // 1 LdLq, 2 SimpleHarmonic, 3 Harmonic, 5 FluxIntegralDQTheta
    int connection = 0;     // 0 star, 1 delta
    int poles = 8;
    double beta_zero = 0.0;         // degrees
    int torque_axes = 3;            // of SimpleHarmonic: 3 table, 2 coenergy
    bool currents_as_axes = false;  // Harmonic tables over three phase currents
    bool iron_loss = true;
    bool loss_table = false;
    bool corrections = false;
    bool copper_loss_table = false;
    bool leakage = false;
    bool user_parameters = false;
    bool phase_symmetry = false;  // Harmonic over the current phases -90 to 90 alone
    bool zero_axis = false;       // flux-integral tables over d, q and zero flux
    double turns_in_coil = 35.0;
    double turns = 0.0;  // of the corrections; 0: as in the file
};

// The fifteen categories of a file that offers every PMSM application but the flux-integral one, or that one, or the
// linear machine, in the order in which such files hold them.
void make_sample_machine(const SampleMachine& machine, Store& store);

}  // namespace kzb_reference
