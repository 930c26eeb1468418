// Exported calls of the wound-field machine.
#include "KZBCalculator/kzbcalc.h"
#include "interface/temperature_calls.h"

using namespace kzb;

int kzbcalcSetFieldCoilResistance(double resistance, KZB_CALC* handle) {
    return set_value(handle, resistance, above_zero(status_resistance), wound_field, no_type_first);
}

double kzbcalcGetFieldCoilResistance(KZB_CALC* handle) {
    return guarded(as_value(status_not_applicable),
                   [&] { return with_model(handle, wound_field, as_value(status_not_applicable)); });
}

int kzbcalcSetFieldCoilTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), wound_field);
}

double kzbcalcGetFieldCoilTemperature(KZB_CALC* handle) {
    return get_temperature(handle, wound_field);
}

int kzbcalcSetFieldCoilBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), wound_field);
}

double kzbcalcGetFieldCoilBaseTemperature(KZB_CALC* handle) {
    return get_temperature(handle, wound_field);
}

int kzbcalcSetFieldCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature(handle, coefficient, ppm_per_kelvin(), wound_field);
}

double kzbcalcGetFieldCoilTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    return get_temperature(handle, wound_field);
}
