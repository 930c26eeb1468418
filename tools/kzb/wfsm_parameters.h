// The parameters of a wound-field machine, and the names under which files have them.
#pragma once

#include "kzb/build_wfsm.h"

namespace kzb::tool {

// Fills in pole pairs, resistances and, without a map, inductances, all of the windings themselves; gives back the
// rated data that the source tells.
std::map<std::string, double> read_wfsm_parameters(const WfsmOptions& options, WfsmBuild& build);

}  // namespace kzb::tool
