#include "kzb/waveform.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kzb::tool {

double Sine::at(double t) const {
    constexpr double two_pi = 2.0 * std::numbers::pi;
    return offset + amplitude * std::sin(two_pi * frequency * t + phase_deg * (std::numbers::pi / 180.0));
}

double Pwm::duty_of(double period) const {
    const double wanted = modulation.amplitude == 0.0 ? duty : 0.5 + 0.5 * modulation.at(period / carrier_frequency);
    return std::clamp(wanted, 0.0, 1.0);
}

double Pwm::at(double t) const {
    const double periods = t * carrier_frequency;
    const double number = std::floor(periods);
    const double half = 0.5 * duty_of(number);
    return std::fabs(periods - number - 0.5) < half ? high : low;
}

double Pwm::mean_between(double from, double to) const {
    const double start = from * carrier_frequency;
    const double end = to * carrier_frequency;
    if (!(end > start)) {
        return at(to);
    }
    double on = 0.0;  // in carrier periods
    for (double number = std::floor(start); number < end; number += 1.0) {
        const double half = 0.5 * duty_of(number);
        const double rise = std::max(start, number + 0.5 - half);
        const double fall = std::min(end, number + 0.5 + half);
        on += std::max(0.0, fall - rise);
    }
    return low + (high - low) * (on / (end - start));
}

double Points::at(double t) const {
    const std::vector<double>& time = *times;
    const std::vector<double>& value = *values;
    if (repeat && time.back() > time.front()) {
        const double period = time.back() - time.front();
        t -= std::floor((t - time.front()) / period) * period;
    }
    if (t <= time.front()) {
        return value.front();
    }
    if (t >= time.back()) {
        return value.back();
    }
    const auto above = static_cast<std::size_t>(std::upper_bound(time.begin(), time.end(), t) - time.begin());
    const double part = (t - time[above - 1]) / (time[above] - time[above - 1]);
    return value[above - 1] + part * (value[above] - value[above - 1]);
}

double Steps::at(double t) const {
    const auto above = std::upper_bound(times->begin(), times->end(), t) - times->begin();
    return (*values)[static_cast<std::size_t>(std::max<std::ptrdiff_t>(above, 1) - 1)];
}

double Waveform::sample(double from, double to) const {
    if (const Pwm* pwm = std::get_if<Pwm>(&form_); pwm != nullptr && pwm->mean) {
        return pwm->mean_between(from, to);
    }
    return std::visit([to](const auto& form) { return form.at(to); }, form_);
}

Waveform Waveform::shifted(double lag_deg) const {
    Waveform result = *this;
    if (Sine* sine = std::get_if<Sine>(&result.form_)) {
        sine->phase_deg -= lag_deg;
    }
    if (Pwm* pwm = std::get_if<Pwm>(&result.form_)) {
        pwm->modulation.phase_deg -= lag_deg;
    }
    return result;
}

}  // namespace kzb::tool
