// Inputs of the phases that depend on more than the time: on the rotor angle, on the currents, on a sequence of steps.
//
// Each sample asks for the inputs of the interval that it ends. A supply may answer the currents that came out with
// other inputs for the same sample, which is then solved anew.
#pragma once

#include <vector>

namespace kzb::tool {

struct PhaseInput {
    double voltage = 0.0;    // V, mean over the interval
    bool connected = false;  // else the phase is open
};

// The interval of a sample: the sample before it and itself. The first sample of a run has an interval without length.
struct Interval {
    double from = 0.0;  // s
    double to = 0.0;
    double displacement_from = 0.0;  // degrees
    double displacement_to = 0.0;
};

class Supply {
  public:
    virtual ~Supply() = default;
    virtual void begin(const Interval& interval) = 0;
    const PhaseInput& input(std::size_t phase) const { return inputs_[phase]; }
    // True when these currents of the sample change its inputs.
    virtual bool answer(const std::vector<double>& currents) = 0;
    // Once the sample is accepted.
    virtual void accept(const std::vector<double>& currents) = 0;

  protected:
    explicit Supply(std::size_t phases) : inputs_(phases) {}
    std::vector<PhaseInput> inputs_;
};

}  // namespace kzb::tool
