// Exported calls of one sample: binding, inputs, step, acceptance.
#include <numbers>

#include "KZBCalculator/kzbcalc.h"
#include "diagnostics/guard.h"
#include "interface/port_calls.h"

using namespace kzb;

namespace {

constexpr std::size_t flux_components = 3;

// Inside, positions are radians or metres, counted from the initial displacement.
double position_of(const KZB_CALC& handle, double displacement) {
    if (handle.type->travel == Travel::degrees) {
        return displacement / 180 * std::numbers::pi + handle.initial_displacement[0];
    }
    return displacement + handle.initial_displacement[0];
}

void bind(KZB_CALC& handle, Calc_Eq& model) {
    model.bind(*handle.store, handle.ironloss_flag);
    model.set_user_copperloss_on(handle.user_copperloss_flag != 0);
    // The first Execute at time 0.0 fills the elements; those of a state that has the length already stay.
    if (model.application() == flux_integral && handle.state.size() != flux_components) {
        handle.state.assign(flux_components, 0.0);
    }
}

void bind(KZB_CALC& handle, Calc_Eq_sm& model) {
    model.bind(*handle.store);
}

void bind(KZB_CALC& handle, Calc_Eq_solenoid& model) {
    model.bind(*handle.store);
}

void bind(KZB_CALC& handle, Calc_Eq_sr& model) {
    model.bind(*handle.store, handle.type->ports);
}

void bind(KZB_CALC& handle, Calc_Eq_im_transient& model) {
    model.bind(*handle.store, handle.ironloss_flag);
    model.set_user_copper_loss_enabled(handle.user_copperloss_flag != 0);
}

void bind(KZB_CALC& handle, Calc_Eq_wfsm& model) {
    model.bind(*handle.store);
    model.set_loss_mode(handle.ironloss_flag, handle.pwm_flag);
    model.set_pwm_frequency(handle.pwm_frequency);
}

void bind(KZB_CALC& handle, Calc_Eq_generic& model) {
    model.apply_temperature_correction();
    model.set_iron_loss_enabled(handle.ironloss_flag != 0);
    model.apply_interpolation();
}

void integrate_flux(KZB_CALC& handle, Calc_Eq& model) {
    if (handle.state.size() != flux_components) {
        return;  // the data were never set
    }
    const std::vector<double>& v = handle.voltage;
    const std::vector<double>& signal = handle.signal;
    double* const state = handle.state.data();
    if (handle.time > 0.0) {
        double derivative[flux_components] = {};
        model.flux_derivative(v[0], v[1], v[2], handle.displacement[0], handle.time, state, derivative,
                              static_cast<int>(signal[0]), static_cast<int>(signal[1]), static_cast<int>(signal[2]));
        for (std::size_t k = 0; k < flux_components; ++k) {
            state[k] += (handle.time - handle.previous_time) * derivative[k];
        }
    }
    model.flux_update(handle.time, handle.displacement[0], state);
}

void execute(KZB_CALC& handle, Calc_Eq& model) {
    if (model.application() == flux_integral) {
        integrate_flux(handle, model);
        return;
    }
    const std::vector<double>& v = handle.voltage;
    const std::vector<double>& signal = handle.signal;
    int error = 0;
    // Result and error number are dropped: a failed step shows as unchanged currents.
    model.step(v[0], v[1], v[2], handle.displacement[0], handle.time, signal[0], signal[1], signal[2], error);
}

// Stepping motor and solenoid see the terminal voltage less the magnet's.
double less_magnet(const KZB_CALC& handle, const CoilMachine& model, int phase) {
    return handle.voltage[index_of(phase)] - model.voltage(phase);
}

void execute(KZB_CALC& handle, Calc_Eq_sm& model) {
    const std::vector<double>& signal = handle.signal;
    model.step(less_magnet(handle, model, 1), less_magnet(handle, model, 2), less_magnet(handle, model, 3),
               less_magnet(handle, model, 4), handle.displacement[0], handle.time, signal[0], signal[1], signal[2],
               signal[3]);
}

void execute(KZB_CALC& handle, Calc_Eq_solenoid& model) {
    model.step(less_magnet(handle, model, 1), handle.displacement[0], handle.time, handle.signal[0]);
}

void execute(KZB_CALC& handle, Calc_Eq_sr& model) {
    model.step(handle.voltage.data(), handle.displacement[0], handle.time, handle.signal.data());
}

void execute(KZB_CALC& handle, Calc_Eq_im_transient& model) {
    model.execute(handle.voltage.data(), handle.displacement[0], handle.time, handle.signal.data(), handle.step_size,
                  handle.state.data());
}

void execute(KZB_CALC& handle, Calc_Eq_wfsm& model) {
    int error = 0;
    model.step(handle.voltage.data(), handle.displacement[0], handle.time, handle.signal.data(), error);
}

// The positions of rotating parts become radians in place, at every call: a second Execute of one sample without a new
// displacement scales twice, as established.
void execute(KZB_CALC& handle, Calc_Eq_generic& model) {
    for (std::size_t i = 0; i < handle.displacement.size(); ++i) {
        if (model.motion_is_rotation(static_cast<int>(i) + 1)) {
            handle.displacement[i] = handle.displacement[i] * std::numbers::pi / 180;
        }
    }
    model.set_user_inputs(handle.user_input);
    int status = 0;
    model.step(handle.voltage, handle.displacement, handle.time, handle.signal, status);
}

void accept(Calc_Eq_generic& model) {
    model.update();
}

template <class Model>
void accept(Model& model) {
    model.accept();
}

}  // namespace

