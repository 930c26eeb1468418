// The half coils A+, A-, B+, B- of a stepping motor switched in a sequence of steps at a given rate.
//
//   wave   A+, B+, A-, B-                                    one phase at a time
//   full   A+B+, A-B+, A-B-, A+B-                            both phases
//   half   A+, A+B+, B+, A-B+, A-, A-B-, B-, A+B-            by turns
//
// Unipolar: the half coil named has the voltage, the other one of its phase is open, or has 0 V. Bipolar: the two half
// coils of a phase are in series, A+ with half the voltage and A- with its opposite, or the other way round; a phase
// without current has 0 V, or is open. A step between two samples counts by its part of the interval; which coils are
// open is that of the middle of the interval.
#pragma once

#include <cstdint>

#include "kzb/supply.h"
#include "kzb/waveform.h"

namespace kzb::tool {

enum class StepMode { full, half, wave };

struct StepData {
    StepMode mode = StepMode::full;
    Waveform voltage;         // V
    double rate = 0.0;        // steps (half steps) per second; 0: the first state holds
    double start = 0.0;       // s: the first state holds until one step time later
    std::uint64_t count = 0;  // of steps; 0: no end
    bool backward = false;
    bool bipolar = false;
    bool off_open = true;  // what is not energized is open, else it has 0 V
};

class StepSequence : public Supply {
  public:
    explicit StepSequence(const StepData& data);
    void begin(const Interval& interval) override;
    bool answer(const std::vector<double>&) override { return false; }
    void accept(const std::vector<double>&) override {}

    // Number of steps done at an instant.
    static double steps_at(const StepData& data, double time);
    // Sign of the current of phase A (0) or B (1) after so many steps.
    static int sign_of(const StepData& data, int phase, double steps);

  private:
    StepData data_;
};

}  // namespace kzb::tool
