// [slip] of a scenario: the slip frequency of an induction machine with tables over it.
//
//   supply_frequency   slip frequency = supply frequency - pole pairs * speed / 60, speed in rpm, in every sample
//   frequency          the slip frequency itself
// and [mechanics] of type "slip": a constant speed by supply frequency and slip, 60 f (1 - slip) / pole pairs rpm.
#pragma once

#include <optional>

#include "kzb/machine.h"
#include "kzb/scenario_section.h"
#include "kzb/scenario_waveform.h"
#include "kzb/waveform.h"

namespace kzb::tool {

struct SlipData {
    std::optional<Waveform> supply_frequency;  // Hz
    std::optional<Waveform> frequency;         // Hz; one of the two at most

    bool given() const { return supply_frequency || frequency; }
    double at(double time, double speed_rpm, int number_of_poles) const;
};

SlipData read_slip(Section& root, const Machine& machine, WaveformReader& waveforms);

// The speed in rpm that the slip of a [mechanics] section of type "slip" tells.
double speed_of_slip(Section& mechanics, const Machine& machine);

}  // namespace kzb::tool
