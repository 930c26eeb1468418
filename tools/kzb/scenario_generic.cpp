#include "kzb/scenario_generic.h"

#include <algorithm>

#include "KZBCalculator/kzbcalc.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/generic_machine.h"
#include "kzb/scenario.h"
#include "kzb/scenario_motion.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

using Windows = std::vector<std::pair<double, double>>;

// Refuses keys that name no port, and ports named twice, "2" and "u" for instance.
void require_ports(const Section& section, const PortNames& ports, const char* what, bool all_allowed = false) {
    std::vector<int> seen;
    for (const std::string& key : section.keys()) {
        if (all_allowed && key == "all") {
            continue;
        }
        const std::optional<int> port = ports.port(key);
        if (!port) {
            section.fail(key, fmt::format("names no {}, expected {}", what,
                                          ports.names.empty() ? fmt::format("none, the model has no {}", what)
                                                              : printable_line(fmt::format(
                                                                    "one of {}", fmt::join(ports.names, ", ")))));
        }
        if (std::find(seen.begin(), seen.end(), *port) != seen.end()) {
            section.fail(key, fmt::format("{} {} a second time", what, *port));
        }
        seen.push_back(*port);
    }
}

// The key as the section spells a port: by name, or by number.
std::string key_of(const Section& section, const PortNames& ports, std::size_t place) {
    const std::string number = std::to_string(place + 1);
    return section.has(ports.names[place]) || !section.has(number) ? ports.names[place] : number;
}

void read_sources(Section& root, const GenericMachine& machine, WaveformReader& waveforms, GenericScenario& generic) {
    const PortNames& ports = machine.sources;
    std::optional<Section> section = root.section("sources");
    if (!section) {
        if (!ports.names.empty()) {
            root.missing("sources");
        }
        return;
    }
    require_ports(*section, ports, "source", true);
    const double lag_deg = 360.0 / static_cast<double>(std::max<std::size_t>(ports.names.size(), 1));
    const std::optional<Waveform> all = waveforms.read(*section, "all");
    for (std::size_t k = 0; k < ports.names.size(); ++k) {
        const std::string key = key_of(*section, ports, k);
        const std::optional<Waveform> own = waveforms.read(*section, key);
        if (!own && !all) {
            section->missing(key);
        }
        generic.sources.push_back(own ? *own : all->shifted(lag_deg * static_cast<double>(k)));
    }
    section->end();
}

void read_switches(Section& root, const GenericMachine& machine, GenericScenario& generic) {
    const PortNames& ports = machine.sources;
    generic.switched_off.resize(ports.names.size());
    std::optional<Section> section = root.section("switches");
    if (!section) {
        return;
    }
    require_ports(*section, ports, "source");
    for (std::size_t k = 0; k < ports.names.size(); ++k) {
        generic.switched_off[k] = read_windows(*section, key_of(*section, ports, k));
    }
    section->end();
}

void read_motions(Section& root, const GenericMachine& machine, WaveformReader& waveforms, GenericScenario& generic) {
    const PortNames& ports = machine.motions;
    generic.motions.resize(ports.names.size());
    const auto read = [&](Section section, std::size_t k) {
        read_motion_keys(section, !machine.rotation[k], waveforms, generic.motions[k]);
        section.end();
    };
    std::optional<Section> one = root.section("mechanics");
    std::optional<Section> section = root.section("motions");
    if (one && section) {
        root.fail("motions", "beside [mechanics], expected one of the two");
    }
    if (one) {
        if (ports.names.size() != 1) {
            root.fail("mechanics", fmt::format("the model has {} motions, expected [motions.NAME] for each of them",
                                               ports.names.size()));
        }
        read(*one, 0);
    }
    if (section) {
        require_ports(*section, ports, "motion");
        for (std::size_t k = 0; k < ports.names.size(); ++k) {
            if (std::optional<Section> own = section->section(key_of(*section, ports, k))) {
                read(*own, k);
            }
        }
        section->end();
    }
}

// A section [generic.KEY] with a number for each port, by its name.
struct PortCall {
    const char* key;
    const char* call_name;
    int (*call)(int, double, KZB_CALC*);
    PortNames GenericMachine::*ports;
    const char* what;
};

