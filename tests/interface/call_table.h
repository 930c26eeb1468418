// All calculator calls by signature, so that a test can go through every one.
#pragma once

#include "KZBCalculator/kzbcalc.h"

namespace kzb_test {

template <class Function>
struct Call {
    const char* name;
    Function* function;
};

#define KZB_CALL(name) \
    { #name, name }

inline constexpr Call<int(KZB_CALC*)> status_calls[] = {
    KZB_CALL(kzbcalcSetData),
    KZB_CALL(kzbcalcUpdate),
    KZB_CALL(kzbcalcGetNumberOfUserSpecifiedParameters),
    KZB_CALL(kzbcalcSetTemperatureCorrectionCalc),
    KZB_CALL(kzbcalcGetTemperatureCorrectionCalc),
    KZB_CALL(kzbcalcSetIronlossCalc),
    KZB_CALL(kzbcalcCheckIronloss),
    KZB_CALL(kzbcalcSetUserCopperlossCalc),
    KZB_CALL(kzbcalcCheckUserCopperloss),
    KZB_CALL(kzbcalcCheckInductionMotorInductanceType),
    KZB_CALL(kzbcalcGetNumberOfUserInputParameters),
};

inline constexpr Call<double(KZB_CALC*)> getters[] = {
    KZB_CALL(kzbcalcGetTorque),
    KZB_CALL(kzbcalcGetForce),
    KZB_CALL(kzbcalcGetDAxisInductance),
    KZB_CALL(kzbcalcGetQAxisInductance),
    KZB_CALL(kzbcalcGetResistance),
    KZB_CALL(kzbcalcGetCopperloss),
    KZB_CALL(kzbcalcGetEddyloss),
    KZB_CALL(kzbcalcGetHysteresisloss),
    KZB_CALL(kzbcalcGetIronloss),
    KZB_CALL(kzbcalcGetUserCopperLoss),
    KZB_CALL(kzbcalcGetMagnetTemperature),
    KZB_CALL(kzbcalcGetMagnetBaseTemperature),
    KZB_CALL(kzbcalcGetMagFluxTemperatureCorrectionCoefficient),
    KZB_CALL(kzbcalcGetCoilTemperature),
    KZB_CALL(kzbcalcGetCoilBaseTemperature),
    KZB_CALL(kzbcalcGetCoilTemperatureCorrectionCoefficient),
    KZB_CALL(kzbcalcGetUpperLimitDisplacement),
    KZB_CALL(kzbcalcGetLowerLimitDisplacement),
    KZB_CALL(kzbcalcGetSlipFrequency),
    KZB_CALL(kzbcalcGetSecondaryResistance),
    KZB_CALL(kzbcalcGetPrimaryCopperLoss),
    KZB_CALL(kzbcalcGetSecondaryCopperLoss),
    KZB_CALL(kzbcalcGetSecondaryFluxD),
    KZB_CALL(kzbcalcGetSecondaryFluxQ),
    KZB_CALL(kzbcalcGetSecondaryCoilTemperature),
    KZB_CALL(kzbcalcGetSecondaryCoilBaseTemperature),
    KZB_CALL(kzbcalcGetSecondaryCoilTemperatureCorrectionCoefficient),
    KZB_CALL(kzbcalcGetFieldCoilResistance),
    KZB_CALL(kzbcalcGetFieldCoilTemperature),
    KZB_CALL(kzbcalcGetFieldCoilBaseTemperature),
    KZB_CALL(kzbcalcGetFieldCoilTemperatureCorrectionCoefficient),
};

inline constexpr Call<double(int, KZB_CALC*)> phase_getters[] = {
    KZB_CALL(kzbcalcGetCurrent),  KZB_CALL(kzbcalcGetVoltage), KZB_CALL(kzbcalcGetInducedVoltage),
    KZB_CALL(kzbcalcGetCoilFlux), KZB_CALL(kzbcalcGetMagFlux), KZB_CALL(kzbcalcGetUserSpecifiedParameter),
};

inline constexpr Call<int(double, KZB_CALC*)> value_setters[] = {
    KZB_CALL(kzbcalcSetTime),
    KZB_CALL(kzbcalcSetDisplacement),
    KZB_CALL(kzbcalcSetInitialDisplacement),
    KZB_CALL(kzbcalcSetInitialTime),
    KZB_CALL(kzbcalcSetResistance),
    KZB_CALL(kzbcalcSetCorrectionOfFlux),
    KZB_CALL(kzbcalcSetCorrectionOfMagnet),
    KZB_CALL(kzbcalcSetCorrectionOfSteel),
    KZB_CALL(kzbcalcSetCorrectionOfInductance),
    KZB_CALL(kzbcalcSetCorrectionOfTorque),
    KZB_CALL(kzbcalcSetCorrectionOfForce),
    KZB_CALL(kzbcalcSetCorrectionOfCoilTurn1),
    KZB_CALL(kzbcalcSetCorrectionOfCoilTurn2),
    KZB_CALL(kzbcalcSetCorrectionOfFieldFlux),
    KZB_CALL(kzbcalcSetCorrectionOfFieldCoilTurn2),
    KZB_CALL(kzbcalcSetMagnetTemperature),
    KZB_CALL(kzbcalcSetMagnetBaseTemperature),
    KZB_CALL(kzbcalcSetMagFluxTemperatureCorrectionCoefficient),
    KZB_CALL(kzbcalcSetCoilTemperature),
    KZB_CALL(kzbcalcSetCoilBaseTemperature),
    KZB_CALL(kzbcalcSetCoilTemperatureCorrectionCoefficient),
    KZB_CALL(kzbcalcSetPWMFreq),
    KZB_CALL(kzbcalcSetDCVoltage),
    KZB_CALL(kzbcalcSetCarrierFrequency),
    KZB_CALL(kzbcalcSetStepSize),
    KZB_CALL(kzbcalcSetSlipFrequency),
    KZB_CALL(kzbcalcSetSecondaryResistance),
    KZB_CALL(kzbcalcSetSecondaryCoilTemperature),
    KZB_CALL(kzbcalcSetSecondaryCoilBaseTemperature),
    KZB_CALL(kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient),
    KZB_CALL(kzbcalcSetFieldCoilResistance),
    KZB_CALL(kzbcalcSetFieldCoilTemperature),
    KZB_CALL(kzbcalcSetFieldCoilBaseTemperature),
    KZB_CALL(kzbcalcSetFieldCoilTemperatureCorrectionCoefficient),
};

inline constexpr Call<int(int, double, KZB_CALC*)> indexed_setters[] = {
    KZB_CALL(kzbcalcSetVoltage),
    KZB_CALL(kzbcalcSetCurrent),
    KZB_CALL(kzbcalcSetInitialCurrent),
    KZB_CALL(kzbcalcSetUserInputParameter),
};

inline constexpr Call<int(int, KZB_CALC*)> type_setters[] = {
    KZB_CALL(kzbcalcSetInterpolationType),
    KZB_CALL(kzbcalcSetAccuracyType),
    KZB_CALL(kzbcalcSetConnectionType),
};

#undef KZB_CALL

}  // namespace kzb_test
