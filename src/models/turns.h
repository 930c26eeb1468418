// Turns of a coil and the corrections of a machine of separate coils, as a model uses them.
//
//   ratio       n = turns / turns_in_coil, 1.0 where either is 0.0
//   flux        k_f = n2 * k_flux * n1 * k_magnet * k_steel
//   inductance  k_l = k_steel * k_inductance * n1
//   torque      k_t = k_magnet * k_torque * k_steel^2 * n1
//
// n1 belongs to what a table gives, n2 to the current it is asked at.
#pragma once

#include "store/store.h"

namespace kzb {

// Number of turns that the tables of the file belong to; 0.0 where the file does not tell.
double turns_in_coil(const KZB_STORE& store);

// A number of turns as ratio to the file's.
double turns_ratio(double turns, double file_turns);

// Plain factors until they are folded, what the formulas above give from then on.
struct CoilCorrections {
    double correction_flux = 1.0;
    double correction_magnet = 1.0;
    double correction_steel = 1.0;
    double correction_inductance = 1.0;
    double correction_torque = 1.0;  // or of force
    double turns1 = 0.0;             // turns, then ratio
    double turns2 = 0.0;

    // In place: a correction set afterwards acts as it is.
    void fold(double file_turns);
};

}  // namespace kzb
