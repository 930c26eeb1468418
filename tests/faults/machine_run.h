// Some samples of any machine, and all that they gave.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>

#include "KZBCalculator/kzbcalc.h"

namespace kzb_test {

inline constexpr std::size_t most_values = 256;

// Results in a row, compared bit for bit; no heap.
struct Trace {
    std::array<double, most_values> values{};
    std::size_t count = 0;
    void add(double value) {
        if (count < values.size()) {
            values[count++] = value;
        }
    }
    bool operator==(const Trace& other) const {
        return count == other.count && std::memcmp(values.data(), other.values.data(), count * sizeof(double)) == 0;
    }
};

inline void sample(KZB_CALC* calc, int k, Trace& trace) {
    kzbcalcSetTime(1e-4 * k, calc);
    kzbcalcSetDisplacement(3.0 * k, calc);
    for (int phase = 1; phase <= 5; ++phase) {
        kzbcalcSetVoltage(phase, 10.0 * phase - 20.0, calc);
        kzbcalcSetCurrent(phase, 1.0 * phase - 2.0, calc);
    }
    kzbcalcSetPowerSupplyForGenericModel(1, 12.0, calc);
    kzbcalcSetPowerSupplyForGenericModel(2, 5.0, calc);
    kzbcalcSetDisplacementForGenericModel(1, 2.0 * k, calc);
    kzbcalcExecute(calc);
    for (int phase = 1; phase <= 5; ++phase) {
        trace.add(kzbcalcGetCurrent(phase, calc));
    }
    trace.add(kzbcalcGetTorque(calc));
    trace.add(kzbcalcGetForce(calc));
    trace.add(kzbcalcGetIronloss(calc));
    trace.add(kzbcalcGetCoilCurrentForGenericModel(1, calc));
    trace.add(kzbcalcGetForceForGenericModel(1, calc));
    trace.add(kzbcalcGetUserSpecifiedParameter(1, calc));
    kzbcalcUpdate(calc);
}

inline Trace samples(KZB_CALC* calc, int from, int to) {
    Trace trace;
    for (int k = from; k < to; ++k) {
        sample(calc, k, trace);
    }
    return trace;
}

}  // namespace kzb_test
