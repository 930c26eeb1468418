// Wound-field machines for the benchmarks and their tests: saturating, every table filled by formula.
//
//   i_m = i_d + a i_f, psi_m = L_m i_m / (1 + |i_m| / i_s)     psi_d = L_s i_d + psi_m,  psi_f = L_sf i_f + a psi_m
//   psi_q = L_s i_q + L_mq i_q / (1 + |i_q| / i_s)             torque = pole pairs (psi_d i_q - psi_q i_d)
//
// theta = position * pole pairs + beta_zero. The inductances are the derivatives of these fluxes; `unsettled` puts a
// share of noise on every inductance, which breaks the symmetry of the matrix and makes the passes more.
#pragma once

#include "bench/reference/store.h"

namespace kzb_reference {

struct WfsmMachine {
    int current_type = 1;  // 0: tables over d and q current, 1: over amplitude and phase
    int connection = 0;    // 0 star, 1 delta
    int poles = 8;
    double beta_zero = 0.0;  // degrees
    double first_field = 0.0;
    double least_amplitude = 0.0;
    int positions = 25;
    double unsettled = 0.0;
    double ripple = 0.0;  // share of the sixth harmonic in flux and torque
    bool iron_loss = false;
    int materials = 2;
    double least_loss_amplitude = 0.0;
    bool user_parameters = false;
    bool phase_symmetry = false;  // current phases -90 to 90 alone
    bool control_record = false;  // corrections and temperatures in category "control"
    double turns_in_coil = 0.0;   // 0: not in the file
    double turns_in_field_coil = 0.0;
    double turns = 0.0;
    double field_turns = 0.0;
};

void make_wfsm_machine(const WfsmMachine& machine, Store& store);

}  // namespace kzb_reference
