#include "kzb/scenario_options.h"

#include <numbers>

#include "interface/kzbcalc_handle.h"

namespace kzb::tool {

namespace {

constexpr Stage before = Stage::before_data;
constexpr Stage after = Stage::after_data;

// A linear solenoid takes this one value for degrees, as rotary machines do, and adds the radians to its metres.
int set_initial_position(double metres, KZB_CALC* handle) {
    const bool as_degrees = handle != nullptr && handle->motor_type == 10004;
    return kzbcalcSetInitialDisplacement(as_degrees ? metres * 180.0 / std::numbers::pi : metres, handle);
}

// Keys state their unit where it is none of the SI, or where one could doubt it: temperatures are in kelvin.
// clang-format off
#define KZB_CALL(kind, name, ...) #name, kind{name __VA_OPT__(,) __VA_ARGS__}
// clang-format on
const std::vector<ScenarioOption> option_table = {
    {"model", "interpolation", "", before,
     KZB_CALL(WordCall, kzbcalcSetInterpolationType, {"linear", "cubic", "spline4", "spline6", "spline"})},
    {"model", "accuracy", "", before, KZB_CALL(IntegerCall, kzbcalcSetAccuracyType)},
    {"model", "connection", "", before, KZB_CALL(WordCall, kzbcalcSetConnectionType, {"star", "delta"})},
    {"model", "resistance", "Ohm", before, KZB_CALL(NumberCall, kzbcalcSetResistance)},
    {"model", "field_coil_resistance", "Ohm", before, KZB_CALL(NumberCall, kzbcalcSetFieldCoilResistance)},
    // The model takes its secondary resistance from the file with its data; what is set before is lost then.
    {"model", "secondary_resistance", "Ohm", after, KZB_CALL(NumberCall, kzbcalcSetSecondaryResistance)},
    // Only with its data the model knows whether the file has tables over the slip.
    {"model", "slip_frequency", "Hz", after, KZB_CALL(NumberCall, kzbcalcSetSlipFrequency)},
    {"model", "step_size", "s", after, KZB_CALL(NumberCall, kzbcalcSetStepSize)},

    {"corrections", "flux", "", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfFlux)},
    {"corrections", "field_flux", "", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfFieldFlux)},
    {"corrections", "magnet", "", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfMagnet)},
    {"corrections", "steel", "", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfSteel)},
    {"corrections", "inductance", "", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfInductance)},
    {"corrections", "torque", "", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfTorque)},
    {"corrections", "force", "", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfForce)},
    {"corrections", "coil_turns_1", "turns", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfCoilTurn1)},
    {"corrections", "coil_turns_2", "turns", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfCoilTurn2)},
    {"corrections", "field_coil_turns_2", "turns", before, KZB_CALL(NumberCall, kzbcalcSetCorrectionOfFieldCoilTurn2)},

    // Temperatures are refused while the correction is off.
    {"temperature", "correction", "", before, KZB_CALL(SwitchCall, kzbcalcSetTemperatureCorrectionCalc, true)},
    {"temperature", "magnet_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetMagnetTemperature), "magnet"},
    {"temperature", "magnet_base_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetMagnetBaseTemperature), "magnet_base"},
    {"temperature", "magnet_coefficient_percent_per_K", "%/K", before,
     KZB_CALL(NumberCall, kzbcalcSetMagFluxTemperatureCorrectionCoefficient), "magnet_coefficient"},
    {"temperature", "coil_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetCoilTemperature), "coil"},
    {"temperature", "coil_base_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetCoilBaseTemperature), "coil_base"},
    {"temperature", "coil_coefficient_ppm_per_K", "ppm/K", before,
     KZB_CALL(NumberCall, kzbcalcSetCoilTemperatureCorrectionCoefficient), "coil_coefficient"},
    {"temperature", "field_coil_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetFieldCoilTemperature)},
    {"temperature", "field_coil_base_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetFieldCoilBaseTemperature)},
    {"temperature", "field_coil_coefficient_ppm_per_K", "ppm/K", before,
     KZB_CALL(NumberCall, kzbcalcSetFieldCoilTemperatureCorrectionCoefficient)},
    {"temperature", "secondary_coil_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetSecondaryCoilTemperature)},
    {"temperature", "secondary_coil_base_K", "K", before, KZB_CALL(NumberCall, kzbcalcSetSecondaryCoilBaseTemperature)},
    {"temperature", "secondary_coil_coefficient_ppm_per_K", "ppm/K", before,
     KZB_CALL(NumberCall, kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient)},

    {"losses", "iron", "", before, KZB_CALL(SwitchCall, kzbcalcSetIronlossCalc)},
    {"losses", "user_copper", "", before, KZB_CALL(SwitchCall, kzbcalcSetUserCopperlossCalc)},
    {"losses", "pwm_frequency", "Hz", before, KZB_CALL(NumberCall, kzbcalcSetPWMFreq)},
    // These ask whether the model computes losses, which it knows once it has its data.
    {"losses", "dc_voltage", "V", after, KZB_CALL(NumberCall, kzbcalcSetDCVoltage)},
    {"losses", "carrier_frequency", "Hz", after, KZB_CALL(NumberCall, kzbcalcSetCarrierFrequency)},
    {"losses", "user_inputs", "as in the file", after, KZB_CALL(ListCall, kzbcalcSetUserInputParameter)},

    {"initial", "current", "A", after, KZB_CALL(PhaseCall, kzbcalcSetInitialCurrent)},
    {"initial", "displacement_deg", "degrees", after, KZB_CALL(NumberCall, kzbcalcSetInitialDisplacement), nullptr,
     Travel::rotary},
    {"initial", "displacement", "m", after, "kzbcalcSetInitialDisplacement", NumberCall{set_initial_position}, nullptr,
     Travel::linear},
    {"initial", "time", "s", after, KZB_CALL(NumberCall, kzbcalcSetInitialTime)},
};
#undef KZB_CALL

}  // namespace

const std::vector<ScenarioOption>& scenario_options() {
    return option_table;
}

}  // namespace kzb::tool
