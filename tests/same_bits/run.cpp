// The calls of one run.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <numbers>
#include <vector>

#include "interface/call_table.h"
#include "interface/generic_accessors.h"
#include "same_bits/runs.h"

namespace kzb_test {
namespace {

constexpr int most_phases = 5;

struct Setting {
    int (*set)(double, KZB_CALC*);
    double value;
};

// Every correction, temperature and resistance, with the value of a warm machine that was measured; a model answers
// those that don't apply to it with their status.
constexpr Setting settings[] = {
    {kzbcalcSetCorrectionOfFlux, 0.93},
    {kzbcalcSetCorrectionOfMagnet, 0.97},
    {kzbcalcSetCorrectionOfSteel, 1.01},
    {kzbcalcSetCorrectionOfInductance, 1.07},
    {kzbcalcSetCorrectionOfTorque, 0.99},
    {kzbcalcSetCorrectionOfForce, 0.98},
    {kzbcalcSetCorrectionOfFieldFlux, 0.96},
    {kzbcalcSetCorrectionOfCoilTurn1, 33.0},
    {kzbcalcSetCorrectionOfCoilTurn2, 36.0},
    {kzbcalcSetCorrectionOfFieldCoilTurn2, 95.0},
    {kzbcalcSetMagnetTemperature, 353.15},
    {kzbcalcSetMagnetBaseTemperature, 298.15},
    {kzbcalcSetMagFluxTemperatureCorrectionCoefficient, -0.11},
    {kzbcalcSetCoilTemperature, 393.15},
    {kzbcalcSetCoilBaseTemperature, 293.15},
    {kzbcalcSetCoilTemperatureCorrectionCoefficient, 3930.0},
    {kzbcalcSetFieldCoilTemperature, 373.15},
    {kzbcalcSetFieldCoilBaseTemperature, 293.15},
    {kzbcalcSetFieldCoilTemperatureCorrectionCoefficient, 3930.0},
    {kzbcalcSetSecondaryCoilTemperature, 413.15},
    {kzbcalcSetSecondaryCoilBaseTemperature, 293.15},
    {kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient, 4030.0},
    {kzbcalcSetPWMFreq, 8000.0},
};

void configure_generic(KZB_CALC* calc, bool everything, Bits& bits) {
    const int switches[] = {0, everything ? 1 : 0, everything ? 1 : 0, everything ? 1 : 0, 0, 0};
    bits.add(kzbcalcSetParametersForGenericModel(switches, static_cast<int>(std::size(switches)), calc));
    for (int id = 1; everything && id <= 3; ++id) {
        bits.add(kzbcalcSetCorrectionOfFluxForGenericModel(id, 1.0 + 0.01 * id, calc));
        bits.add(kzbcalcSetCorrectionOfCoilTurn2ForGenericModel(id, 10.0 + id, calc));
        bits.add(kzbcalcSetCoilTemperatureForGenericModel(id, 350.0 + id, calc));
        bits.add(kzbcalcSetCoilBaseTemperatureForGenericModel(id, 293.15, calc));
        bits.add(kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel(id, 3930.0, calc));
    }
}

void read_generic(KZB_CALC* calc, Bits& bits) {
    for (const GenericGetter& getter : generic_getters) {
        for (int id = 0; id <= most_phases; ++id) {
            bits.add(getter.get(id, calc));
        }
    }
    const int count = kzbcalcGetNumOfOutputPortsForGenericModel(calc);
    std::vector<double> values(static_cast<std::size_t>(count));
    bits.add(kzbcalcGetOutputValuesForGenericModel(values.data(), count, calc));
    for (const double value : values) {
        bits.add(value);
    }
}

bool is_generic(KZB_CALC* calc) {
    return kzbcalcCheckMotorType(calc) == 10008;
}

// A rotating system of as many phases as there are calls, with a slow ripple so that no two samples are alike.
double wave(double angle, int phase, int sample) {
    return std::cos(angle + 1.3 - 2.0 * std::numbers::pi / 3.0 * (phase - 1)) + 0.07 * std::sin(0.37 * sample * phase);
}

void set_inputs(const MachineRun& run, KZB_CALC* calc, int sample, Bits& bits) {
    constexpr double turns_per_second = 90.0;
    constexpr double width = 5e-5;
    // Every eighth sample lasts longer, every eleventh has no width.
    const double time = width * (sample + sample / 8 - sample / 11);
    const double angle = 2.0 * std::numbers::pi * turns_per_second * time;
    bits.add(kzbcalcSetTime(time, calc));
    bits.add(kzbcalcSetDisplacement(run.reach * (turns_per_second * time - 0.3), calc));
    for (int phase = 1; phase <= most_phases; ++phase) {
        const double wave_now = wave(angle, phase, sample);
        bits.add(kzbcalcSetVoltage(phase, run.voltage * wave_now, calc));
        bits.add(kzbcalcSetCurrent(phase, run.current * wave(angle, phase, sample), calc));
        bits.add(kzbcalcSetSignal(phase, run.open_phases && sample % 40 / 10 == phase ? 0 : 1, calc));
        bits.add(kzbcalcSetPowerSupplyForGenericModel(phase, run.voltage * wave_now, calc));
        bits.add(kzbcalcSetDisplacementForGenericModel(phase, run.reach * (turns_per_second * time - 0.3), calc));
        bits.add(kzbcalcSetUserInputParameter(phase, 1.0 + 0.1 * sample, calc));
    }
    bits.add(kzbcalcSetSlipFrequency(1.5 + 0.01 * sample, calc));
}

}  // namespace

RunFile::RunFile(const MachineRun& run)
    : path_(
          (std::filesystem::temp_directory_path() / ("kzb_run_" + std::to_string(::getpid()) + "_" + run.name + ".kzb"))
              .string()) {
    run.write(path_.c_str());
}

RunFile::~RunFile() {
    std::filesystem::remove(path_);
}

void configure(const MachineRun& run, KZB_CALC* calc, Bits& bits) {
    bits.add(kzbcalcSetInterpolationType(run.interpolation, calc));
    if (run.everything) {
        bits.add(kzbcalcSetIronlossCalc(calc));
        bits.add(kzbcalcSetUserCopperlossCalc(calc));
        bits.add(kzbcalcSetTemperatureCorrectionCalc(calc));
        for (const Setting& setting : settings) {
            bits.add(setting.set(setting.value, calc));
        }
    }
    if (is_generic(calc)) {
        configure_generic(calc, run.everything, bits);
    }
    bits.add(kzbcalcSetData(calc));
    bits.add(kzbcalcSetStepSize(5e-5, calc));
    bits.add(kzbcalcSetDCVoltage(300.0, calc));
    bits.add(kzbcalcSetCarrierFrequency(8000.0, calc));
    for (int phase = 1; run.everything && phase <= most_phases; ++phase) {
        bits.add(kzbcalcSetInitialCurrent(phase, 3.0 - phase, calc));
    }
}

void read_results(KZB_CALC* calc, Bits& bits) {
    for (const auto& call : getters) {
        bits.add(call.function(calc));
    }
    for (const auto& call : phase_getters) {
        for (int phase = 0; phase <= most_phases; ++phase) {
            bits.add(call.function(phase, calc));
        }
    }
    bits.add(kzbcalcGetNumberOfUserSpecifiedParameters(calc));
    if (is_generic(calc)) {
        read_generic(calc, bits);
    }
}

void read_inductances(KZB_CALC* calc, Bits& bits) {
    for (int row = 1; row <= most_phases; ++row) {
        for (int column = 1; column <= most_phases; ++column) {
            bits.add(kzbcalcGetInductance(row, column, calc));
        }
    }
}

void drive(const MachineRun& run, KZB_CALC* calc, int first, int last, Bits& bits) {
    for (int sample = first; sample < last; ++sample) {
        set_inputs(run, calc, sample, bits);
        // Every fifth sample is executed again, as a host's minor step does.
        for (int i = run.calc_mode == 1 ? 1 + (sample % 5 == 0) : 0; i > 0; --i) {
            bits.add(kzbcalcExecute(calc));
        }
        read_results(calc, bits);
        // Some models accept the sample when they are asked for an inductance; that may not happen at every one.
        if (sample % 10 == 9) {
            read_inductances(calc, bits);
        }
        bits.add(kzbcalcUpdate(calc));
    }
}

Bits results_of(const MachineRun& run, const char* path, int samples) {
    Bits bits;
    KZB_CALC* calc = nullptr;
    bits.add(kzbcalcInitialize(path, run.calc_mode, &calc));
    configure(run, calc, bits);
    drive(run, calc, 0, std::min(samples, run.samples), bits);
    bits.add(kzbcalcTerminate(calc));
    return bits;
}

}  // namespace kzb_test
