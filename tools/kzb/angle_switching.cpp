#include "kzb/angle_switching.h"

#include <algorithm>
#include <cmath>

namespace kzb::tool {

namespace {

// Angles within turn-on between 0 and `angle`, signed; it rises by turn_off - turn_on in every period.
double on_up_to(const SwitchingData& data, double angle) {
    const double from_on = angle - data.turn_on;
    const double turns = std::floor(from_on / data.period);
    const double width = data.turn_off - data.turn_on;
    return turns * width + std::min(from_on - turns * data.period, width);
}

}  // namespace

AngleSwitching::AngleSwitching(const SwitchingData& data, std::size_t phases)
    : Supply(phases), data_(data), phases_(phases) {}

double AngleSwitching::part_on(const SwitchingData& data, double from, double to) {
    if (from == to) {
        const double from_on = from - data.turn_on;
        return from_on - std::floor(from_on / data.period) * data.period < data.turn_off - data.turn_on ? 1.0 : 0.0;
    }
    return std::clamp((on_up_to(data, to) - on_up_to(data, from)) / (to - from), 0.0, 1.0);
}

void AngleSwitching::begin(const Interval& interval) {
    const double voltage = data_.voltage.sample(interval.from, interval.to);
    const double shift = data_.period / static_cast<double>(phases_.size());
    for (std::size_t k = 0; k < phases_.size(); ++k) {
        Phase& phase = phases_[k];
        const double ahead = static_cast<double>(k) * shift;
        const double from = interval.displacement_from + ahead;
        const double to = interval.displacement_to + ahead;
        const double on = part_on(data_, from, to);
        if (data_.current_limit > 0.0) {
            phase.limited = phase.limited ? phase.current > data_.current_limit - data_.current_band
                                          : phase.current >= data_.current_limit;
        }
        // What is not on counts where a current flows: one of the sample before, or one that was just switched off.
        const bool was_on = part_on(data_, from, from) > 0.0;
        const bool flows = phase.current > 0.0 || (was_on && on > 0.0);
        const double after = data_.freewheel ? 0.0 : -voltage;
        const double while_on = phase.limited ? (data_.limit_freewheel ? 0.0 : -voltage) : voltage;
        inputs_[k].voltage = on * while_on + (flows ? (1.0 - on) * after : 0.0);
        inputs_[k].connected = flows || on > 0.0;
    }
}

bool AngleSwitching::answer(const std::vector<double>& currents) {
    bool changed = false;
    for (std::size_t k = 0; k < phases_.size(); ++k) {
        if (inputs_[k].connected && currents[k] < 0.0) {
            inputs_[k] = {};
            changed = true;
        }
    }
    return changed;
}

void AngleSwitching::accept(const std::vector<double>& currents) {
    for (std::size_t k = 0; k < phases_.size(); ++k) {
        phases_[k].current = inputs_[k].connected ? currents[k] : 0.0;
    }
}

}  // namespace kzb::tool
