// Exported calls of one sample: currents, voltages, torque and force, fluxes and inductances.
#include "KZBCalculator/kzbcalc.h"
#include "diagnostics/guard.h"
#include "interface/port_calls.h"

using namespace kzb;

namespace {

constexpr double not_applicable = as_value(status_not_applicable);

// A getter of one phase: numbers tested first, then the lambdas.
template <class... Bodies>
double of_phase(KZB_CALC* handle, int phase, Bodies&&... bodies) {
    return guarded(not_applicable, [&] {
        const int status = phase_status(handle, phase);
        return status == 0 ? with_model(handle, permanent_magnet, not_applicable, std::forward<Bodies>(bodies)...)
                           : as_value(status);
    });
}

double torque(KZB_CALC& handle, Calc_Eq& model) {
    if (handle.calc_mode == 2) {
        read_lookup_switches(*handle.store);
        model.torque_from_currents();
        model.dq_inductances_from_currents(handle.displacement[0]);
    }
    return handle.calc_mode == 1 || handle.calc_mode == 2 ? model.torque() : 0.0;
}

// A winding of a delta counts a third of its star equivalent.
double of_connection(const Calc_Eq& model, double inductance) {
    return model.connection() == connection_delta ? inductance * 0.3333333333333333 : inductance;
}

}  // namespace

double kzbcalcGetCurrent(int phase, KZB_CALC* handle) {
    return of_phase(handle, phase, [=](Calc_Eq& model) { return model.current_output(phase); });
}

double kzbcalcGetVoltage(int phase, KZB_CALC* handle) {
    // Not the applied voltage: that across the winding less the resistive drop, as established.
    return of_phase(handle, phase, [=](Calc_Eq& model) { return model.stored_induced_voltage(phase); });
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
        return with_model(handle, rotary_pm, as_value(status_no_torque),
                          [&](Calc_Eq& model) { return torque(*handle, model); });
    });
}

double kzbcalcGetForce(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        if (!has_model(handle)) {
            return not_applicable;
        }
        return with_model(handle, linear_pm, as_value(status_no_force), [&](Calc_Eq& model) {
            read_lookup_switches(*handle->store);
            return model.torque_from_currents();
        });
    });
}

double kzbcalcGetCoilFlux(int phase, KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm, not_applicable, [&](Calc_Eq& model) {
            const int status = phase_status(handle, phase);
            return status == 0 ? model.coil_flux(phase) : as_value(status);
        });
    });
}

double kzbcalcGetInductance(int row, int column, KZB_CALC* handle) {
    return of_phase(handle, row, [=](Calc_Eq& model) {
        const int status = phase_status(handle, column);
        if (status != 0) {
            return as_value(status);
        }
        // Row 1 column 3 gives the element at row 3 column 1, as established.
        return row == 1 && column == 3 ? model.inductance(3, 1) : model.inductance(row, column);
    });
}

double kzbcalcGetDAxisInductance(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm, not_applicable,
                          [](Calc_Eq& model) { return of_connection(model, model.d_inductance()); });
    });
}

double kzbcalcGetQAxisInductance(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm, not_applicable,
                          [](Calc_Eq& model) { return of_connection(model, model.q_inductance()); });
    });
}

double kzbcalcGetMagFlux(int phase, KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, permanent_magnet, not_applicable, [&](Calc_Eq& model) {
            read_lookup_switches(*handle->store);
            const double flux = model.magnet_flux_at_position(phase);
            // Tested after the lookup, as established.
            return phase_status(handle, phase) == 0 ? flux : as_value(status_secondary_resistance);
        });
    });
}
