// What a scenario says of a generic model: its sources by name or number, its switches, its motions, its settings.
#pragma once

#include <utility>
#include <vector>

#include "kzb/mechanics.h"
#include "kzb/scenario_section.h"
#include "kzb/scenario_waveform.h"
#include "kzb/waveform.h"

namespace kzb::tool {

struct GenericMachine;
struct Scenario;

struct GenericScenario {
    std::vector<Waveform> sources;                                     // V, or A of a current source
    std::vector<bool> current;                                         // which are current sources
    std::vector<std::vector<std::pair<double, double>>> switched_off;  // per source: [from, to)
    std::vector<MotionData> motions;
};

// [sources], [switches], [mechanics] or [motions], [generic]; `current_driven`: sources give currents unless told.
void read_generic(Section& root, const GenericMachine& machine, bool current_driven, WaveformReader& waveforms,
                  Scenario& scenario);

// Pairs [from, to] of times in seconds.
std::vector<std::pair<double, double>> read_windows(Section& section, const std::string& key);

}  // namespace kzb::tool
