// Exported calls of the wound-field machine.
#include "KZBCalculator/kzbcalc.h"
#include "interface/temperature_calls.h"

using namespace kzb;

int kzbcalcSetFieldCoilResistance(double resistance, KZB_CALC* handle) {
    return set_value<wound_field>(handle, resistance, above_zero(status_resistance),
                                  [=](Calc_Eq_wfsm& model) { model.set_field_resistance(resistance); });
}

double kzbcalcGetFieldCoilResistance(KZB_CALC* handle) {
    return get_value<wound_field>(handle, [](Calc_Eq_wfsm& model) {
        const double factor = model.temperature_correction() ? model.field_coil_factor() : 1.0;
        return model.field_resistance() * factor;
    });
}

int kzbcalcSetFieldCoilTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<wound_field>(handle, temperature, kelvin(),
                                        [=](Calc_Eq_wfsm& model) { model.set_field_coil_temperature(temperature); });
}

double kzbcalcGetFieldCoilTemperature(KZB_CALC* handle) {
    return get_temperature<wound_field>(handle, [](Calc_Eq_wfsm& model) { return model.field_coil_temperature(); });
}

int kzbcalcSetFieldCoilBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<wound_field>(handle, temperature, kelvin(), [=](Calc_Eq_wfsm& model) {
        model.set_base_field_coil_temperature(temperature);
    });
}

double kzbcalcGetFieldCoilBaseTemperature(KZB_CALC* handle) {
    return get_temperature<wound_field>(handle,
                                        [](Calc_Eq_wfsm& model) { return model.base_field_coil_temperature(); });
}

int kzbcalcSetFieldCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature<wound_field>(handle, coefficient, ppm_per_kelvin(),
                                        [=](Calc_Eq_wfsm& model) { model.set_field_coil_coefficient(coefficient); });
}

double kzbcalcGetFieldCoilTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    // The factor in the coefficient's place, as established.
    return get_temperature<wound_field>(handle, [](Calc_Eq_wfsm& model) { return model.field_coil_factor(); });
}
