#include "kzb/step_sequence.h"

#include <algorithm>
#include <cmath>

namespace kzb::tool {

namespace {

// Signs of phase A over the eighths of an electrical turn; those of B come a quarter turn later.
constexpr int signs[8] = {1, 1, 0, -1, -1, -1, 0, 1};

struct Stride {
    int first;
    int step;
};

// Which eighths a mode takes.
constexpr Stride stride_in(StepMode mode) {
    switch (mode) {
        case StepMode::full:
            return {1, 2};
        case StepMode::wave:
            return {0, 2};
        case StepMode::half:
            break;
    }
    return {0, 1};
}

// Voltage of a half coil by the sign of its phase's current; `minus` is its second one.
double level_of(const StepData& data, int sign, bool minus) {
    const int own = minus ? -sign : sign;
    if (data.bipolar) {
        return 0.5 * own;
    }
    return own > 0 ? 1.0 : 0.0;
}

}  // namespace

StepSequence::StepSequence(const StepData& data) : Supply(4), data_(data) {}

double StepSequence::steps_at(const StepData& data, double time) {
    const double steps = std::max(0.0, std::floor((time - data.start) * data.rate + 1e-9));
    return data.count > 0 ? std::min(steps, static_cast<double>(data.count)) : steps;
}

int StepSequence::sign_of(const StepData& data, int phase, double steps) {
    const Stride stride = stride_in(data.mode);
    const double forward = data.backward ? -steps : steps;
    const int eighth = static_cast<int>(std::fmod(forward * stride.step, 8.0)) + stride.first + 16;
    return signs[(eighth - (phase == 0 ? 0 : 2)) % 8];
}

void StepSequence::begin(const Interval& interval) {
    const double voltage = data_.voltage.sample(interval.from, interval.to);
    const double first = steps_at(data_, interval.from);
    const double last = steps_at(data_, interval.to);
    const double middle = steps_at(data_, 0.5 * (interval.from + interval.to));
    // The time of the last step within the interval, which ends all but its remainder.
    double before = 0.0;
    if (last > first && interval.to > interval.from) {
        const double at = data_.start + last / data_.rate;
        before = std::clamp((at - interval.from) / (interval.to - interval.from), 0.0, 1.0);
    }
    for (int k = 0; k < 4; ++k) {
        const int phase = k / 2;
        const bool minus = k % 2 == 1;
        const double level = before * level_of(data_, sign_of(data_, phase, last - (last > first ? 1.0 : 0.0)), minus) +
                             (1.0 - before) * level_of(data_, sign_of(data_, phase, last), minus);
        PhaseInput& input = inputs_[static_cast<std::size_t>(k)];
        const double now = level_of(data_, sign_of(data_, phase, middle), minus);
        input.connected = now != 0.0 || !data_.off_open;
        input.voltage = input.connected ? level * voltage : 0.0;
    }
}

}  // namespace kzb::tool
