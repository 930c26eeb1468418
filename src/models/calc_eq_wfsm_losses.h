// Iron loss data of the wound-field model, and the filter of its terminal voltages.
#pragma once

#include "models/park.h"

namespace kzb {

// First-order lag with a corner that follows the speed.
//
//   y = (a * y / dt + x) / (a / dt + 1),   a = 1 / (c * 0.8) * 0.8
//
// Each call keeps its result and its time, a repeated step of one sample included: then dt is 0.0 and the result is no
// number, as established.
class VoltageFilter {
  public:
    double filter(double x, double t, double c) {
        if (t == 0.0) {
            value_ = 0.0;
            time_ = 0.0;
            return 0.0;
        }
        const double a = 1.0 / (c * 0.8) * 0.8;
        const double dt = t - time_;
        value_ = (a * value_ / dt + x) / (a / dt + 1.0);
        time_ = t;
        return value_;
    }

  private:
    double value_ = 0.0;
    double time_ = 0.0;
};

struct WfsmLosses {
    bool iron_loss_on = false;
    bool voltage_filter_on = false;
    bool loss_started = false;
    double pwm_frequency = 0.0;    // Hz
    double eddy_loss = 0.0;        // W
    double hysteresis_loss = 0.0;  // W
    VoltageFilter filter_u;
    VoltageFilter filter_v;
    VoltageFilter filter_w;
    Phases iron_current{};         // A, equivalent iron loss current
    double loss_resistance = 0.0;  // Ohm, kept between evaluations
    double loss_current = 0.0;     // A, likewise
};

}  // namespace kzb