int kzbcalcSetData(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] {
        return with_tables<every_type>(handle, status_not_applicable, [=](auto& model) { bind(*handle, model); });
    });
}

int kzbcalcSetTime(double time, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle)) {
            return status_not_applicable;
        }
        if (time < 0.0) {
            return status_time;
        }
        // A wound-field model takes the time at its step.
        with_model<with_phases & ~wound_field>(
            handle, 0, [=](auto& model) { model.set_time(time); },
            [=](Calc_Eq& model) {
                if (model.application() != flux_integral) {
                    model.set_time(time);
                }
            });
        handle->previous_time = handle->time;
        handle->time = time;
        return 0;
    });
}

int kzbcalcSetDisplacement(double displacement, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle) || handle->type->travel == Travel::none) {
            return status_not_applicable;
        }
        const double position = position_of(*handle, displacement);
        handle->displacement[0] = position;
        // A wound-field model takes the position at its step.
        with_model<with_phases & ~wound_field>(
            handle, 0, [=](auto& model) { model.set_position(position); },
            [=](Calc_Eq& model) {
                if (handle->type->set == linear_pm || model.application() != flux_integral) {
                    model.set_position(position);
                }
            });
        return 0;
    });
}

int kzbcalcSetVoltage(int phase, double voltage, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] {
        const int status = phase_status(handle, phase);
        if (status == 0) {
            handle->voltage[index_of(phase)] = voltage;
        }
        return status;
    });
}

int kzbcalcSetCurrent(int phase, double current, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] {
        const int status = phase_status(handle, phase);
        if (status != 0) {
            return status;
        }
        if (serves(*handle, induction | wound_field)) {
            handle->current[index_of(phase)] = current;
        }
        // A wound-field model takes the currents when its torque is asked for.
        return with_model<with_phases & ~wound_field>(handle, 0,
                                                      [=](auto& model) { model.set_current(phase, current); });
    });
}

int kzbcalcSetSignal(int phase, int signal, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] {
        const int status = phase_status(handle, phase);
        if (status == 0) {
            handle->signal[index_of(phase)] = static_cast<double>(signal);
        }
        return status;
    });
}

int kzbcalcExecute(KZB_CALC* handle) {
    return guarded(0,
                   [&] { return with_tables<every_type>(handle, 0, [=](auto& model) { execute(*handle, model); }); });
}

int kzbcalcUpdate(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] {
        return with_model<every_type>(handle, status_not_applicable, [](auto& model) { accept(model); });
    });
}
