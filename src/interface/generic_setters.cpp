// Exported calls of the generic model: settings and inputs by id.
//
// A value that the model refuses after the tests here (a factor of exactly 0.0) leaves the setting as it was.
#include "KZBCalculator/kzbcalc.h"
#include "interface/generic_calls.h"

using namespace kzb;

namespace {

int set_initial_current(KZB_CALC* handle, int id, double current, const CountOf& group, int id_status) {
    return set_of_generic(handle, id, id_status, group,
                          [=](GenericModel& model) { model.set_current(group.group, id, current); });
}

// A parameter of a component, by its name.
int set_parameter(KZB_CALC* handle, int id, double value, const CountOf& group, int id_status, ValueTest test,
                  const char* key) {
    return set_of_generic(handle, value, test, id, id_status, group,
                          [=](GenericModel& model) { model.set_value(group.group, id, key, value); });
}

std::size_t place_of(int id) {
    return static_cast<std::size_t>(id) - 1;
}

}  // namespace

int kzbcalcSetInitialPositionForGenericModel(int motion_id, double position, KZB_CALC* handle) {
    return set_of_generic(handle, motion_id, status_motion_id, motions_of,
                          [=](GenericModel&) { handle->initial_displacement[place_of(motion_id)] = position; });
}

int kzbcalcSetInitialCoilCurrentForGenericModel(int coil_id, double current, KZB_CALC* handle) {
    // A wrong coil shares the motor type's status, as established.
    return set_initial_current(handle, coil_id, current, coils, status_not_applicable);
}

int kzbcalcSetInitialCapacitorCurrentForGenericModel(int capacitor_id, double current, KZB_CALC* handle) {
    return set_initial_current(handle, capacitor_id, current, capacitors, status_capacitor_id);
}

int kzbcalcSetInitialResistorCurrentForGenericModel(int resistor_id, double current, KZB_CALC* handle) {
    return set_initial_current(handle, resistor_id, current, resistors, status_resistor_id);
}

int kzbcalcSetInitialInductorCurrentForGenericModel(int inductor_id, double current, KZB_CALC* handle) {
    return set_initial_current(handle, inductor_id, current, inductors, status_inductor_id);
}

int kzbcalcSetPowerSupplyTypeForGenericModel(int supply_id, int type, KZB_CALC* handle) {
    // 1 asks for a current source, which the getter reports as 0, as established.
    return set_of_generic(handle, supply_id, status_power_supply_id, sources,
                          [=](GenericModel& model) { model.set_source_type(supply_id, type == 1); });
}

int kzbcalcSetCoilResistanceForGenericModel(int coil_id, double resistance, KZB_CALC* handle) {
    return set_parameter(handle, coil_id, resistance, coils, status_coil_id, above_zero(status_resistance),
                         "resistance");
}

int kzbcalcSetResistanceForGenericModel(int resistor_id, double resistance, KZB_CALC* handle) {
    return set_parameter(handle, resistor_id, resistance, resistors, status_resistor_id, above_zero(status_resistance),
                         "resistance");
}

int kzbcalcSetCapacitanceForGenericModel(int capacitor_id, double capacitance, KZB_CALC* handle) {
    return set_parameter(handle, capacitor_id, capacitance, capacitors, status_capacitor_id,
                         above_zero(status_capacitance), "capacitance");
}

int kzbcalcSetInductanceForGenericModel(int inductor_id, double inductance, KZB_CALC* handle) {
    return set_parameter(handle, inductor_id, inductance, inductors, status_inductor_id, above_zero(status_inductance),
                         "inductance");
}

int kzbcalcSetCoilBaseTemperatureForGenericModel(int coil_id, double temperature, KZB_CALC* handle) {
    return set_parameter(handle, coil_id, temperature, coils, status_coil_id, not_negative(status_temperature),
                         "base_coil_temp");
}

int kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel(int coil_id, double coefficient, KZB_CALC* handle) {
    return set_parameter(handle, coil_id, coefficient, coils, status_coil_id, not_negative(status_coil_coefficient),
                         "coef_coil_temp");
}

int kzbcalcSetCorrectionOfFluxForGenericModel(int coil_id, double factor, KZB_CALC* handle) {
    return set_parameter(handle, coil_id, factor, coils, status_coil_id, above_zero(status_flux_correction),
                         "coef_flux");
}

int kzbcalcSetCorrectionOfCoilTurn2ForGenericModel(int coil_id, double turns, KZB_CALC* handle) {
    return set_parameter(handle, coil_id, turns, coils, status_coil_id, not_negative(status_coil_turns), "turns2");
}

int kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel(int parameter_id, double factor, KZB_CALC* handle) {
    return set_of_generic(
        handle, factor, above_zero(status_coil_turns), parameter_id, status_not_in_use,
        [](const GenericModel& model) { return model.user_parameter_count(); },
        [=](GenericModel& model) { model.set_user_parameter_correction(parameter_id, factor); });
}

int kzbcalcSetCorrectionOfForceForGenericModel(int force_id, double factor, KZB_CALC* handle) {
    return set_of_generic(handle, factor, above_zero(status_torque_correction), force_id, status_force_id, forces_of,
                          [=](GenericModel& model) { model.set_force_correction(force_id, factor); });
}

int kzbcalcSetDisplacementForGenericModel(int motion_id, double displacement, KZB_CALC* handle) {
    return set_of_generic(handle, motion_id, status_motion_id, motions_of, [=](GenericModel&) {
        const std::size_t place = place_of(motion_id);
        handle->displacement[place] = displacement + handle->initial_displacement[place];
    });
}

int kzbcalcSetPowerSupplyForGenericModel(int supply_id, double value, KZB_CALC* handle) {
    return set_of_generic(handle, supply_id, status_power_supply_id, sources,
                          [=](GenericModel&) { handle->voltage[place_of(supply_id)] = value; });
}

int kzbcalcSetPowerSupplySwitchForGenericModel(int supply_id, int on, KZB_CALC* handle) {
    return set_of_generic(handle, supply_id, status_power_supply_id, sources,
                          [=](GenericModel&) { handle->signal[place_of(supply_id)] = static_cast<double>(on); });
}

int kzbcalcSetCoilTemperatureForGenericModel(int coil_id, double temperature, KZB_CALC* handle) {
    // Before the motor type.
    if (has_model(handle) && !handle->model->temperature_correction()) {
        return status_no_temperature_correction;
    }
    return set_of_generic(handle, temperature, above_zero(status_temperature), coil_id, status_coil_id, coils,
                          [=](GenericModel& model) { model.set_coil_temperature(coil_id, temperature); });
}
