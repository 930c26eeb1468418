#include "kzb/scenario_supply.h"

#include "fmt/format.h"

namespace kzb::tool {

namespace {

SwitchingData read_switching(Section section, const Machine& machine, WaveformReader& waveforms) {
    SwitchingData data;
    data.voltage = section.required("voltage", waveforms.read(section, "voltage"));
    data.turn_on = section.required("turn_on_deg", section.number("turn_on_deg"));
    data.turn_off = section.required("turn_off_deg", section.number("turn_off_deg"));
    const std::optional<double> period = section.positive("period_deg");
    if (!period && machine.number_of_poles < 1) {
        section.missing("period_deg");
    }
    data.period = period ? *period : 360.0 / machine.number_of_poles;
    if (!(data.turn_off > data.turn_on) || !(data.turn_off - data.turn_on < data.period)) {
        section.fail("turn_off_deg", fmt::format("{} is not above turn_on_deg by less than the period of {} degrees",
                                                 data.turn_off, data.period));
    }
    data.freewheel = section.choice("after_turn_off", {"negative", "freewheel"}).value_or(0) == 1;
    data.current_limit = section.positive("current_limit").value_or(0.0);
    data.current_band = section.positive("current_band").value_or(0.05 * data.current_limit);
    if (data.current_limit > 0.0 && !(data.current_band < data.current_limit)) {
        section.fail("current_band",
                     fmt::format("{} is not below the limit {}", data.current_band, data.current_limit));
    }
    data.limit_freewheel = section.choice("above_limit", {"freewheel", "negative"}).value_or(0) == 0;
    section.end();
    return data;
}

StepData read_steps(Section section, WaveformReader& waveforms) {
    StepData data;
    data.mode = static_cast<StepMode>(section.required("mode", section.choice("mode", {"full", "half", "wave"})));
    data.voltage = section.required("voltage", waveforms.read(section, "voltage"));
    data.rate = section.required("rate", section.not_negative("rate"));
    data.start = section.number("start").value_or(0.0);
    data.count = static_cast<std::uint64_t>(section.integer("count", 1).value_or(0));
    data.backward = section.choice("direction", {"forward", "backward"}).value_or(0) == 1;
    data.bipolar = section.choice("winding", {"unipolar", "bipolar"}).value_or(0) == 1;
    data.off_open = section.choice("off", {"open", "short"}).value_or(data.bipolar ? 1 : 0) == 0;
    section.end();
    return data;
}

}  // namespace

SupplyData read_supply(Section& root, const Machine& machine, bool current_driven, WaveformReader& waveforms) {
    const std::optional<Section> switching = root.section("switching");
    const std::optional<Section> steps = root.section("steps");
    for (const char* key : {"switching", "steps"}) {
        if (!root.has(key)) {
            continue;
        }
        if (root.has("sources") || (switching && steps)) {
            root.fail(key, "expected only one of sources, switching and steps");
        }
        if (current_driven) {
            root.fail(key, "expected drive = \"voltage\" with it");
        }
    }
    if (switching) {
        if (!machine.is_reluctance()) {
            root.fail("switching", "this machine is no switched reluctance machine, expected sources");
        }
        return read_switching(*switching, machine, waveforms);
    }
    if (steps) {
        if (!machine.is_stepper()) {
            root.fail("steps", "this machine is no stepping motor, expected sources");
        }
        return read_steps(*steps, waveforms);
    }
    return {};
}

std::unique_ptr<Supply> make_supply(const SupplyData& data, const Machine& machine) {
    if (const auto* switching = std::get_if<SwitchingData>(&data)) {
        return std::make_unique<AngleSwitching>(*switching, machine.phases.size());
    }
    if (const auto* steps = std::get_if<StepData>(&data)) {
        return std::make_unique<StepSequence>(*steps);
    }
    return nullptr;
}

}  // namespace kzb::tool
