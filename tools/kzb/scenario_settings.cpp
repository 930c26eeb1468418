#include "kzb/scenario_settings.h"

#include "fmt/format.h"

namespace kzb::tool {

namespace {

using Calls = std::vector<ModelCall>;

// A key whose number goes to one setter. The setter judges the number: its status is the answer.
struct NumberSetter {
    const char* key;
    const char* call_name;
    int (*call)(double, KZB_CALC*);
};

#define KZB_SETTER(name) #name, name
constexpr NumberSetter model_numbers[] = {
    {"resistance", KZB_SETTER(kzbcalcSetResistance)},
};
constexpr NumberSetter corrections[] = {
    {"flux", KZB_SETTER(kzbcalcSetCorrectionOfFlux)},
    {"magnet", KZB_SETTER(kzbcalcSetCorrectionOfMagnet)},
    {"steel", KZB_SETTER(kzbcalcSetCorrectionOfSteel)},
    {"inductance", KZB_SETTER(kzbcalcSetCorrectionOfInductance)},
    {"torque", KZB_SETTER(kzbcalcSetCorrectionOfTorque)},
    {"force", KZB_SETTER(kzbcalcSetCorrectionOfForce)},
    {"coil_turns_1", KZB_SETTER(kzbcalcSetCorrectionOfCoilTurn1)},
    {"coil_turns_2", KZB_SETTER(kzbcalcSetCorrectionOfCoilTurn2)},
};
constexpr NumberSetter temperatures[] = {
    {"magnet", KZB_SETTER(kzbcalcSetMagnetTemperature)},
    {"magnet_base", KZB_SETTER(kzbcalcSetMagnetBaseTemperature)},
    {"magnet_coefficient", KZB_SETTER(kzbcalcSetMagFluxTemperatureCorrectionCoefficient)},
    {"coil", KZB_SETTER(kzbcalcSetCoilTemperature)},
    {"coil_base", KZB_SETTER(kzbcalcSetCoilBaseTemperature)},
    {"coil_coefficient", KZB_SETTER(kzbcalcSetCoilTemperatureCorrectionCoefficient)},
};
constexpr NumberSetter losses_before_data[] = {
    {"pwm_frequency", KZB_SETTER(kzbcalcSetPWMFreq)},
};
// These ask whether the model computes losses, which it knows once it has its data.
constexpr NumberSetter losses_after_data[] = {
    {"dc_voltage", KZB_SETTER(kzbcalcSetDCVoltage)},
    {"carrier_frequency", KZB_SETTER(kzbcalcSetCarrierFrequency)},
};
constexpr NumberSetter initial_time[] = {
    {"time", KZB_SETTER(kzbcalcSetInitialTime)},
};

template <std::size_t count>
void read_numbers(Section& section, const NumberSetter (&setters)[count], Calls& calls) {
    for (const NumberSetter& setter : setters) {
        if (const std::optional<double> value = section.number(setter.key)) {
            calls.push_back({setter.call_name, section.place(setter.key),
                             [call = setter.call, v = *value](KZB_CALC* handle) { return call(v, handle); }});
        }
    }
}

void add_choice(const Section& section, const char* key, const char* call_name, int (*call)(int, KZB_CALC*), int value,
                Calls& calls) {
    calls.push_back({call_name, section.place(key), [call, value](KZB_CALC* handle) { return call(value, handle); }});
}

void add_switch(Section& section, const char* key, const char* call_name, int (*call)(KZB_CALC*), Calls& calls) {
    if (section.flag(key).value_or(false)) {
        calls.push_back({call_name, section.place(key), [call](KZB_CALC* handle) { return call(handle); }});
    }
}

void read_model(Section& root, Calls& calls) {
    std::optional<Section> model = root.section("model");
    if (!model) {
        return;
    }
    if (const auto type = model->choice("interpolation", {"linear", "cubic", "spline4", "spline6", "spline"})) {
        add_choice(*model, "interpolation", KZB_SETTER(kzbcalcSetInterpolationType), static_cast<int>(*type), calls);
    }
    if (const auto accuracy = model->integer("accuracy", 0)) {
        add_choice(*model, "accuracy", KZB_SETTER(kzbcalcSetAccuracyType), *accuracy, calls);
    }
    if (const auto connection = model->choice("connection", {"star", "delta"})) {
        add_choice(*model, "connection", KZB_SETTER(kzbcalcSetConnectionType), static_cast<int>(*connection), calls);
    }
    read_numbers(*model, model_numbers, calls);
    model->end();
}

void read_temperature(Section& root, Calls& calls) {
    std::optional<Section> section = root.section("temperature");
    if (!section) {
        return;
    }
    if (section->flag("correction").value_or(true)) {
        calls.push_back({"kzbcalcSetTemperatureCorrectionCalc", root.place("temperature"),
                         [](KZB_CALC* handle) { return kzbcalcSetTemperatureCorrectionCalc(handle); }});
    }
    read_numbers(*section, temperatures, calls);
    section->end();
}

struct SkewSide {
    int type = 0;
    double angle_deg = 0.0;
    int steps = 0;
};

SkewSide read_skew_side(Section& skew, const char* key) {
    std::optional<Section> section = skew.section(key);
    SkewSide side;
    if (!section) {
        return side;
    }
    constexpr int type_of_word[] = {0, 1, 3};
    side.type = type_of_word[section->required("type", section->choice("type", {"none", "continuous", "stepped"}))];
    if (side.type != 0) {
        side.angle_deg = section->required("angle_deg", section->number("angle_deg"));
    }
    if (side.type == 3) {
        side.steps = section->required("steps", section->integer("steps", 2));
    }
    section->end();
    return side;
}

void read_skew(Section& root, Calls& calls) {
    std::optional<Section> skew = root.section("skew");
    if (!skew) {
        return;
    }
    const SkewSide a = read_skew_side(*skew, "a");
    const SkewSide b = read_skew_side(*skew, "b");
    skew->end();
    calls.push_back({"kzbcalcSetSkewParameter", root.place("skew"), [a, b](KZB_CALC* handle) {
                         return kzbcalcSetSkewParameter(a.type, b.type, a.angle_deg, b.angle_deg, a.steps, b.steps,
                                                        handle);
                     }});
}

void read_losses(Section& root, Calls& before, Calls& after) {
    std::optional<Section> losses = root.section("losses");
    if (!losses) {
        return;
    }
    add_switch(*losses, "iron", KZB_SETTER(kzbcalcSetIronlossCalc), before);
    add_switch(*losses, "user_copper", KZB_SETTER(kzbcalcSetUserCopperlossCalc), before);
    read_numbers(*losses, losses_before_data, before);
    read_numbers(*losses, losses_after_data, after);
    losses->end();
}

void read_initial(Section& root, const Machine& machine, Calls& calls) {
    std::optional<Section> initial = root.section("initial");
    if (!initial) {
        return;
    }
    if (std::optional<Section> current = initial->section("current")) {
        for (const std::string& name : machine.phases) {
            if (const std::optional<double> value = current->number(name)) {
                calls.push_back({"kzbcalcSetInitialCurrent", current->place(name),
                                 [phase = *machine.phase(name), v = *value](KZB_CALC* handle) {
                                     return kzbcalcSetInitialCurrent(phase, v, handle);
                                 }});
            }
        }
        current->end();
    }
    const NumberSetter displacement[] = {
        {machine.linear ? "displacement" : "displacement_deg", KZB_SETTER(kzbcalcSetInitialDisplacement)},
    };
    read_numbers(*initial, displacement, calls);
    read_numbers(*initial, initial_time, calls);
    initial->end();
}
#undef KZB_SETTER

}  // namespace

void read_settings(Section& root, const Machine& machine, Scenario& scenario) {
    read_model(root, scenario.before_data);
    if (std::optional<Section> section = root.section("corrections")) {
        read_numbers(*section, corrections, scenario.before_data);
        section->end();
    }
    read_temperature(root, scenario.before_data);
    read_skew(root, scenario.before_data);
    read_losses(root, scenario.before_data, scenario.after_data);
    read_initial(root, machine, scenario.after_data);
}

}  // namespace kzb::tool
