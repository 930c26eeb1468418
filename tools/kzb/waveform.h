// A quantity over time: constant, sine, pulse-width modulated, points of a CSV file, or steps.
//
//   sine  f(t) = offset + amplitude * sin(2 pi frequency t + phase)
//   pwm   high during the part `duty` in the middle of each carrier period, else low; the duty is taken at the start of
//         the period: duty, or 0.5 + 0.5 * sine of the modulation
//   csv   straight lines between the points; beyond them the end point holds, or the points repeat
#pragma once

#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace kzb::tool {

struct Sine {
    double amplitude = 0.0;
    double frequency = 0.0;
    double phase_deg = 0.0;
    double offset = 0.0;
    double at(double t) const;
};

struct Constant {
    double value = 0.0;
    double at(double) const { return value; }
};

struct Pwm {
    double low = 0.0;
    double high = 0.0;
    double carrier_frequency = 0.0;
    double duty = 0.5;
    Sine modulation;   // amplitude 0: the fixed duty
    bool mean = true;  // value of a sample: the mean since the last one, else the value at its instant
    double duty_of(double period) const;  // of the carrier period with this number
    double at(double t) const;
    double mean_between(double from, double to) const;
};

struct Points {
    std::shared_ptr<const std::vector<double>> times;  // ascending
    std::shared_ptr<const std::vector<double>> values;
    bool repeat = false;
    double at(double t) const;
};

// The value of the last time at or before t; before the first time the first value.
struct Steps {
    std::shared_ptr<const std::vector<double>> times;  // ascending
    std::shared_ptr<const std::vector<double>> values;
    double at(double t) const;
};

class Waveform {
  public:
    using Form = std::variant<Constant, Sine, Pwm, Points, Steps>;
    Waveform() = default;
    explicit Waveform(Form form) : form_(std::move(form)) {}

    // The value of a sample at time `to`, the last one having been at `from`.
    double sample(double from, double to) const;
    // The value at an instant.
    double at(double t) const { return sample(t, t); }
    bool is_constant() const { return std::holds_alternative<Constant>(form_); }
    // The same with its sine, or the sine of its modulation, later by `lag_deg`.
    Waveform shifted(double lag_deg) const;

  private:
    Form form_;
};

}  // namespace kzb::tool
