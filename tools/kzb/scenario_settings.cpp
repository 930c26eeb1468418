#include "kzb/scenario_settings.h"

#include <algorithm>

#include "fmt/format.h"
#include "kzb/scenario_options.h"
#include "kzb/skew_words.h"

namespace kzb::tool {

namespace {

using Calls = std::vector<ModelCall>;

// Reads one option into calls, by its kind.
struct OptionReader {
    Section& section;
    const ScenarioOption& option;
    std::string key;  // as the scenario spells it
    std::string place_of_section;
    const Machine& machine;
    Calls& calls;

    void add(const std::string& place, std::function<int(KZB_CALC*)> call) const {
        calls.push_back({option.call_name, place, std::move(call)});
    }
    void operator()(const NumberCall& number) const {
        if (const std::optional<double> value = section.number(key)) {
            add(section.place(key), [call = number.call, v = *value](KZB_CALC* handle) { return call(v, handle); });
        }
    }
    void operator()(const SwitchCall& to_switch) const {
        const std::optional<bool> on = section.flag(key);
        if (on.value_or(to_switch.when_absent)) {
            add(on ? section.place(key) : place_of_section, to_switch.call);
        }
    }
    void operator()(const IntegerCall& integer) const {
        if (const std::optional<int> value = section.integer(key, 0)) {
            add(section.place(key), [call = integer.call, v = *value](KZB_CALC* handle) { return call(v, handle); });
        }
    }
    void operator()(const WordCall& word) const {
        if (const std::optional<std::size_t> at = section.choice(key, word.words)) {
            add(section.place(key),
                [call = word.call, v = static_cast<int>(*at)](KZB_CALC* handle) { return call(v, handle); });
        }
    }
    void operator()(const PhaseCall& phases) const {
        std::optional<Section> inner = section.section(key);
        if (!inner) {
            return;
        }
        for (const std::string& name : machine.phases) {
            if (const std::optional<double> value = inner->number(name)) {
                add_indexed(inner->place(name), phases.call, *machine.phase(name), *value);
            }
        }
        inner->end();
    }
    void operator()(const ListCall& list) const {
        const std::vector<double> values = section.numbers(key);
        for (std::size_t i = 0; i < values.size(); ++i) {
            add_indexed(fmt::format("{}[{}]", section.place(key), i + 1), list.call, static_cast<int>(i) + 1,
                        values[i]);
        }
    }
    void add_indexed(const std::string& place, int (*call)(int, double, KZB_CALC*), int index, double value) const {
        add(place, [=](KZB_CALC* handle) { return call(index, value, handle); });
    }
};

// The key with its unit, or without it; both name the same quantity.
std::string spelling_of(Section& section, const ScenarioOption& option) {
    if (option.plain_key == nullptr || !section.has(option.plain_key)) {
        return option.key;
    }
    if (section.has(option.key)) {
        section.fail(option.plain_key, fmt::format("given as {} too, expected one of the two", option.key));
    }
    return option.plain_key;
}

void read_section(Section& root, const char* name, const Machine& machine, Scenario& scenario) {
    std::optional<Section> section = root.section(name);
    if (!section) {
        return;
    }
    for (const ScenarioOption& option : scenario_options()) {
        if (option.section == std::string_view(name) && option.suits(machine)) {
            Calls& calls = option.stage == Stage::before_data ? scenario.before_data : scenario.after_data;
            std::visit(OptionReader{*section, option, spelling_of(*section, option), root.place(name), machine, calls},
                       option.call);
        }
    }
    section->end();
}

SkewSide read_skew_side(Section& skew, const char* key) {
    std::optional<Section> section = skew.section(key);
    SkewSide side;
    if (!section) {
        return side;
    }
    side.type = skew_types[section->required("type", section->choice("type", skew_words))];
    if (side.type != skew_none) {
        side.angle_deg = section->required("angle_deg", section->number("angle_deg"));
    }
    if (side.type == skew_stepped) {
        side.steps = section->required("steps", section->integer("steps", 2));
    }
    section->end();
    return side;
}

// Six numbers of two sides that go to one call, and so no row of the table.
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

}  // namespace

void read_settings(Section& root, const Machine& machine, Scenario& scenario) {
    std::vector<std::string_view> done;
    for (const ScenarioOption& option : scenario_options()) {
        if (std::find(done.begin(), done.end(), option.section) == done.end()) {
            done.emplace_back(option.section);
            read_section(root, option.section, machine, scenario);
        }
    }
    read_skew(root, scenario.before_data);
}

}  // namespace kzb::tool
