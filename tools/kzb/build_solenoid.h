// The work of `kzb build solenoid`: flux linkage and force of a coil over plunger position and current in, KZB model of
// a linear solenoid without magnet out. Tables:
//   inductance/inductance (|current|, position, 0)   secant inductance psi / i, at current 0 its limit
//   distance_flux/flux    (position, 0)              of the magnet: 0
//   distance_force/force  (position, current)        even in the current
#pragma once

#include <string>
#include <vector>

#include "kzb/build_coil_options.h"
#include "kzb/coil_map.h"

namespace kzb::tool {

struct SolenoidOptions {
    CoilBuildOptions common;
};

struct SolenoidBuild {
    CoilMap map;
    TableAxis current;
    TableAxis position;
    StorePointer store;
    std::vector<std::string> notes;
};

// All in memory: nothing is written.
SolenoidBuild build_solenoid(const SolenoidOptions& options);

// Deviation of the written model, in the lookups of the machine model, from the points of the map.
Outcome compare_solenoid(KZB_STORE* store, const SolenoidBuild& build, const SolenoidOptions& options);

}  // namespace kzb::tool
