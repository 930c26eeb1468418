// The one place that knows which model class serves which motor type.
//
// An exported call names the motor types it applies to and gives one small lambda per model class, or one of `auto&`
// or `Calc&` for classes that share the operation. A null handle, a handle without a model, another motor type, or a
// class without a lambda take the fallback.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "circuit/generic/calc_eq_generic.h"
#include "interface/kzbcalc_handle.h"
#include "interface/status.h"
#include "models/calc_eq.h"
#include "models/calc_eq_im.h"
#include "models/calc_eq_sm.h"
#include "models/calc_eq_solenoid.h"
#include "models/calc_eq_sr.h"
#include "models/calc_eq_wfsm.h"

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

// Result of the body for `Model`, when the call applies to any of its types (`common`).
template <class Model, MotorSet common, class Result, class Bodies>
Result invoke_for(Calc& model, Result fallback, Bodies& bodies) {
    if constexpr (common == 0) {
        return fallback;
    } else if constexpr (!std::is_invocable_v<Bodies&, Model&>) {
        return fallback;
    } else if constexpr (std::is_void_v<std::invoke_result_t<Bodies&, Model&>>) {
        bodies(static_cast<Model&>(model));
        return Result{};
    } else {
        return bodies(static_cast<Model&>(model));
    }
}

// Result of the lambda of the handle's model class, 0 for one that returns nothing; `fallback` where the call doesn't
// apply.
template <MotorSet types, class Result, class... Bodies>
Result with_model(KZB_CALC* handle, Result fallback, Bodies&&... bodies) {
    if (!has_model(handle) || !serves(*handle, types)) {
        return fallback;
    }
    Overloaded<std::decay_t<Bodies>...> all{std::forward<Bodies>(bodies)...};
    Calc& model = *handle->model;
    switch (handle->type->set) {
        case rotary_pm:
        case linear_pm:
            return invoke_for<Calc_Eq, types & permanent_magnet>(model, fallback, all);
        case stepping:
            return invoke_for<Calc_Eq_sm, types & stepping>(model, fallback, all);
        case solenoid:
            return invoke_for<Calc_Eq_solenoid, types & solenoid>(model, fallback, all);
        case induction:
            return invoke_for<Calc_Eq_im_transient, types & induction>(model, fallback, all);
        case wound_field:
            return invoke_for<Calc_Eq_wfsm, types & wound_field>(model, fallback, all);
        case reluctance:
            return invoke_for<Calc_Eq_sr, types & reluctance>(model, fallback, all);
        case generic:
            return invoke_for<Calc_Eq_generic, types & generic>(model, fallback, all);
        default:
            return fallback;
    }
}

// The same for a call that looks tables up: the environment is asked first, once.
template <MotorSet types, class Result, class... Bodies>
Result with_tables(KZB_CALC* handle, Result fallback, Bodies&&... bodies) {
    if (has_model(handle) && serves(*handle, types) && handle->store != nullptr) {
        read_lookup_switches(*handle->store);
    }
    return with_model<types>(handle, fallback, std::forward<Bodies>(bodies)...);
}

}  // namespace kzb
