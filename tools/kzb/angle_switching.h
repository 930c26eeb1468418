// Phases of a reluctance machine between the two switches and two diodes of an asymmetric bridge each, switched by the
// angle of the rotor.
//
//   within [turn_on, turn_off)   the DC voltage, unless the current is above its limit
//   outside                      while a current flows the negative DC voltage, or 0 (freewheel); then open
//
// The angle of phase k (from 0) is that of the rotor ahead by k * period / phases. Switching between two samples counts
// by its part of the interval, so the voltage of a sample is its mean. Diodes carry no negative current: a sample whose
// current would go below 0 is solved anew with its phase open.
#pragma once

#include <optional>

#include "kzb/supply.h"
#include "kzb/waveform.h"

namespace kzb::tool {

struct SwitchingData {
    Waveform voltage;             // V, of the DC side
    double turn_on = 0.0;         // degrees of the phase's own angle
    double turn_off = 0.0;        // above turn_on by less than the period
    double period = 360.0;        // degrees
    bool freewheel = false;       // after turn-off: 0 V instead of the negative voltage
    double current_limit = 0.0;   // A; 0: none
    double current_band = 0.0;    // A below the limit where the phase is switched on again
    bool limit_freewheel = true;  // above the limit: 0 V, else the negative voltage
};

class AngleSwitching : public Supply {
  public:
    AngleSwitching(const SwitchingData& data, std::size_t phases);
    void begin(const Interval& interval) override;
    bool answer(const std::vector<double>& currents) override;
    void accept(const std::vector<double>& currents) override;

    // Part of the angles from `from` to `to` that lies within turn-on, of a phase's own angle.
    static double part_on(const SwitchingData& data, double from, double to);

  private:
    struct Phase {
        double current = 0.0;  // of the last accepted sample
        bool limited = false;  // switched off by the limit
    };
    SwitchingData data_;
    std::vector<Phase> phases_;
};

}  // namespace kzb::tool
