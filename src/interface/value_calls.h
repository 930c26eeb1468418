// The family of setters and getters that configure a handle: test the value, test the motor type, forward.
#pragma once

#include "diagnostics/guard.h"
#include "interface/model_dispatch.h"

namespace kzb {

// The status of an unacceptable value, 0 of an acceptable one. A not-a-number fails no comparison and is accepted.
struct ValueTest {
    bool (*refuses)(double);
    int status;
};

constexpr ValueTest above_zero(int status) {
    return {[](double value) { return value <= 0.0; }, status};
}
constexpr ValueTest not_negative(int status) {
    return {[](double value) { return value < 0.0; }, status};
}

// Sets a value: first the motor types `refused_first`, then the value, then the types.
template <MotorSet types, MotorSet refused_first = no_type, class... Bodies>
int set_value(KZB_CALC* handle, double value, ValueTest test, Bodies&&... bodies) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle) || serves(*handle, refused_first)) {
            return status_not_applicable;
        }
        if (test.refuses(value)) {
            return test.status;
        }
        return with_model<types>(handle, status_not_applicable, std::forward<Bodies>(bodies)...);
    });
}

// Reads a value of the model, or the status that refuses the motor type.
template <MotorSet types, class... Bodies>
double get_value(KZB_CALC* handle, Bodies&&... bodies) {
    return guarded(as_value(status_not_applicable), [&] {
        return with_model<types>(handle, as_value(status_not_applicable), std::forward<Bodies>(bodies)...);
    });
}

// An action on the model with a status as its result.
template <MotorSet types, class... Bodies>
int set_option(KZB_CALC* handle, Bodies&&... bodies) {
    return guarded(status_not_applicable,
                   [&] { return with_model<types>(handle, status_not_applicable, std::forward<Bodies>(bodies)...); });
}

}  // namespace kzb
