// What the temperature calls share: temperature correction has to be on, which is tested before all else; then the
// value, then the motor type.
#pragma once

#include "interface/value_calls.h"

namespace kzb {

template <class... Bodies>
int set_temperature(KZB_CALC* handle, double value, ValueTest test, MotorSet types, Bodies&&... bodies) {
    if (has_model(handle) && !handle->model->temperature_correction()) {
        return status_no_temperature_correction;
    }
    return set_value(handle, value, test, types, no_type_first, std::forward<Bodies>(bodies)...);
}

template <class... Bodies>
double get_temperature(KZB_CALC* handle, MotorSet types, Bodies&&... bodies) {
    return guarded(as_value(status_not_applicable), [&] {
        if (has_model(handle) && !handle->model->temperature_correction()) {
            return as_value(status_no_temperature_correction);
        }
        return with_model(handle, types, as_value(status_not_applicable), std::forward<Bodies>(bodies)...);
    });
}

// The values' units and what they refuse.
constexpr ValueTest kelvin() {
    return not_negative(status_temperature);
}
constexpr ValueTest ppm_per_kelvin() {
    return not_negative(status_coil_coefficient);
}
constexpr ValueTest percent_per_kelvin() {
    return {[](double value) { return value < -100.0 || value > 0.0; }, status_magnet_coefficient};
}

}  // namespace kzb
