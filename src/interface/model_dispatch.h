// The one place that knows which model class serves which motor type.
//
// An exported call names the motor types it applies to and gives one small lambda per model class. A null handle, a
// handle without a model, another motor type, or a class without a lambda take the fallback.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "interface/kzbcalc_handle.h"
#include "interface/status.h"
#include "models/calc_eq.h"

namespace kzb {

// The model object of a motor type.
std::unique_ptr<Calc> create_model(const MotorType& type);

inline bool has_model(const KZB_CALC* handle) {
    return handle != nullptr && handle->model != nullptr;
}

inline bool serves(const KZB_CALC& handle, MotorSet types) {
    return handle.type != nullptr && (handle.type->set & types) != 0;
}

template <class... Bodies>
struct Overloaded : Bodies... {
    using Bodies::operator()...;
};

template <class Model, class Result, class Bodies>
Result invoke_for(Calc& model, Result fallback, Bodies& bodies) {
    if constexpr (std::is_invocable_v<Bodies&, Model&>) {
        if constexpr (std::is_void_v<std::invoke_result_t<Bodies&, Model&>>) {
            bodies(static_cast<Model&>(model));
            return Result{};
        } else {
            return bodies(static_cast<Model&>(model));
        }
    } else {
        return fallback;
    }
}

// Result of the lambda of the handle's model class, 0 for one that returns nothing; `fallback` where the call doesn't
// apply.
template <class Result, class... Bodies>
Result with_model(KZB_CALC* handle, MotorSet types, Result fallback, Bodies&&... bodies) {
    if (!has_model(handle) || !serves(*handle, types)) {
        return fallback;
    }
    Overloaded<std::decay_t<Bodies>...> all{std::forward<Bodies>(bodies)...};
    Calc& model = *handle->model;
    switch (handle->type->set) {
        case rotary_pm:
        case linear_pm:
            return invoke_for<Calc_Eq>(model, fallback, all);
        default:
            return fallback;
    }
}

}  // namespace kzb
