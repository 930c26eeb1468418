// Exported calls: correction factors and coil turns.
#include "KZBCalculator/kzbcalc.h"
#include "interface/value_calls.h"

using namespace kzb;

namespace {

constexpr MotorSet without_field = permanent_magnet | stepping | solenoid | reluctance;
constexpr MotorSet with_force = linear_pm | solenoid;

}  // namespace

int kzbcalcSetCorrectionOfFlux(double factor, KZB_CALC* handle) {
    return set_value<without_field | wound_field>(
        handle, factor, above_zero(status_flux_correction), [=](auto& model) { model.set_correction_flux(factor); },
        [=](Calc_Eq_wfsm& model) { model.set_coef_flux(factor); });
}

int kzbcalcSetCorrectionOfFieldFlux(double factor, KZB_CALC* handle) {
    return set_value<wound_field>(handle, factor, above_zero(status_flux_correction),
                                  [=](Calc_Eq_wfsm& model) { model.set_coef_flux_fieldcoil(factor); });
}

int kzbcalcSetCorrectionOfMagnet(double factor, KZB_CALC* handle) {
    return set_value<without_field>(handle, factor, above_zero(status_magnet_correction),
                                    [=](auto& model) { model.set_correction_magnet(factor); });
}

int kzbcalcSetCorrectionOfSteel(double factor, KZB_CALC* handle) {
    return set_value<without_field | wound_field, generic>(
        handle, factor, above_zero(status_steel_correction), [=](auto& model) { model.set_correction_steel(factor); },
        [=](Calc_Eq_wfsm& model) { model.set_coef_material(factor); });
}

int kzbcalcSetCorrectionOfInductance(double factor, KZB_CALC* handle) {
    return set_value<without_field>(handle, factor, above_zero(status_inductance_correction),
                                    [=](auto& model) { model.set_correction_inductance(factor); });
}

int kzbcalcSetCorrectionOfTorque(double factor, KZB_CALC* handle) {
    return set_value<rotary_pm | stepping | reluctance | wound_field, generic>(
        handle, factor, above_zero(status_torque_correction), [=](auto& model) { model.set_correction_torque(factor); },
        [=](Calc_Eq_wfsm& model) { model.set_coef_torque(factor); });
}

int kzbcalcSetCorrectionOfForce(double factor, KZB_CALC* handle) {
    return set_value<with_force, ~with_force>(
        handle, factor, above_zero(status_force_correction),
        [=](Calc_Eq& model) { model.set_correction_torque(factor); },
        [=](Calc_Eq_solenoid& model) { model.set_correction_force(factor); });
}

int kzbcalcSetCorrectionOfCoilTurn1(double turns, KZB_CALC* handle) {
    return set_value<without_field>(handle, turns, not_negative(status_coil_turns),
                                    [=](auto& model) { model.set_turns1(turns); });
}

int kzbcalcSetCorrectionOfCoilTurn2(double turns, KZB_CALC* handle) {
    return set_value<without_field | wound_field>(
        handle, turns, not_negative(status_coil_turns), [=](auto& model) { model.set_turns2(turns); },
        [=](Calc_Eq_wfsm& model) { model.set_turns_coil2(turns); });
}

int kzbcalcSetCorrectionOfFieldCoilTurn2(double turns, KZB_CALC* handle) {
    return set_value<wound_field>(handle, turns, not_negative(status_coil_turns),
                                  [=](Calc_Eq_wfsm& model) { model.set_turns_coil2_fieldcoil(turns); });
}
