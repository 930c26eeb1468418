// Exported calls: temperatures and their coefficients.
//
// A permanent-magnet model keeps its own temperatures beside those of the base class.
#include "KZBCalculator/kzbcalc.h"
#include "interface/temperature_calls.h"

using namespace kzb;

namespace {

constexpr MotorSet with_magnet = permanent_magnet | stepping | solenoid;
constexpr MotorSet with_coil = permanent_magnet | stepping | solenoid | reluctance | induction | wound_field;
constexpr MotorSet every_type = ~MotorSet{0};

}  // namespace

int kzbcalcSetTemperatureCorrectionCalc(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle)) {
            return status_not_applicable;
        }
        handle->model->set_temperature_correction(true);
        return 0;
    });
}

int kzbcalcGetTemperatureCorrectionCalc(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        return has_model(handle) ? static_cast<int>(handle->model->temperature_correction()) : status_not_applicable;
    });
}

// ---- magnet

int kzbcalcSetMagnetTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), with_magnet,
                           [=](Calc_Eq& model) { model.set_own_magnet_temperature(temperature); });
}

double kzbcalcGetMagnetTemperature(KZB_CALC* handle) {
    return get_temperature(handle, with_magnet, [](Calc_Eq& model) { return model.own_magnet_temperature(); });
}

int kzbcalcSetMagnetBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), with_magnet,
                           [=](Calc_Eq& model) { model.set_own_base_magnet_temperature(temperature); });
}

double kzbcalcGetMagnetBaseTemperature(KZB_CALC* handle) {
    return get_temperature(handle, with_magnet, [](Calc_Eq& model) { return model.own_base_magnet_temperature(); });
}

int kzbcalcSetMagFluxTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature(handle, coefficient, percent_per_kelvin(), with_magnet,
                           [=](Calc_Eq& model) { model.set_own_magnet_coefficient(coefficient); });
}

double kzbcalcGetMagFluxTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    return get_temperature(handle, with_magnet, [](Calc_Eq& model) { return model.own_magnet_coefficient(); });
}

// ---- coil; the getters answer for every type

int kzbcalcSetCoilTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), with_coil,
                           [=](Calc_Eq& model) { model.set_own_coil_temperature(temperature); });
}

double kzbcalcGetCoilTemperature(KZB_CALC* handle) {
    if (has_model(handle) && serves(*handle, generic)) {
        return as_value(status_not_applicable);
    }
    return get_temperature(handle, every_type, [](Calc_Eq& model) { return model.own_coil_temperature(); });
}

int kzbcalcSetCoilBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), with_coil,
                           [=](Calc_Eq& model) { model.set_own_base_coil_temperature(temperature); });
}

double kzbcalcGetCoilBaseTemperature(KZB_CALC* handle) {
    return get_temperature(handle, every_type, [](Calc_Eq& model) { return model.own_base_coil_temperature(); });
}

int kzbcalcSetCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature(handle, coefficient, ppm_per_kelvin(), with_coil,
                           [=](Calc_Eq& model) { model.set_own_coil_coefficient(coefficient); });
}

double kzbcalcGetCoilTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    return get_temperature(handle, every_type, [](Calc_Eq& model) { return model.own_coil_coefficient(); });
}
