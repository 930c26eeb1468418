// What the temperature calls share: temperature correction has to be on, which is tested before all else; then the
// value, then the motor type.
#pragma once

#include "interface/value_calls.h"

namespace kzb {

inline bool temperature_is_off(const KZB_CALC* handle) {
    return has_model(handle) && !handle->model->temperature_correction();
}

template <MotorSet types, class... Bodies>
int set_temperature(KZB_CALC* handle, double value, ValueTest test, Bodies&&... bodies) {
    if (temperature_is_off(handle)) {
        return status_no_temperature_correction;
    }
    return set_value<types>(handle, value, test, std::forward<Bodies>(bodies)...);
}

template <MotorSet types, class... Bodies>
double get_temperature(KZB_CALC* handle, Bodies&&... bodies) {
    if (temperature_is_off(handle)) {
        return as_value(status_no_temperature_correction);
    }
    return get_value<types>(handle, std::forward<Bodies>(bodies)...);
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