// clang-format off
#define KZB_CALL(name) #name, name
const PortCall port_calls[] = {
    {"coil_resistance", KZB_CALL(kzbcalcSetCoilResistanceForGenericModel), &GenericMachine::coils, "coil"},
    {"resistance", KZB_CALL(kzbcalcSetResistanceForGenericModel), &GenericMachine::resistors, "resistor"},
    {"inductance", KZB_CALL(kzbcalcSetInductanceForGenericModel), &GenericMachine::inductors, "inductor"},
    {"capacitance", KZB_CALL(kzbcalcSetCapacitanceForGenericModel), &GenericMachine::capacitors, "capacitor"},
    {"flux_correction", KZB_CALL(kzbcalcSetCorrectionOfFluxForGenericModel), &GenericMachine::coils, "coil"},
    {"coil_turns_2", KZB_CALL(kzbcalcSetCorrectionOfCoilTurn2ForGenericModel), &GenericMachine::coils, "coil"},
    {"force_correction", KZB_CALL(kzbcalcSetCorrectionOfForceForGenericModel), &GenericMachine::motions, "motion"},
    {"output_correction", KZB_CALL(kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel), &GenericMachine::outputs, "output"},
    {"coil_base_temperature_K", KZB_CALL(kzbcalcSetCoilBaseTemperatureForGenericModel), &GenericMachine::coils, "coil"},
    {"coil_temperature_coefficient_ppm_per_K", KZB_CALL(kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel), &GenericMachine::coils, "coil"},
    {"coil_temperature_K", KZB_CALL(kzbcalcSetCoilTemperatureForGenericModel), &GenericMachine::coils, "coil"},
    {"initial_position", KZB_CALL(kzbcalcSetInitialPositionForGenericModel), &GenericMachine::motions, "motion"},
    {"initial_coil_current", KZB_CALL(kzbcalcSetInitialCoilCurrentForGenericModel), &GenericMachine::coils, "coil"},
    {"initial_resistor_current", KZB_CALL(kzbcalcSetInitialResistorCurrentForGenericModel), &GenericMachine::resistors, "resistor"},
    {"initial_inductor_current", KZB_CALL(kzbcalcSetInitialInductorCurrentForGenericModel), &GenericMachine::inductors, "inductor"},
    {"initial_capacitor_current", KZB_CALL(kzbcalcSetInitialCapacitorCurrentForGenericModel), &GenericMachine::capacitors, "capacitor"},
};
#undef KZB_CALL
// clang-format on

void read_port_calls(Section& generic, const PortCall& port_call, const GenericMachine& machine, Scenario& scenario) {
    std::optional<Section> section = generic.section(port_call.key);
    if (!section) {
        return;
    }
    const PortNames& ports = machine.*port_call.ports;
    require_ports(*section, ports, port_call.what);
    for (std::size_t k = 0; k < ports.names.size(); ++k) {
        const std::string key = key_of(*section, ports, k);
        if (const std::optional<double> value = section->number(key)) {
            scenario.after_data.push_back({port_call.call_name, section->place(key),
                                           [call = port_call.call, port = static_cast<int>(k) + 1,
                                            v = *value](KZB_CALC* handle) { return call(port, v, handle); }});
        }
    }
    section->end();
}

void read_source_types(Section* generic, const GenericMachine& machine, bool current_driven, Scenario& scenario) {
    std::vector<bool>& current = scenario.generic.current;
    current.assign(machine.sources.names.size(), current_driven);
    std::optional<Section> section = generic == nullptr ? std::nullopt : generic->section("source_type");
    if (section) {
        require_ports(*section, machine.sources, "source");
        for (std::size_t k = 0; k < current.size(); ++k) {
            const std::string key = key_of(*section, machine.sources, k);
            if (const auto type = section->choice(key, {"voltage", "current"})) {
                current[k] = *type == 1;
            }
        }
        section->end();
    }
    for (std::size_t k = 0; k < current.size(); ++k) {
        scenario.after_data.push_back({"kzbcalcSetPowerSupplyTypeForGenericModel",
                                       scenario.file + ": " + machine.sources.names[k],
                                       [port = static_cast<int>(k) + 1, type = current[k] ? 1 : 0](KZB_CALC* handle) {
                                           return kzbcalcSetPowerSupplyTypeForGenericModel(port, type, handle);
                                       }});
    }
}

}  // namespace

std::vector<std::pair<double, double>> read_windows(Section& section, const std::string& key) {
    Windows windows;
    const toml::array* entries = section.array(key);
    for (std::size_t i = 0; entries != nullptr && i < entries->size(); ++i) {
        const toml::array* pair = (*entries)[i].as_array();
        if (pair == nullptr || pair->size() != 2 || !pair->get(0)->is_number() || !pair->get(1)->is_number()) {
            section.fail(key, "expected pairs [from, to] of times in seconds, such as [[0.01, 0.02], [0.05, inf]]");
        }
        const double from = *pair->get(0)->value<double>();
        const double to = *pair->get(1)->value<double>();
        if (!(from < to)) {
            section.fail(key, fmt::format("the time {} is not before {}", from, to));
        }
        windows.emplace_back(from, to);
    }
    return windows;
}

void read_generic(Section& root, const GenericMachine& machine, bool current_driven, WaveformReader& waveforms,
                  Scenario& scenario) {
    read_sources(root, machine, waveforms, scenario.generic);
    read_switches(root, machine, scenario.generic);
    read_motions(root, machine, waveforms, scenario.generic);
    std::optional<Section> generic = root.section("generic");
    read_source_types(generic ? &*generic : nullptr, machine, current_driven, scenario);
    if (!generic) {
        return;
    }
    for (const PortCall& port_call : port_calls) {
        read_port_calls(*generic, port_call, machine, scenario);
    }
    generic->end();
}

}  // namespace kzb::tool
