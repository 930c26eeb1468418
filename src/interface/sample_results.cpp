// Exported calls of one sample: currents, voltages, torque and force, fluxes and inductances.
#include "KZBCalculator/kzbcalc.h"
#include "interface/port_calls.h"
#include "interface/value_calls.h"

using namespace kzb;

namespace {

constexpr double not_applicable = as_value(status_not_applicable);
constexpr MotorSet with_torque = rotary_pm | stepping | reluctance | induction | wound_field;
constexpr MotorSet with_axes = rotary_pm | wound_field;
constexpr int current_driven = 2;

// A getter of one phase: numbers tested first, then the lambdas.
template <MotorSet types, class... Bodies>
double of_phase(KZB_CALC* handle, int phase, Bodies&&... bodies) {
    return guarded(not_applicable, [&] {
        const int status = phase_status(handle, phase);
        return status == 0 ? with_model<types>(handle, not_applicable, std::forward<Bodies>(bodies)...)
                           : as_value(status);
    });
}

double torque(KZB_CALC& handle, Calc_Eq& model) {
    if (handle.calc_mode == current_driven) {
        model.torque_from_currents();
        model.dq_inductances_from_currents(handle.displacement[0]);
    }
    return model.torque();
}

double torque(KZB_CALC& handle, Calc_Eq_sm& model) {
    return handle.calc_mode == current_driven ? model.evaluate_torque() : model.torque();
}

double torque(KZB_CALC& handle, Calc_Eq_sr& model) {
    return handle.calc_mode == current_driven ? model.evaluate_torque() : model.torque();
}

double torque(KZB_CALC& handle, Calc_Eq_im_transient& model) {
    if (handle.calc_mode != current_driven) {
        return model.torque();
    }
    return model.torque_from_currents(handle.current.data(), handle.displacement[0], handle.time, handle.step_size,
                                      handle.state.data());
}

double torque(KZB_CALC& handle, Calc_Eq_wfsm& model) {
    if (handle.calc_mode == current_driven) {
        model.evaluate(handle.current.data(), handle.displacement[0], handle.time);
    }
    return model.torque();
}

// A winding of a delta counts a third of its star equivalent.
template <class Model>
double of_connection(const Model& model, double inductance) {
    return model.connection() == connection_delta ? inductance * 0.3333333333333333 : inductance;
}

}  // namespace

double kzbcalcGetCurrent(int phase, KZB_CALC* handle) {
    return of_phase<with_phases>(
        handle, phase, [=](auto& model) { return model.current_output(phase); },
        [=](Calc_Eq_wfsm& model) { return model.terminal_current(phase); });
}

double kzbcalcGetVoltage(int phase, KZB_CALC* handle) {
    if (has_model(handle) && serves(*handle, induction)) {
        return handle->model->induced_voltage(phase);  // 0.0 outside its phases, as established
    }
    // Not the applied voltage: that across the winding less the resistive drop, as established.
    return of_phase<with_phases & ~induction>(
        handle, phase, [=](Calc_Eq& model) { return model.stored_induced_voltage(phase); },
        [=](Calc_Eq_wfsm& model) { return model.stored_induced_voltage(phase); },
        [=](CoilMachine& model) { return model.voltage(phase); });
}

double kzbcalcGetInducedVoltage(int phase, KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        if (!has_model(handle)) {
            return not_applicable;
        }
        if (serves(*handle, generic)) {
            return 0.0;
        }
        const int status = phase_status(handle, phase);
        return status == 0 ? handle->model->induced_voltage(phase) : as_value(status);
    });
}

double kzbcalcGetTorque(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        if (!has_model(handle)) {
            return not_applicable;
        }
        const auto answer = [=](auto& model) { return torque(*handle, model); };
        return handle->calc_mode == current_driven
                   ? with_tables<with_torque>(handle, as_value(status_no_torque), answer)
                   : with_model<with_torque>(handle, as_value(status_no_torque), answer);
    });
}

double kzbcalcGetForce(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        if (!has_model(handle)) {
            return not_applicable;
        }
        return with_tables<linear_pm | solenoid>(
            handle, as_value(status_no_force), [](Calc_Eq& model) { return model.torque_from_currents(); },
            [](Calc_Eq_solenoid& model) { return model.evaluate_force(); });
    });
}

double kzbcalcGetCoilFlux(int phase, KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model<with_axes>(handle, not_applicable, [&](auto& model) {
            const int status = phase_status(handle, phase);
            return status == 0 ? model.coil_flux(phase) : as_value(status);
        });
    });
}

double kzbcalcGetInductance(int row, int column, KZB_CALC* handle) {
    if (has_model(handle) && serves(*handle, induction)) {
        return not_applicable;  // whatever the numbers are
    }
    return of_phase<with_phases & ~induction>(
        handle, row,
        [=](Calc_Eq& model) {
            const int status = phase_status(handle, column);
            if (status != 0) {
                return as_value(status);
            }
            // Row 1 column 3 gives the element at row 3 column 1, as established.
            return row == 1 && column == 3 ? model.inductance(3, 1) : model.inductance(row, column);
        },
        [=](Calc_Eq_wfsm& model) {
            const int status = phase_status(handle, column);
            return status == 0 ? model.inductance(row, column) : as_value(status);
        },
        [=](CoilMachine& model) {
            const int status = phase_status(handle, column);
            if (status != 0) {
                return as_value(status);
            }
            model.accept();  // asking moves the history on, as established
            return model.inductance_element(row, column);
        });
}

double kzbcalcGetDAxisInductance(KZB_CALC* handle) {
    return get_value<with_axes>(handle, [](auto& model) { return of_connection(model, model.d_inductance()); });
}

double kzbcalcGetQAxisInductance(KZB_CALC* handle) {
    return get_value<with_axes>(handle, [](auto& model) { return of_connection(model, model.q_inductance()); });
}

double kzbcalcGetMagFlux(int phase, KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        if (has_model(handle) && serves(*handle, permanent_magnet)) {
            return with_tables<permanent_magnet>(handle, not_applicable, [=](Calc_Eq& model) {
                const double flux = model.magnet_flux_at_position(phase);
                // Tested after the lookup, as established.
                return phase_status(handle, phase) == 0 ? flux : as_value(status_secondary_resistance);
            });
        }
        return with_model<stepping | solenoid>(handle, not_applicable,
                                               [=](auto& model) { return model.magnet_flux_of(phase); });
    });
}
