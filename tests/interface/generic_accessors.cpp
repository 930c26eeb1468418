#include "interface/generic_accessors.h"

namespace kzb_test {
namespace {

// Components of the small machine.
constexpr int coils = 2;
constexpr int resistors = 3;
constexpr int inductors = 1;
constexpr int capacitors = 1;
constexpr int probes = 3;
constexpr int sources = 2;
constexpr int motions = 2;
constexpr int forces = 2;
constexpr int user_parameters = 0;

constexpr Refused nothing = Refused::nothing;
constexpr Refused below_zero = Refused::below_zero;
constexpr Refused zero_and_below = Refused::zero_and_below;

// A call whose value is an int.
template <int (*call)(int, int, KZB_CALC*)>
int with_int(int id, double value, KZB_CALC* handle) {
    return call(id, static_cast<int>(value), handle);
}
template <int (*call)(int, KZB_CALC*)>
double int_result(int id, KZB_CALC* handle) {
    return call(id, handle);
}

#define KZB_GENERIC(action) "kzbcalc" #action "ForGenericModel", kzbcalc##action##ForGenericModel

}  // namespace

const std::vector<GenericSetter> generic_setters = {
    {KZB_GENERIC(SetInitialPosition), motions, 180055, nothing, 0},
    // A wrong coil shares the status of the motor type.
    {KZB_GENERIC(SetInitialCoilCurrent), coils, 180039, nothing, 0},
    {KZB_GENERIC(SetInitialCapacitorCurrent), capacitors, 180051, nothing, 0},
    {KZB_GENERIC(SetInitialResistorCurrent), resistors, 180052, nothing, 0},
    {KZB_GENERIC(SetInitialInductorCurrent), inductors, 180050, nothing, 0},
    {"kzbcalcSetPowerSupplyTypeForGenericModel", with_int<kzbcalcSetPowerSupplyTypeForGenericModel>, sources, 180054,
     nothing, 0},
    {KZB_GENERIC(SetCoilResistance), coils, 180049, zero_and_below, 180041},
    {KZB_GENERIC(SetResistance), resistors, 180052, zero_and_below, 180041},
    {KZB_GENERIC(SetCapacitance), capacitors, 180051, zero_and_below, 180058},
    {KZB_GENERIC(SetInductance), inductors, 180050, zero_and_below, 180059},
    {KZB_GENERIC(SetCoilBaseTemperature), coils, 180049, below_zero, 180043},
    {KZB_GENERIC(SetCoilTemperatureCorrectionCoefficient), coils, 180049, below_zero, 180044},
    {KZB_GENERIC(SetCorrectionOfFlux), coils, 180049, zero_and_below, 180017},
    {KZB_GENERIC(SetCorrectionOfCoilTurn2), coils, 180049, below_zero, 180016},
    {KZB_GENERIC(SetCorrectionOfUserSpecifiedParameter), user_parameters, 180064, zero_and_below, 180016},
    {KZB_GENERIC(SetCorrectionOfForce), forces, 180057, zero_and_below, 180019},
    {KZB_GENERIC(SetDisplacement), motions, 180055, nothing, 0},
    {KZB_GENERIC(SetPowerSupply), sources, 180054, nothing, 0},
    {"kzbcalcSetPowerSupplySwitchForGenericModel", with_int<kzbcalcSetPowerSupplySwitchForGenericModel>, sources,
     180054, nothing, 0},
    {KZB_GENERIC(SetCoilTemperature), coils, 180049, zero_and_below, 180043},
};

const std::vector<GenericGetter> generic_getters = {
    {KZB_GENERIC(GetCoilResistance), coils, 180049},
    {KZB_GENERIC(GetCoilTemperature), coils, 180049},
    {KZB_GENERIC(GetCoilBaseTemperature), coils, 180049},
    {KZB_GENERIC(GetCoilTemperatureCorrectionCoefficient), coils, 180049},
    {KZB_GENERIC(GetCorrectionOfFlux), coils, 180049},
    {KZB_GENERIC(GetCorrectionOfCoilTurn2), coils, 180049},
    {KZB_GENERIC(GetCoilCurrent), coils, 180049},
    {KZB_GENERIC(GetCoilFlux), coils, 180049},
    {KZB_GENERIC(GetResistance), resistors, 180052},
    {KZB_GENERIC(GetResistorCurrent), resistors, 180052},
    {KZB_GENERIC(GetInductance), inductors, 180050},
    {KZB_GENERIC(GetInductorCurrent), inductors, 180050},
    {KZB_GENERIC(GetCapacitance), capacitors, 180051},
    {KZB_GENERIC(GetCapacitorCurrent), capacitors, 180051},
    {KZB_GENERIC(GetVoltageProbeValue), probes, 180053},
    {KZB_GENERIC(GetForce), forces, 180057},
    {KZB_GENERIC(GetCorrectionOfForce), forces, 180057},
    {"kzbcalcGetPowerSupplyTypeForGenericModel", int_result<kzbcalcGetPowerSupplyTypeForGenericModel>, sources, 180054},
    // The limits of the second motion, which is periodic, are a status of their own.
    {KZB_GENERIC(GetUpperLimitDisplacement), 1, 180055},
    {KZB_GENERIC(GetLowerLimitDisplacement), 1, 180055},
    {"kzbcalcGetMotionReferTableIdForGeneric", int_result<kzbcalcGetMotionReferTableIdForGeneric>, motions, 180055},
};

const std::vector<GenericLookup> generic_lookups = {
    {KZB_GENERIC(GetCoilIdFromName), {"winding", "rotor"}, 180049},
    {KZB_GENERIC(GetInductorIdFromName), {"choke"}, 180050},
    {KZB_GENERIC(GetCapacitorIdFromName), {"filter"}, 180051},
    {KZB_GENERIC(GetResistorIdFromName), {"load", "bleeder", "heater"}, 180052},
    {KZB_GENERIC(GetVoltageProbeIdFromName), {"gauge", "second gauge", "third gauge"}, 180053},
    {KZB_GENERIC(GetPowerSupplyIdFromName), {"supply", "field"}, 180054},
    {KZB_GENERIC(GetMotionIdFromName), {"shaft", "slide"}, 180055},
};

#define KZB_GENERIC_WITH(action, ...)                                                      \
    {                                                                                      \
        "kzbcalc" #action "ForGenericModel",                                               \
            [](KZB_CALC* handle) { return kzbcalc##action##ForGenericModel(__VA_ARGS__); } \
    }

const std::vector<GenericArrayCall> generic_array_calls = {
    KZB_GENERIC_WITH(GetNumOfInputPorts, handle),
    KZB_GENERIC_WITH(GetNumOfOutputPorts, handle),
    KZB_GENERIC_WITH(GetInputLabels, nullptr, 0, handle),
    KZB_GENERIC_WITH(GetOutputLabels, nullptr, 0, handle),
    KZB_GENERIC_WITH(SetInputValues, nullptr, 0, handle),
    KZB_GENERIC_WITH(GetOutputValues, nullptr, 0, handle),
    KZB_GENERIC_WITH(SetParameters, nullptr, 0, handle),
    KZB_GENERIC_WITH(SetTableValues, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, handle),
    KZB_GENERIC_WITH(SetCorrectionFactors, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0,
                     handle),
    KZB_GENERIC_WITH(SetInitialValues, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0, handle),
};

#undef KZB_GENERIC_WITH
#undef KZB_GENERIC

}  // namespace kzb_test
