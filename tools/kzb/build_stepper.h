// The work of `kzb build stepper`: KZB model of a two-phase stepping motor out of closed forms.
//
// With the electrical angle e = pairs * angle, the half coils A+, A-, B+, B- and the differences of their currents
// j_A = i_A+ - i_A-, j_B = i_B+ - i_B-, the two phases link
//
//   psi_A = m cos(e) + (k L + S cos(2e)) j_A + S sin(2e) j_B
//   psi_B = m sin(e) + S sin(2e) j_A + (k L - S cos(2e)) j_B
//
// Half coil A+ links psi_A + (1 - k) L i_A+, half coil A- links -psi_A + (1 - k) L i_A-, and B alike: m is the flux
// linkage of the magnet, L the mean inductance of a half coil, k the coupling of the two halves, S the saliency.
// The torque is that of the coenergy, with a detent of amplitude D:
//
//   T = pairs * (-m sin(e) j_A + m cos(e) j_B - S sin(2e) (j_A^2 - j_B^2) + 2 S cos(2e) j_A j_B) - D sin(4e)
//
// Tables: mag_flux/flux (angle, half coil), inductance/inductance (|j|, angle, element 4 * column + row),
// torque/torque_ibeta (j_A, angle, j_B).
#pragma once

#include <array>
#include <string>
#include <vector>

#include "kzb/build_coil_options.h"

namespace kzb::tool {

struct StepperMachine {
    double pole_pairs = 0.0;   // teeth of the rotor of a hybrid motor
    double resistance = 0.0;   // ohm, of a half coil
    double magnet_flux = 0.0;  // m, Vs peak
    double inductance = 0.0;   // L, H
    double coupling = 1.0;     // k
    double saliency = 0.0;     // S, H
    double detent_torque = 0.0;
    double largest_current = 0.0;  // A, of a half coil

    double electrical(double angle_deg) const;
    double magnet(double angle_deg, int coil) const;
    double inductance_of(double angle_deg, int row, int column) const;
    double torque(double angle_deg, double j_a, double j_b) const;
};

struct StepperOptions {
    CoilBuildOptions common;
    std::size_t position_nodes = 121;  // over an electrical period, the closing one included
    std::size_t current_nodes = 0;     // 0: 3, or 17 with saliency
};

struct StepperBuild {
    StepperMachine machine;
    TableAxis difference;  // of the currents of two half coils
    TableAxis position;
    StorePointer store;
    std::vector<std::string> notes;
};

// All in memory: nothing is written.
StepperBuild build_stepper(const StepperOptions& options);

// Deviation of the written model from the closed forms, in the middle between the nodes of the tables.
Outcome compare_stepper(KZB_STORE* store, const StepperBuild& build, const StepperOptions& options);

}  // namespace kzb::tool
