// Exported calls of the generic model: values by id.
#include "KZBCalculator/kzbcalc.h"
#include "interface/generic_calls.h"
#include "models/park.h"

using namespace kzb;

namespace {

double get_parameter(KZB_CALC* handle, int id, const CountOf& group, int id_status, const char* key) {
    return get_of_generic(handle, id, id_status, group,
                          [=](const GenericModel& model) { return model.value(group.group, id, key); });
}

double get_current(KZB_CALC* handle, int id, const CountOf& group, int id_status) {
    return get_of_generic(handle, id, id_status, group,
                          [=](const GenericModel& model) { return model.current(group.group, id); });
}

double get_resistance(KZB_CALC* handle, int id, const CountOf& group, int id_status) {
    return get_of_generic(handle, id, id_status, group,
                          [=](const GenericModel& model) { return model.resistance(group.group, id); });
}

// A limit of a motion, of a rotating one in degrees.
template <class Limit>
double get_limit(KZB_CALC* handle, int motion_id, Limit&& limit) {
    return get_of_generic(handle, motion_id, status_motion_id, motions_of, [&](const GenericModel& model) {
        if (model.motion_is_periodic(motion_id)) {
            return as_value(status_motion_limit);
        }
        const double value = limit(model);
        return model.motion_is_rotation(motion_id) ? value * 180 / pi : value;
    });
}

}  // namespace

double kzbcalcGetCoilResistanceForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_resistance(handle, coil_id, coils, status_coil_id);
}

double kzbcalcGetCoilTemperatureForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_of_generic(handle, coil_id, status_coil_id, coils,
                          [=](const GenericModel& model) { return model.coil_temperature(coil_id); });
}

double kzbcalcGetCoilBaseTemperatureForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_parameter(handle, coil_id, coils, status_coil_id, "base_coil_temp");
}

double kzbcalcGetCoilTemperatureCorrectionCoefficientForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_parameter(handle, coil_id, coils, status_coil_id, "coef_coil_temp");
}

double kzbcalcGetCorrectionOfFluxForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_parameter(handle, coil_id, coils, status_coil_id, "coef_flux");
}

double kzbcalcGetCorrectionOfCoilTurn2ForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_parameter(handle, coil_id, coils, status_coil_id, "turns2");
}

double kzbcalcGetCoilCurrentForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_current(handle, coil_id, coils, status_coil_id);
}

double kzbcalcGetCoilFluxForGenericModel(int coil_id, KZB_CALC* handle) {
    return get_parameter(handle, coil_id, coils, status_coil_id, "flux");
}

double kzbcalcGetResistanceForGenericModel(int resistor_id, KZB_CALC* handle) {
    return get_resistance(handle, resistor_id, resistors, status_resistor_id);
}

double kzbcalcGetResistorCurrentForGenericModel(int resistor_id, KZB_CALC* handle) {
    return get_current(handle, resistor_id, resistors, status_resistor_id);
}

double kzbcalcGetInductanceForGenericModel(int inductor_id, KZB_CALC* handle) {
    return get_parameter(handle, inductor_id, inductors, status_inductor_id, "inductance");
}

double kzbcalcGetInductorCurrentForGenericModel(int inductor_id, KZB_CALC* handle) {
    return get_current(handle, inductor_id, inductors, status_inductor_id);
}

double kzbcalcGetCapacitanceForGenericModel(int capacitor_id, KZB_CALC* handle) {
    return get_parameter(handle, capacitor_id, capacitors, status_capacitor_id, "capacitance");
}

double kzbcalcGetCapacitorCurrentForGenericModel(int capacitor_id, KZB_CALC* handle) {
    return get_current(handle, capacitor_id, capacitors, status_capacitor_id);
}

double kzbcalcGetVoltageProbeValueForGenericModel(int probe_id, KZB_CALC* handle) {
    return get_of_generic(handle, probe_id, status_voltage_probe_id, probes,
                          [=](const GenericModel& model) { return model.probe_value(probe_id); });
}

double kzbcalcGetForceForGenericModel(int force_id, KZB_CALC* handle) {
    return guarded(as_value(status_not_applicable), [&] {
        return with_tables<generic>(handle, as_value(status_not_applicable), [=](GenericModel& model) {
            return is_id(force_id, model.force_count()) ? model.force(force_id) : as_value(status_force_id);
        });
    });
}

double kzbcalcGetCorrectionOfForceForGenericModel(int force_id, KZB_CALC* handle) {
    return get_of_generic(handle, force_id, status_force_id, forces_of,
                          [=](const GenericModel& model) { return model.force_correction(force_id); });
}

int kzbcalcGetPowerSupplyTypeForGenericModel(int supply_id, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) {
        return is_id(supply_id, sources(model)) ? model.source_type(supply_id) : status_power_supply_id;
    });
}

double kzbcalcGetUpperLimitDisplacementForGenericModel(int motion_id, KZB_CALC* handle) {
    return get_limit(handle, motion_id, [=](const GenericModel& model) { return model.motion_upper_limit(motion_id); });
}

double kzbcalcGetLowerLimitDisplacementForGenericModel(int motion_id, KZB_CALC* handle) {
    return get_limit(handle, motion_id, [](const GenericModel&) { return 0.0; });
}

int kzbcalcGetMotionReferTableIdForGeneric(int motion_id, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) {
        return is_id(motion_id, model.motion_count()) ? model.motion_table_id(motion_id) : status_motion_id;
    });
}
