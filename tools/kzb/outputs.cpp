#include "kzb/outputs.h"

#include <algorithm>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/outputs_ac.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

using Outputs = std::vector<Output>;

void add_input(Outputs& outputs, const Machine& machine) {
    for (std::size_t k = 0; k < machine.phases.size(); ++k) {
        outputs.push_back({"v_" + machine.phases[k], "v", "V", true,
                           [k](const Sample& sample, KZB_CALC*) { return sample.applied[k]; }});
    }
}

void add_phases(Outputs& outputs, const Machine& machine, const std::string& group, const char* unit, bool by_default,
                double (*get)(int, KZB_CALC*)) {
    for (std::size_t k = 0; k < machine.phases.size(); ++k) {
        outputs.push_back(
            {group + '_' + machine.phases[k], group, unit, by_default,
             [get, phase = static_cast<int>(k) + 1](const Sample&, KZB_CALC* handle) { return get(phase, handle); }});
    }
}

void add_value(Outputs& outputs, const char* name, const char* unit, double (*get)(KZB_CALC*)) {
    outputs.push_back({name, name, unit, true, [get](const Sample&, KZB_CALC* handle) { return get(handle); }});
}

void add_inductances(Outputs& outputs, const Machine& machine) {
    for (std::size_t row = 0; row < machine.phases.size(); ++row) {
        for (std::size_t column = 0; column < machine.phases.size(); ++column) {
            outputs.push_back({fmt::format("inductance_{}{}", machine.phases[row], machine.phases[column]),
                               "inductance", "H", false,
                               [r = static_cast<int>(row) + 1, c = static_cast<int>(column) + 1](
                                   const Sample&, KZB_CALC* handle) { return kzbcalcGetInductance(r, c, handle); }});
        }
    }
}

void add_user_parameters(Outputs& outputs, KZB_CALC* handle) {
    constexpr int first_status = 180000;
    const int count = kzbcalcGetNumberOfUserSpecifiedParameters(handle);
    for (int index = 1; index <= count && count < first_status; ++index) {
        outputs.push_back(
            {fmt::format("user_parameter_{}", index), "user_parameter", "", true,
             [index](const Sample&, KZB_CALC* model) { return kzbcalcGetUserSpecifiedParameter(index, model); }});
    }
}

void add_losses(Outputs& outputs, const Machine& machine) {
    add_value(outputs, "copper_loss", "W", kzbcalcGetCopperloss);
    if (machine.motor_type == 10000) {
        add_value(outputs, "eddy_loss", "W", kzbcalcGetEddyloss);
        add_value(outputs, "hysteresis_loss", "W", kzbcalcGetHysteresisloss);
        add_value(outputs, "iron_loss", "W", kzbcalcGetIronloss);
        add_value(outputs, "user_copper_loss", "W", kzbcalcGetUserCopperLoss);
    }
}

// Machines of separate coils. Asking such a machine for an inductance ends the sample's history, so those come last;
// of the stepping motor only one element could be asked for.
void add_coil_outputs(Outputs& outputs, const Machine& machine) {
    add_phases(outputs, machine, "v_induced", "V", true, kzbcalcGetInducedVoltage);
    if (!machine.is_reluctance()) {
        add_phases(outputs, machine, "v_winding", "V", false, kzbcalcGetVoltage);
        add_phases(outputs, machine, "magnet_flux", "Wb", false, kzbcalcGetMagFlux);
    }
    add_value(outputs, "resistance", "Ohm", kzbcalcGetResistance);
    add_losses(outputs, machine);
    if (!machine.is_stepper()) {
        const std::size_t before = outputs.size();
        add_inductances(outputs, machine);
        std::for_each(outputs.begin() + static_cast<std::ptrdiff_t>(before), outputs.end(),
                      [](Output& output) { output.ends_sample = true; });
    }
}

}  // namespace

std::vector<Output> outputs_of(const Machine& machine, bool current_driven, KZB_CALC* handle) {
    Outputs outputs;
    outputs.push_back({"time", "time", "s", true, [](const Sample& sample, KZB_CALC*) { return sample.time; }});
    outputs.push_back({"displacement", "displacement", machine.linear ? "m" : "deg", true,
                       [](const Sample& sample, KZB_CALC*) { return sample.displacement; }});
    outputs.push_back({"speed", "speed", machine.linear ? "mps" : "rpm", true,
                       [](const Sample& sample, KZB_CALC*) { return sample.speed; }});
    if (!current_driven) {
        add_input(outputs, machine);
    }
    add_phases(outputs, machine, "i", "A", true, kzbcalcGetCurrent);
    outputs.push_back({machine.linear ? "force" : "torque", machine.linear ? "force" : "torque",
                       machine.linear ? "N" : "Nm", true,
                       [](const Sample& sample, KZB_CALC*) { return sample.torque; }});
    if (machine.has_separate_coils()) {
        add_coil_outputs(outputs, machine);
        return outputs;
    }
    if (machine.is_induction()) {
        add_induction_outputs(outputs, machine, handle);
        return outputs;
    }
    if (machine.is_wound_field()) {
        add_wound_field_outputs(outputs, machine, handle);
        add_user_parameters(outputs, handle);
        return outputs;
    }
    add_phases(outputs, machine, "v_induced", "V", true, kzbcalcGetInducedVoltage);
    add_phases(outputs, machine, "v_winding", "V", false, kzbcalcGetVoltage);
    if (machine.motor_type == 10000) {
        add_phases(outputs, machine, "coil_flux", "Wb", true, kzbcalcGetCoilFlux);
        add_value(outputs, "inductance_d", "H", kzbcalcGetDAxisInductance);
        add_value(outputs, "inductance_q", "H", kzbcalcGetQAxisInductance);
    }
    add_phases(outputs, machine, "magnet_flux", "Wb", false, kzbcalcGetMagFlux);
    add_inductances(outputs, machine);
    add_value(outputs, "resistance", "Ohm", kzbcalcGetResistance);
    add_losses(outputs, machine);
    if (machine.motor_type == 10000) {
        add_user_parameters(outputs, handle);
    }
    return outputs;
}

std::vector<Output> chosen_outputs(const std::vector<Output>& offered, const Scenario& scenario) {
    std::vector<Output> chosen;
    if (scenario.record.empty()) {
        std::copy_if(offered.begin(), offered.end(), std::back_inserter(chosen),
                     [](const Output& output) { return output.by_default; });
        return chosen;
    }
    chosen.push_back(offered.front());
    for (const RecordWish& wish : scenario.record) {
        bool found = false;
        for (const Output& output : offered) {
            if (wish.name != output.name && wish.name != output.group && wish.name != output.column() &&
                (output.label.empty() || wish.name != output.label)) {
                continue;
            }
            found = true;
            const bool already = std::any_of(chosen.begin(), chosen.end(),
                                             [&output](const Output& known) { return known.name == output.name; });
            if (!already) {
                chosen.push_back(output);
            }
        }
        if (!found) {
            std::vector<std::string> groups;
            for (const Output& output : offered) {
                if (groups.empty() || groups.back() != output.group) {
                    groups.push_back(output.group);
                }
            }
            throw Failure(exit_file, fmt::format("{}: no output \"{}\", expected one of {}", wish.place,
                                                 printable_line(wish.name), fmt::join(groups, ", ")));
        }
    }
    std::stable_partition(chosen.begin(), chosen.end(), [](const Output& output) { return !output.ends_sample; });
    return chosen;
}

}  // namespace kzb::tool
