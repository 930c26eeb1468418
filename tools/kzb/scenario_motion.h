// The keys that tell a motion, in [mechanics] and in the sections of a generic model's motions.
#pragma once

#include "kzb/mechanics.h"
#include "kzb/scenario_section.h"
#include "kzb/scenario_waveform.h"

namespace kzb::tool {

// Reads all keys of the section; the caller ends it.
void read_motion_keys(Section& section, bool linear, WaveformReader& waveforms, MotionData& motion);

}  // namespace kzb::tool
