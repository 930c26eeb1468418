// Exported calls: temperatures and their coefficients.
//
// A permanent-magnet model and a wound-field model keep temperatures of their own beside those of the base class, which
// the other models use.
#include "KZBCalculator/kzbcalc.h"
#include "interface/temperature_calls.h"

using namespace kzb;

namespace {

constexpr MotorSet with_magnet = permanent_magnet | stepping | solenoid;
constexpr MotorSet with_coil = permanent_magnet | stepping | solenoid | reluctance | induction | wound_field;

}  // namespace

int kzbcalcSetTemperatureCorrectionCalc(KZB_CALC* handle) {
    return set_option<every_type>(handle, [](Calc& model) { model.set_temperature_correction(true); });
}

int kzbcalcGetTemperatureCorrectionCalc(KZB_CALC* handle) {
    return set_option<every_type>(handle, [](Calc& model) { return static_cast<int>(model.temperature_correction()); });
}

// ---- magnet

int kzbcalcSetMagnetTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<with_magnet>(
        handle, temperature, kelvin(), [=](Calc_Eq& model) { model.set_own_magnet_temperature(temperature); },
        [=](Calc& model) { model.set_magnet_temperature(temperature); });
}

double kzbcalcGetMagnetTemperature(KZB_CALC* handle) {
    return get_temperature<with_magnet>(
        handle, [](Calc_Eq& model) { return model.own_magnet_temperature(); },
        [](Calc& model) { return model.magnet_temperature(); });
}

int kzbcalcSetMagnetBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<with_magnet>(
        handle, temperature, kelvin(), [=](Calc_Eq& model) { model.set_own_base_magnet_temperature(temperature); },
        [=](Calc& model) { model.set_base_magnet_temperature(temperature); });
}

double kzbcalcGetMagnetBaseTemperature(KZB_CALC* handle) {
    return get_temperature<with_magnet>(
        handle, [](Calc_Eq& model) { return model.own_base_magnet_temperature(); },
        [](Calc& model) { return model.base_magnet_temperature(); });
}

int kzbcalcSetMagFluxTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature<with_magnet>(
        handle, coefficient, percent_per_kelvin(),
        [=](Calc_Eq& model) { model.set_own_magnet_coefficient(coefficient); },
        [=](Calc& model) { model.set_magnet_temperature_coefficient(coefficient); });
}

double kzbcalcGetMagFluxTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    return get_temperature<with_magnet>(
        handle, [](Calc_Eq& model) { return model.own_magnet_coefficient(); },
        [](Calc& model) { return model.magnet_temperature_coefficient(); });
}

// ---- coil; the getters answer for every type

int kzbcalcSetCoilTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<with_coil>(
        handle, temperature, kelvin(), [=](Calc_Eq& model) { model.set_own_coil_temperature(temperature); },
        [=](Calc_Eq_wfsm& model) { model.set_own_coil_temperature(temperature); },
        [=](Calc& model) { model.set_coil_temperature(temperature); });
}

double kzbcalcGetCoilTemperature(KZB_CALC* handle) {
    if (has_model(handle) && serves(*handle, generic)) {
        return as_value(status_not_applicable);
    }
    return get_temperature<every_type>(
        handle, [](Calc_Eq& model) { return model.own_coil_temperature(); },
        [](Calc_Eq_wfsm& model) { return model.own_coil_temperature(); },
        [](Calc& model) { return model.coil_temperature(); });
}

int kzbcalcSetCoilBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<with_coil>(
        handle, temperature, kelvin(), [=](Calc_Eq& model) { model.set_own_base_coil_temperature(temperature); },
        [=](Calc_Eq_wfsm& model) { model.set_own_base_coil_temperature(temperature); },
        [=](Calc& model) { model.set_base_coil_temperature(temperature); });
}

double kzbcalcGetCoilBaseTemperature(KZB_CALC* handle) {
    return get_temperature<every_type>(
        handle, [](Calc_Eq& model) { return model.own_base_coil_temperature(); },
        [](Calc_Eq_wfsm& model) { return model.own_base_coil_temperature(); },
        [](Calc& model) { return model.base_coil_temperature(); });
}

int kzbcalcSetCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature<with_coil>(
        handle, coefficient, ppm_per_kelvin(), [=](Calc_Eq& model) { model.set_own_coil_coefficient(coefficient); },
        [=](Calc_Eq_wfsm& model) { model.set_own_coil_coefficient(coefficient); },
        [=](Calc& model) { model.set_coil_temperature_coefficient(coefficient); });
}

double kzbcalcGetCoilTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    // A wound-field machine gives the factor, as established.
    return get_temperature<every_type>(
        handle, [](Calc_Eq& model) { return model.own_coil_coefficient(); },
        [](Calc_Eq_wfsm& model) { return model.own_coil_factor(); },
        [](Calc& model) { return model.coil_temperature_coefficient(); });
}
