// The sections of a scenario that end in configuration calls of the library.
#pragma once

#include "kzb/scenario.h"
#include "kzb/scenario_section.h"

namespace kzb::tool {

// Reads [model], [corrections], [temperature], [skew], [losses] and [initial] into the calls of `scenario`, in the
// order in which the library wants them.
void read_settings(Section& root, const Machine& machine, Scenario& scenario);

}  // namespace kzb::tool
