// The options of the library that a scenario sets by name: one table, from which the keys are read, put in the order
// in which the library wants the calls, and checked against the document.
//
// A further machine needs further rows and nothing else: whether a call suits the motor type is the library's to say.
#pragma once

#include <string_view>
#include <variant>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "kzb/machine.h"

namespace kzb::tool {

struct NumberCall {
    int (*call)(double, KZB_CALC*);
};
// true calls, false does not.
struct SwitchCall {
    int (*call)(KZB_CALC*);
    bool when_absent = false;  // also called when the section stands there without the key
};
struct IntegerCall {
    int (*call)(int, KZB_CALC*);
};
// One of `words`; the call takes its place among them.
struct WordCall {
    int (*call)(int, KZB_CALC*);
    std::vector<std::string_view> words;
};
// A table with a number for each phase, by its name.
struct PhaseCall {
    int (*call)(int, double, KZB_CALC*);
};
// An array of numbers; the call takes the place of each, from 1.
struct ListCall {
    int (*call)(int, double, KZB_CALC*);
};

// Before or after kzbcalcSetData. Within a stage the calls go in the order of the table: what switches a quantity on
// stands above it.
enum class Stage { before_data, after_data };
enum class Travel { any, rotary, linear };

struct ScenarioOption {
    const char* section;
    const char* key;
    const char* unit;  // as the document writes it; empty for a plain number or a word
    Stage stage;
    const char* call_name;
    std::variant<NumberCall, SwitchCall, IntegerCall, WordCall, PhaseCall, ListCall> call;
    const char* plain_key = nullptr;  // the key without its unit, where that is taken too
    Travel travel = Travel::any;      // machines that have the key

    bool suits(const Machine& machine) const {
        return travel == Travel::any || machine.linear == (travel == Travel::linear);
    }
};

const std::vector<ScenarioOption>& scenario_options();

}  // namespace kzb::tool
