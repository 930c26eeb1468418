// The part of the torque that the flux vector product does not hold.
//
//   torque = 1.5 p (psi_d i_q - psi_q i_d) + rest
//
// Where the map has a torque column the rest is what that column holds beyond the product. Where it has none but goes
// over positions, the rest follows from the coenergy at zero iron loss, at constant dq current:
//   rest = p dW'/dtheta,   W' = 1.5 integral of (psi_d di_d + psi_q di_q) from zero current
// which holds no cogging torque (that of zero current), since flux linkages do not tell it. Else the rest is zero.
#pragma once

#include <vector>

#include "kzb/build_source_map.h"

namespace kzb::tool {

enum class TorqueSource { column, coenergy, flux_and_current };

// One value per point of the map; `source` tells where the values come from.
std::vector<double> torque_rest(const SourceMap& map, double pole_pairs, TorqueSource& source);

}  // namespace kzb::tool
