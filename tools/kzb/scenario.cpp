#include "kzb/scenario.h"

#include <cmath>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/scenario_generic.h"
#include "kzb/scenario_motion.h"
#include "kzb/scenario_section.h"
#include "kzb/scenario_settings.h"
#include "kzb/scenario_waveform.h"
#include "kzb/toml_document.h"

namespace kzb::tool {

namespace {

constexpr double sample_limit = 1e10;

void read_time(Section& root, Scenario& scenario) {
    std::optional<Section> time = root.section("time");
    if (!time) {
        root.missing("time");
    }
    scenario.step = time->required("step", time->positive("step"));
    const double stop = time->required("stop", time->not_negative("stop"));
    scenario.start = time->not_negative("start").value_or(0.0);
    if (stop < scenario.start) {
        time->fail("stop", fmt::format("{} is before the start {}", stop, scenario.start));
    }
    // A stop that is a whole number of steps away but for rounding still counts as reached.
    const double steps = (stop - scenario.start) / scenario.step * (1.0 + 1e-12) + 1e-9;
    if (!(steps < sample_limit)) {
        time->fail("step", fmt::format("{:.3g} samples, expected at most {:.0e}", steps, sample_limit));
    }
    scenario.samples = static_cast<std::uint64_t>(std::floor(steps)) + 1;
    time->end();
}

void read_sources(Section& root, const Machine& machine, WaveformReader& waveforms, Scenario& scenario) {
    std::optional<Section> sources = root.section("sources");
    if (!sources) {
        root.missing("sources");
    }
    const std::size_t rotating = machine.rotating_phases();
    const double lag_deg = 360.0 / static_cast<double>(rotating);
    const std::optional<Waveform> all = waveforms.read(*sources, "all");
    for (std::size_t k = 0; k < machine.phases.size(); ++k) {
        const std::optional<Waveform> own = waveforms.read(*sources, machine.phases[k]);
        if (!own && (!all || k >= rotating)) {
            sources->missing(machine.phases[k]);
        }
        scenario.sources.push_back(own ? *own : all->shifted(lag_deg * static_cast<double>(k)));
    }
    sources->end();
}

void read_open_phases(Section& root, const Machine& machine, Scenario& scenario) {
    scenario.open_phase.resize(machine.phases.size());
    std::optional<Section> section = root.section("open_phases");
    if (!section) {
        return;
    }
    for (std::size_t k = 0; k < machine.phases.size(); ++k) {
        scenario.open_phase[k] = read_windows(*section, machine.phases[k]);
    }
    section->end();
}

void read_motion(Section& root, const Machine& machine, WaveformReader& waveforms, Scenario& scenario) {
    std::optional<Section> section = root.section("mechanics");
    if (!section) {
        return;
    }
    MotionData& motion = scenario.motion;
    if (machine.is_induction() && section->text("type") == "slip") {
        motion.kind = Motion::speed;
        motion.start = section->number("start_angle_deg").value_or(0.0);
        motion.speed = Waveform(Constant{speed_of_slip(*section, machine)});
    } else {
        read_motion_keys(*section, machine.linear, waveforms, motion);
    }
    section->end();
}

void read_record(Section& root, Scenario& scenario) {
    std::optional<Section> section = root.section("record");
    if (!section) {
        return;
    }
    if (const toml::array* outputs = section->array("outputs")) {
        for (const toml::node& entry : *outputs) {
            if (!entry.is_string()) {
                section->fail("outputs", "expected names of outputs in quotes");
            }
            scenario.record.push_back({*entry.value<std::string>(), section->place("outputs")});
        }
        if (outputs->empty()) {
            section->fail("outputs", "empty, expected names of outputs; leave the key out for all");
        }
    }
    scenario.record_every = static_cast<std::uint64_t>(section->integer("every", 1).value_or(1));
    scenario.record_from = section->not_negative("from").value_or(0.0);
    const double last = scenario.time_of((scenario.samples - 1) / scenario.record_every * scenario.record_every);
    if (scenario.record_from > last) {
        section->fail("from", fmt::format("{} is after the last sample that could be recorded, at {} s",
                                          scenario.record_from, last));
    }
    section->end();
}

}  // namespace

Scenario read_scenario(const std::string& file, const Machine& machine) {
    const toml::table document = read_toml(file, "a scenario in TOML");
    Section root(document, "", file);
    Scenario scenario;
    scenario.file = file;
    const auto drive = root.choice("drive", {"voltage", "current"});
    if (!machine.generic) {
        scenario.current_driven = root.required("drive", drive) == 1;
    }
    read_time(root, scenario);
    WaveformReader waveforms(file, scenario.step);
    if (machine.generic) {
        read_generic(root, *machine.generic, drive.value_or(0) == 1, waveforms, scenario);
        read_settings(root, machine, scenario);
        read_record(root, scenario);
        root.end();
        return scenario;
    }
    scenario.supply = read_supply(root, machine, scenario.current_driven, waveforms);
    if (std::holds_alternative<std::monostate>(scenario.supply)) {
        read_sources(root, machine, waveforms, scenario);
    }
    read_open_phases(root, machine, scenario);
    read_motion(root, machine, waveforms, scenario);
    scenario.slip = read_slip(root, machine, waveforms);
    read_settings(root, machine, scenario);
    read_record(root, scenario);
    root.end();
    return scenario;
}

}  // namespace kzb::tool
