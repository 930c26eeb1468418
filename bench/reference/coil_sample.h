// Machines with separate windings for the benchmarks: tables of a real shape, filled by formula.
//
//   reluctance  L_kk = (l_0 + l_1 cos(poles / 2 * angle_k)) / (1 + i / i_s), mutual inductances a twentieth of that
//   solenoid    L = l_0 / (1 + x / gap), psi = psi_0 (1 - x / reach), force over position and current
//   stepper     psi_k = psi_0 cos(poles / 2 * angle - k's place), coupled half coils
#pragma once

#include "bench/reference/store.h"

namespace kzb_reference {

// 10003, 10004 or 10010 to 10012.
void make_coil_sample(int motor_type, Store& store);

}  // namespace kzb_reference
