// The sections of a scenario that drive the phases by more than the time: [switching] and [steps].
#pragma once

#include <memory>
#include <variant>

#include "kzb/angle_switching.h"
#include "kzb/machine.h"
#include "kzb/scenario_section.h"
#include "kzb/scenario_waveform.h"
#include "kzb/step_sequence.h"

namespace kzb::tool {

using SupplyData = std::variant<std::monostate, SwitchingData, StepData>;

// What stands in the scenario instead of [sources]; monostate for neither. Failure(exit_file) for one that does not
// suit the machine, and for more than one.
SupplyData read_supply(Section& root, const Machine& machine, bool current_driven, WaveformReader& waveforms);

// Null for monostate.
std::unique_ptr<Supply> make_supply(const SupplyData& data, const Machine& machine);

}  // namespace kzb::tool
