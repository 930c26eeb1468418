// Currents from flux linkages: the inverse of the flux map at one position.
//
// Newton's method with step halving on psi(i) = psi; where it does not arrive, nested bracketing (id from psi_d at
// fixed iq, inside iq from psi_q), which needs nothing but a monotone map.
#pragma once

#include <cstddef>
#include <optional>

#include "kzb/build_machine_map.h"
#include "kzb/dq_current.h"

namespace kzb::tool {

// Current of the flux linkages at position k, searched from `start`; nothing where there is none within 100 times the
// width of the map.
std::optional<DqCurrent> invert_flux(const MachineMap& map, std::size_t k, double psi_d, double psi_q, DqCurrent start);

// Failure(exit_file) unless each flux linkage rises with its own current, and the map as a whole has one direction
// (d psi_d/d id * d psi_q/d iq > d psi_d/d iq * d psi_q/d id), at and half way between the nodes of every position.
void require_monotone(const MachineMap& map, const std::string& name);

}  // namespace kzb::tool
