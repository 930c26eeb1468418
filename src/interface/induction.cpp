// Exported calls of the induction machine.
#include "KZBCalculator/kzbcalc.h"
#include "interface/temperature_calls.h"

using namespace kzb;

namespace {

// A getter that only an induction machine answers.
template <class... Bodies>
double of_induction(KZB_CALC* handle, Bodies&&... bodies) {
    return guarded(as_value(status_not_applicable), [&] {
        return with_model(handle, induction, as_value(status_not_applicable), std::forward<Bodies>(bodies)...);
    });
}

}  // namespace

int kzbcalcCheckInductionMotorInductanceType(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] { return with_model(handle, induction, status_not_applicable); });
}

int kzbcalcSetStepSize(double step_size, KZB_CALC* handle) {
    return set_value(handle, step_size, not_negative(status_count), induction, ~induction);
}

int kzbcalcSetSlipFrequency(double /*frequency*/, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] { return with_model(handle, induction, status_not_applicable); });
}

double kzbcalcGetSlipFrequency(KZB_CALC* handle) {
    return of_induction(handle);
}

int kzbcalcSetSecondaryResistance(double resistance, KZB_CALC* handle) {
    return set_value(handle, resistance, above_zero(status_secondary_resistance), induction, no_type_first);
}

double kzbcalcGetSecondaryResistance(KZB_CALC* handle) {
    return of_induction(handle);
}

double kzbcalcGetPrimaryCopperLoss(KZB_CALC* handle) {
    return of_induction(handle);
}

double kzbcalcGetSecondaryCopperLoss(KZB_CALC* handle) {
    return of_induction(handle);
}

double kzbcalcGetSecondaryFluxD(KZB_CALC* handle) {
    return of_induction(handle);
}

double kzbcalcGetSecondaryFluxQ(KZB_CALC* handle) {
    return of_induction(handle);
}

int kzbcalcSetSecondaryCoilTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), induction);
}

double kzbcalcGetSecondaryCoilTemperature(KZB_CALC* handle) {
    return get_temperature(handle, induction);
}

int kzbcalcSetSecondaryCoilBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature(handle, temperature, kelvin(), induction);
}

double kzbcalcGetSecondaryCoilBaseTemperature(KZB_CALC* handle) {
    return get_temperature(handle, induction);
}

int kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature(handle, coefficient, ppm_per_kelvin(), induction);
}

double kzbcalcGetSecondaryCoilTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    return get_temperature(handle, induction);
}
