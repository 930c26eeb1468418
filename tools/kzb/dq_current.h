// A current in the rotor's frame, and the factor between the two frames in use.
#pragma once

#include <cmath>

namespace kzb::tool {

struct DqCurrent {
    double id = 0.0;
    double iq = 0.0;
};

// A quantity of the power-invariant frame over the same of the amplitude-invariant frame.
inline const double power_invariant_factor = std::sqrt(1.5);

}  // namespace kzb::tool
