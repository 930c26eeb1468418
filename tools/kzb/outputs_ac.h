// What induction and wound-field machines offer beyond currents and torque.
#pragma once

#include <vector>

#include "kzb/outputs.h"

namespace kzb::tool {

void add_induction_outputs(std::vector<Output>& outputs, const Machine& machine, KZB_CALC* handle);
void add_wound_field_outputs(std::vector<Output>& outputs, const Machine& machine, KZB_CALC* handle);

}  // namespace kzb::tool
