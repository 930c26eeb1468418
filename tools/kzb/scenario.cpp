#include "kzb/scenario.h"

#include <cmath>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/input_text.h"
#include "kzb/scenario_section.h"
#include "kzb/scenario_settings.h"
#include "kzb/scenario_waveform.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

constexpr double sample_limit = 1e10;

toml::table parse_file(const std::string& file) {
    const std::string text = read_input_text(file, "a scenario in TOML");
    try {
        return toml::parse(text, file);
    } catch (const toml::parse_error& e) {
        throw Failure(exit_file, fmt::format("{}:{}: not valid TOML: {}", file, e.source().begin.line,
                                             printable_line(e.description())));
    }
}

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
    const double lag_deg = 360.0 / static_cast<double>(machine.phases.size());
    const std::optional<Waveform> all = waveforms.read(*sources, "all");
    for (std::size_t k = 0; k < machine.phases.size(); ++k) {
        const std::optional<Waveform> own = waveforms.read(*sources, machine.phases[k]);
        if (!own && !all) {
            sources->missing(machine.phases[k]);
        }
        scenario.sources.push_back(own ? *own : all->shifted(lag_deg * static_cast<double>(k)));
    }
    sources->end();
}

std::pair<double, double> read_window(const Section& section, const std::string& phase, const toml::node& entry) {
    const toml::array* pair = entry.as_array();
    if (pair == nullptr || pair->size() != 2 || !pair->get(0)->is_number() || !pair->get(1)->is_number()) {
        section.fail(phase, "expected pairs [from, to] of times in seconds, such as [[0.01, 0.02], [0.05, inf]]");
    }
    const double from = *pair->get(0)->value<double>();
    const double to = *pair->get(1)->value<double>();
    if (!(from < to)) {
        section.fail(phase, fmt::format("the time {} is not before {}", from, to));
    }
    return {from, to};
}

void read_open_phases(Section& root, const Machine& machine, Scenario& scenario) {
    scenario.open_phase.resize(machine.phases.size());
    std::optional<Section> section = root.section("open_phases");
    if (!section) {
        return;
    }
    for (std::size_t k = 0; k < machine.phases.size(); ++k) {
        if (const toml::array* windows = section->array(machine.phases[k])) {
            for (const toml::node& entry : *windows) {
                scenario.open_phase[k].push_back(read_window(*section, machine.phases[k], entry));
            }
        }
    }
    section->end();
}

// Keys carry their unit: angles and speeds of rotary machines have an ending, those of linear ones are SI without.
struct MotionKeys {
    const char* position;
    const char* speed;
    const char* start_speed;
    const char* inertia;
    const char* free_type;
};

MotionKeys keys_of(const Machine& machine) {
    if (machine.linear) {
        return {"start_position", "speed", "start_speed", "mass", "mover"};
    }
    return {"start_angle_deg", "speed_rpm", "start_speed_rpm", "inertia", "rotor"};
}

void read_free_motion(Section& section, const MotionKeys& keys, const Machine& machine, WaveformReader& waveforms,
                      MotionData& motion) {
    motion.start_speed = section.number(keys.start_speed).value_or(0.0);
    motion.free.inertia = section.required(keys.inertia, section.positive(keys.inertia));
    motion.free.viscous = section.not_negative("viscous_friction").value_or(0.0);
    motion.free.coulomb = section.not_negative("coulomb_friction").value_or(0.0);
    motion.free.load = waveforms.read(section, "load").value_or(Waveform());
    if (machine.linear) {
        motion.free.lower = section.number("lower_stop");
        motion.free.upper = section.number("upper_stop");
        if (motion.free.lower && motion.free.upper && !(*motion.free.lower < *motion.free.upper)) {
            section.fail("upper_stop", "not above lower_stop");
        }
    }
}

void read_motion(Section& root, const Machine& machine, WaveformReader& waveforms, Scenario& scenario) {
    std::optional<Section> section = root.section("mechanics");
    if (!section) {
        return;
    }
    const MotionKeys keys = keys_of(machine);
    MotionData& motion = scenario.motion;
    const auto type =
        section->required("type", section->choice("type", {"locked", "speed", "positions", keys.free_type}));
    motion.kind = static_cast<Motion>(type);
    motion.start = section->number(keys.position).value_or(0.0);
    switch (motion.kind) {
        case Motion::locked:
            break;
        case Motion::speed:
            motion.speed = section->required(keys.speed, waveforms.read(*section, keys.speed));
            break;
        case Motion::positions:
            motion.position = Waveform(waveforms.points(*section));
            break;
        case Motion::free:
            read_free_motion(*section, keys, machine, waveforms, motion);
            break;
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
    const toml::table document = parse_file(file);
    Section root(document, "", file);
    Scenario scenario;
    scenario.file = file;
    scenario.current_driven = root.required("drive", root.choice("drive", {"voltage", "current"})) == 1;
    read_time(root, scenario);
    WaveformReader waveforms(file, scenario.step);
    read_sources(root, machine, waveforms, scenario);
    read_open_phases(root, machine, scenario);
    read_motion(root, machine, waveforms, scenario);
    read_settings(root, machine, scenario);
    read_record(root, scenario);
    root.end();
    return scenario;
}

}  // namespace kzb::tool
