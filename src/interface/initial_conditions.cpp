// Exported calls: initial conditions and resistance.
#include <numbers>

#include "KZBCalculator/kzbcalc.h"
#include "interface/port_calls.h"
#include "interface/value_calls.h"

using namespace kzb;

namespace {

// Degrees become radians also for the linear solenoid, whose displacement is metres, as established.
double initial_position_of(const MotorType& type, double displacement) {
    switch (type.initial_travel) {
        case Travel::degrees:
            return displacement / 180 * std::numbers::pi;
        case Travel::metres:
            return displacement;
        default:
            return 0.0;
    }
}

}  // namespace

int kzbcalcSetInitialCurrent(int phase, double current, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle)) {
            return status_not_applicable;
        }
        if (serves(*handle, generic)) {
            return 0;  // ignored, as established
        }
        const int status = phase_status(handle, phase);
        if (status != 0) {
            return status;
        }
        return with_model<with_phases>(handle, 0, [&](auto& model) { model.set_initial_current(phase, current); });
    });
}

int kzbcalcSetInitialDisplacement(double displacement, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle) || serves(*handle, generic)) {
            return status_not_applicable;
        }
        const double position = initial_position_of(*handle->type, displacement);
        handle->initial_displacement[0] = position;
        with_model<rotary_pm>(handle, 0, [&](Calc_Eq& model) {
            if (model.application() == flux_integral) {
                model.set_position(position);
            }
        });
        return 0;
    });
}

int kzbcalcSetInitialTime(double time, KZB_CALC* handle) {
    return set_value<with_phases>(handle, time, not_negative(status_time),
                                  [=](auto& model) { model.set_initial_time(time); });
}

int kzbcalcSetResistance(double resistance, KZB_CALC* handle) {
    return set_value<with_phases>(
        handle, resistance, above_zero(status_resistance), [=](auto& model) { model.set_resistance_base(resistance); },
        [=](Calc_Eq_im_transient& model) { model.set_resistance(resistance); },
        [=](Calc_Eq_wfsm& model) { model.set_resistance(resistance); });
}
