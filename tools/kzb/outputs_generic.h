// Outputs of a generic model: one per port, by the name of its component; the label of the library's own calls names
// the same output.
#pragma once

#include <vector>

#include "kzb/generic_machine.h"
#include "kzb/outputs.h"

namespace kzb::tool {

// `current` tells which sources give currents.
std::vector<Output> generic_outputs(const GenericMachine& machine, const std::vector<bool>& current, KZB_CALC* handle);

}  // namespace kzb::tool
