// One sample of a voltage-driven run, through the public calls.
#pragma once

#include <vector>

#include "KZBCalculator/kzbcalc.h"

namespace kzb_test {

inline void step_sample(KZB_CALC* calc, double time, double displacement, const std::vector<double>& voltages) {
    kzbcalcSetTime(time, calc);
    kzbcalcSetDisplacement(displacement, calc);
    for (std::size_t k = 0; k < voltages.size(); ++k) {
        kzbcalcSetVoltage(static_cast<int>(k) + 1, voltages[k], calc);
    }
    kzbcalcExecute(calc);
}

}  // namespace kzb_test
