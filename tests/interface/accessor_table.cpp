#include "interface/accessor_table.h"

#include <limits>

namespace kzb_test {
namespace {

using List = std::vector<double>;

const double infinity = std::numeric_limits<double>::infinity();
// Fails no comparison, so that no test of a value refuses it.
const double nan = std::numeric_limits<double>::quiet_NaN();
const List positive{1.0, 2.5, 1e-300, infinity, nan};
const List zero_and_negatives{0.0, -0.0, -1e-300, -3.0, -infinity};
const List from_zero{0.0, -0.0, 1e-300, 293.15, 4000.0, nan};
const List negatives{-1e-300, -1.0, -infinity};
const List any{0.0, -1.0, 300.0, infinity, nan};
const List none{};
const List coefficients{-100.0, -0.11, 0.0, -0.0, nan};
const List no_coefficients{-100.1, 0.1, 1e-300, infinity, -infinity};

constexpr Types no_field = permanent_magnet | stepping | solenoid | reluctance;
constexpr Types with_torque = rotary_pm | stepping | reluctance | induction | wound_field;
constexpr Types with_force = linear_pm | solenoid;
constexpr Types corrected_torque = rotary_pm | stepping | reluctance | wound_field;
constexpr Types with_magnet = permanent_magnet | stepping | solenoid;
constexpr Types with_supply = rotary_pm | induction;
constexpr Types numbered = every_type & ~generic;  // types with numbered phases

#define KZB_CALL(call) #call, call

}  // namespace

// Static order: the lists above are of this file and stand before the tables.
const std::vector<ValueCall> value_calls = {
    {KZB_CALL(kzbcalcSetCorrectionOfFlux), positive, zero_and_negatives, 180017, no_field | wound_field, no_type},
    {KZB_CALL(kzbcalcSetCorrectionOfFieldFlux), positive, zero_and_negatives, 180017, wound_field, no_type},
    {KZB_CALL(kzbcalcSetCorrectionOfMagnet), positive, zero_and_negatives, 180020, no_field, no_type},
    {KZB_CALL(kzbcalcSetCorrectionOfSteel), positive, zero_and_negatives, 180021, no_field | wound_field, generic},
    {KZB_CALL(kzbcalcSetCorrectionOfInductance), positive, zero_and_negatives, 180018, no_field, no_type},
    {KZB_CALL(kzbcalcSetCorrectionOfTorque), positive, zero_and_negatives, 180019, corrected_torque, generic},
    {KZB_CALL(kzbcalcSetCorrectionOfForce), positive, zero_and_negatives, 180033, with_force, ~with_force},
    {KZB_CALL(kzbcalcSetCorrectionOfCoilTurn1), from_zero, negatives, 180016, no_field, no_type},
    {KZB_CALL(kzbcalcSetCorrectionOfCoilTurn2), from_zero, negatives, 180016, no_field | wound_field, no_type},
    {KZB_CALL(kzbcalcSetCorrectionOfFieldCoilTurn2), from_zero, negatives, 180016, wound_field, no_type},
    {KZB_CALL(kzbcalcSetInitialDisplacement), any, none, 0, numbered, generic},
    {KZB_CALL(kzbcalcSetInitialTime), from_zero, negatives, 180032, numbered, no_type},
    {KZB_CALL(kzbcalcSetResistance), positive, zero_and_negatives, 180041, numbered, no_type},
    {KZB_CALL(kzbcalcSetFieldCoilResistance), positive, zero_and_negatives, 180041, wound_field, no_type},
    {KZB_CALL(kzbcalcSetSecondaryResistance), positive, zero_and_negatives, 180042, induction, no_type},
    {KZB_CALL(kzbcalcSetTime), from_zero, negatives, 180032, every_type, no_type},
    {KZB_CALL(kzbcalcSetDisplacement), any, none, 0, numbered, generic},
    {KZB_CALL(kzbcalcSetPWMFreq), any, none, 0, every_type, no_type},
    {KZB_CALL(kzbcalcSetStepSize), from_zero, negatives, 180062, induction, ~induction},
    // Refused whatever the value is: no loss that depends on the supply is in use, no data for a slip frequency.
    {KZB_CALL(kzbcalcSetDCVoltage), none, any, 180064, no_type, ~with_supply},
    {KZB_CALL(kzbcalcSetCarrierFrequency), none, any, 180064, no_type, ~with_supply},
    {KZB_CALL(kzbcalcSetSlipFrequency), none, any, 180061, no_type, ~induction},
};

namespace {

constexpr Types with_coil = permanent_magnet | stepping | solenoid | reluctance | induction | wound_field;

TemperatureCall temperature(const char* name, int (*set)(double, KZB_CALC*), double (*get)(KZB_CALC*), Types types) {
    return {{name, set, from_zero, negatives, 180043, types, no_type}, get, types, no_type, no_type};
}

TemperatureCall coefficient(const char* name, int (*set)(double, KZB_CALC*), double (*get)(KZB_CALC*), Types types) {
    return {{name, set, from_zero, negatives, 180044, types, no_type}, get, types, no_type, no_type};
}

// The getters of the coil answer for types that the setters refuse.
TemperatureCall answering(TemperatureCall call, Types answers, Types refused) {
    call.answers = answers;
    call.refused = refused;
    return call;
}

// The coefficients of a wound-field machine read as the factor that they make.
TemperatureCall with_factor(TemperatureCall call) {
    call.factors = wound_field;
    return call;
}

}  // namespace

#define KZB_SET_AND_GET(quantity) #quantity, kzbcalcSet##quantity, kzbcalcGet##quantity

const std::vector<TemperatureCall> temperature_calls = {
    temperature(KZB_SET_AND_GET(MagnetTemperature), with_magnet),
    temperature(KZB_SET_AND_GET(MagnetBaseTemperature), with_magnet),
    {{KZB_CALL(kzbcalcSetMagFluxTemperatureCorrectionCoefficient), coefficients, no_coefficients, 180045, with_magnet,
      no_type},
     kzbcalcGetMagFluxTemperatureCorrectionCoefficient,
     with_magnet,
     no_type,
     no_type},
    answering(temperature(KZB_SET_AND_GET(CoilTemperature), with_coil), every_type, generic),
    answering(temperature(KZB_SET_AND_GET(CoilBaseTemperature), with_coil), every_type, no_type),
    with_factor(
        answering(coefficient(KZB_SET_AND_GET(CoilTemperatureCorrectionCoefficient), with_coil), every_type, no_type)),
    temperature(KZB_SET_AND_GET(FieldCoilTemperature), wound_field),
    temperature(KZB_SET_AND_GET(FieldCoilBaseTemperature), wound_field),
    with_factor(coefficient(KZB_SET_AND_GET(FieldCoilTemperatureCorrectionCoefficient), wound_field)),
    temperature(KZB_SET_AND_GET(SecondaryCoilTemperature), induction),
    temperature(KZB_SET_AND_GET(SecondaryCoilBaseTemperature), induction),
    coefficient(KZB_SET_AND_GET(SecondaryCoilTemperatureCorrectionCoefficient), induction),
};

#undef KZB_SET_AND_GET

const std::vector<StatusCall> plain_calls = {
    {KZB_CALL(kzbcalcSetData), 0, every_type},
    {KZB_CALL(kzbcalcExecute), 0, every_type},
    {KZB_CALL(kzbcalcUpdate), 0, every_type},
    {KZB_CALL(kzbcalcGetTemperatureCorrectionCalc), 0, every_type},
    {KZB_CALL(kzbcalcCheckIronloss), 0, rotary_pm | induction | wound_field | generic},
    {KZB_CALL(kzbcalcSetIronlossCalc), 180040, rotary_pm | induction | wound_field | generic},
    {KZB_CALL(kzbcalcCheckUserCopperloss), 0, with_supply},
    {KZB_CALL(kzbcalcSetUserCopperlossCalc), 180065, with_supply},
    {KZB_CALL(kzbcalcCheckInductionMotorInductanceType), 0, induction},
    {KZB_CALL(kzbcalcGetNumberOfUserInputParameters), 0, generic},
    {KZB_CALL(kzbcalcGetNumberOfUserSpecifiedParameters), 0, rotary_pm | wound_field | generic},
    {KZB_CALL(kzbcalcSetTemperatureCorrectionCalc), 0, every_type},
    {KZB_CALL(kzbcalcGetTemperatureCorrectionCalc), 1, every_type},
};

const std::vector<ResultCall> result_calls = {
    {KZB_CALL(kzbcalcGetTorque), with_torque, 180034},
    {KZB_CALL(kzbcalcGetForce), with_force, 180035},
    {KZB_CALL(kzbcalcGetDAxisInductance), rotary_pm | wound_field, 180039},
    {KZB_CALL(kzbcalcGetQAxisInductance), rotary_pm | wound_field, 180039},
    {KZB_CALL(kzbcalcGetResistance), numbered, 180039},
    {KZB_CALL(kzbcalcGetCopperloss), every_type, 180039},
    {KZB_CALL(kzbcalcGetEddyloss), rotary_pm | wound_field, 180039},
    {KZB_CALL(kzbcalcGetHysteresisloss), rotary_pm | wound_field, 180039},
    {KZB_CALL(kzbcalcGetIronloss), rotary_pm | induction | wound_field | generic, 180039},
    {KZB_CALL(kzbcalcGetUserCopperLoss), with_supply, 180039},
    {KZB_CALL(kzbcalcGetUpperLimitDisplacement), solenoid, 180039},
    {KZB_CALL(kzbcalcGetLowerLimitDisplacement), solenoid, 180039},
    {KZB_CALL(kzbcalcGetPrimaryCopperLoss), induction, 180039},
    {KZB_CALL(kzbcalcGetSecondaryCopperLoss), induction, 180039},
    {KZB_CALL(kzbcalcGetSecondaryResistance), induction, 180039},
    {KZB_CALL(kzbcalcGetSecondaryFluxD), induction, 180039},
    {KZB_CALL(kzbcalcGetSecondaryFluxQ), induction, 180039},
    {KZB_CALL(kzbcalcGetFieldCoilResistance), wound_field, 180039},
};

const std::vector<PhaseSetter> phase_setters = {
    {KZB_CALL(kzbcalcSetVoltage), 180039},
    {KZB_CALL(kzbcalcSetCurrent), 180039},
    {"kzbcalcSetSignal",
     [](int phase, double on, KZB_CALC* handle) { return kzbcalcSetSignal(phase, static_cast<int>(on), handle); },
     180039},
    {KZB_CALL(kzbcalcSetInitialCurrent), 0},
};

const std::vector<PhaseGetter> phase_results = {
    {KZB_CALL(kzbcalcGetCurrent), numbered, 180031, 180039},
    {KZB_CALL(kzbcalcGetVoltage), numbered, 180031, 180039, induction},
    {KZB_CALL(kzbcalcGetInducedVoltage), numbered, 180031, 0},
    {KZB_CALL(kzbcalcGetCoilFlux), rotary_pm | wound_field, 180031, 180039},
    {KZB_CALL(kzbcalcGetMagFlux), with_magnet, 180042, 180039},
    {"row of kzbcalcGetInductance", [](int row, KZB_CALC* handle) { return kzbcalcGetInductance(row, 1, handle); },
     numbered & ~induction, 180031, 180039},
    {"column of kzbcalcGetInductance",
     [](int column, KZB_CALC* handle) { return kzbcalcGetInductance(1, column, handle); }, numbered & ~induction,
     180031, 180039},
};

const std::vector<NumberCall> number_calls = {
    {KZB_CALL(kzbcalcSetInterpolationType),
     {0, 1, 2, 3, 4},
     {-1, 5, 100, -2147483647 - 1},
     180047,
     every_type,
     no_type},
    {KZB_CALL(kzbcalcSetConnectionType),
     {0, 1},
     {-1, 2, 100, -2147483647 - 1},
     180048,
     permanent_magnet | induction | wound_field,
     no_type},
    // The motor type comes first; what the file grants is told with the accuracy itself.
    {KZB_CALL(kzbcalcSetAccuracyType), {}, {-1, 3, 100}, 180038, rotary_pm, ~rotary_pm},
};

#undef KZB_CALL

}  // namespace kzb_test
