// Exported calls: correction factors and coil turns.
#include "KZBCalculator/kzbcalc.h"
#include "interface/value_calls.h"

using namespace kzb;

namespace {

constexpr MotorSet without_field = permanent_magnet | stepping | solenoid | reluctance;

}  // namespace

int kzbcalcSetCorrectionOfFlux(double factor, KZB_CALC* handle) {
    return set_value(handle, factor, above_zero(status_flux_correction), without_field | wound_field, no_type_first,
                     [=](Calc_Eq& model) { model.set_correction_flux(factor); });
}

int kzbcalcSetCorrectionOfFieldFlux(double factor, KZB_CALC* handle) {
    return set_value(handle, factor, above_zero(status_flux_correction), wound_field, no_type_first);
}

int kzbcalcSetCorrectionOfMagnet(double factor, KZB_CALC* handle) {
    return set_value(handle, factor, above_zero(status_magnet_correction), without_field, no_type_first,
                     [=](Calc_Eq& model) { model.set_correction_magnet(factor); });
}

int kzbcalcSetCorrectionOfSteel(double factor, KZB_CALC* handle) {
    return set_value(handle, factor, above_zero(status_steel_correction), without_field | wound_field, generic,
                     [=](Calc_Eq& model) { model.set_correction_steel(factor); });
}

int kzbcalcSetCorrectionOfInductance(double factor, KZB_CALC* handle) {
    return set_value(handle, factor, above_zero(status_inductance_correction), without_field, no_type_first,
                     [=](Calc_Eq& model) { model.set_correction_inductance(factor); });
}

int kzbcalcSetCorrectionOfTorque(double factor, KZB_CALC* handle) {
    return set_value(handle, factor, above_zero(status_torque_correction),
                     rotary_pm | stepping | reluctance | wound_field, generic,
                     [=](Calc_Eq& model) { model.set_correction_torque(factor); });
}

int kzbcalcSetCorrectionOfForce(double factor, KZB_CALC* handle) {
    constexpr MotorSet types = linear_pm | solenoid;
    return set_value(handle, factor, above_zero(status_force_correction), types, ~types,
                     [=](Calc_Eq& model) { model.set_correction_torque(factor); });
}

int kzbcalcSetCorrectionOfCoilTurn1(double turns, KZB_CALC* handle) {
    return set_value(handle, turns, not_negative(status_coil_turns), without_field, no_type_first,
                     [=](Calc_Eq& model) { model.set_turns1(turns); });
}

int kzbcalcSetCorrectionOfCoilTurn2(double turns, KZB_CALC* handle) {
    return set_value(handle, turns, not_negative(status_coil_turns), without_field | wound_field, no_type_first,
                     [=](Calc_Eq& model) { model.set_turns2(turns); });
}

int kzbcalcSetCorrectionOfFieldCoilTurn2(double turns, KZB_CALC* handle) {
    return set_value(handle, turns, not_negative(status_coil_turns), wound_field, no_type_first);
}
