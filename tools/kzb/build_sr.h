// The work of `kzb build sr`: flux linkage and torque of one phase in, KZB model of a switched reluctance machine out.
//
// The phases are alike and take their turn over one rotor pitch: phase k (from 0) at the rotor angle ang sees what the
// first sees at ang + k * shift, with shift = pitch / phases and pitch = 360 / rotor poles. Tables:
//   inductance/inductance (|current|, angle, element)   secant inductances psi / i; element phases * column + row
//   torque/torque_ibeta   (angle, current)              of the first phase, even in the current
//
// Coupling of neighbours, where it is given: one number per position, fitted over the currents,
//   M(theta) = sum over i of (i psi_n(theta, i)) / sum of i^2
// and symmetric, since M of a pair is the same from either side: M(theta) = M(-shift - theta), theta being the angle of
// the lower phase. Between the last phase and the first it changes its sign where the two poles of a phase are of
// opposite polarity. Phases further apart are not coupled, and coupling makes no torque.
#pragma once

#include <string>
#include <vector>

#include "kzb/build_coil_options.h"
#include "kzb/coil_map.h"

namespace kzb::tool {

struct SrOptions {
    CoilBuildOptions common;
    std::string mutual_path;  // empty: no coupling
    double closing_sign = -1.0;
};

// One phase over a whole rotor pitch, position 0 and its repetition included.
struct SrBuild {
    int phases = 0;
    int rotor_poles = 0;
    CoilMap phase;   // completed by mirror symmetry where the file has half a pitch
    CoilMap mutual;  // flux linkage of the next phase, as the file has it; no positions: none
    TableAxis current;
    TableAxis position;
    StorePointer store;
    std::vector<std::string> notes;

    double pitch() const { return 360.0 / rotor_poles; }
    double shift() const { return pitch() / phases; }
};

// All in memory: nothing is written.
SrBuild build_sr(const SrOptions& options);

// Deviation of the written model, in the lookups of the machine model, from the points of the maps.
Outcome compare_sr(KZB_STORE* store, const SrBuild& build, const SrOptions& options);

}  // namespace kzb::tool
