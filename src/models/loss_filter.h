// First-order lag of the induced voltage that drives the iron loss current.
//
//   y = (c * y / dt + x) / (c / dt + 1),   c = 1 / (f * 0.8) * 0.8,   f = omega_el * 100 * 0.5 / pi
//
// The filter takes its first value as it is. At standstill, or at dt 0, the formula yields a not-a-number, which means
// no loss current.
#pragma once

#include "models/park.h"

namespace kzb {

class LossFilter {
  public:
    double step(double x, double first_value, double time, double omega_el) {
        if (time_ == 0.0) {
            value_ = first_value;
        } else {
            const double frequency = omega_el * 100.0 * 0.5 / pi;
            const double c = 1.0 / (frequency * 0.8) * 0.8;
            const double dt = time - time_;
            value_ = (c * value_ / dt + x) / (c / dt + 1.0);
        }
        time_ = time;
        return value_;
    }

    bool started() const { return time_ != 0.0; }

  private:
    double time_ = 0.0;  // 0.0 until the first value is taken
    double value_ = 0.0;
};

}  // namespace kzb
