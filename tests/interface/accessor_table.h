// What the calls answer, call by motor type: one row per call, whose columns are sets of motor types.
//
// A call tests the motor types `first`, then its value, then the types; a type outside `types` gets 180039. A new
// motor type joins every row by its bit; a new call is one row.
#pragma once

#include <vector>

#include "interface/machines.h"

namespace kzb_test {

inline constexpr int not_applicable = 180039;

// A setter of one number.
struct ValueCall {
    const char* name;
    int (*set)(double, KZB_CALC*);
    std::vector<double> good;
    std::vector<double> bad;
    int bad_status;
    Types types;
    Types first;

    int answer_to_good(Types type) const { return (types & type) != 0 ? 0 : not_applicable; }
    int answer_to_bad(Types type) const { return (first & type) != 0 ? not_applicable : bad_status; }
};

// Set and get of a temperature; off gives 180046 before all else, but for the getter's types `refused`.
struct TemperatureCall : ValueCall {
    double (*get)(KZB_CALC*);
    Types answers;  // types that the getter answers for
    Types refused;  // types that the getter refuses even before the switch is tested
    Types factors;  // types whose getter gives a factor in the quantity's place
};

// A call without arguments that gives a status or a number, on a machine at rest that has no options.
struct StatusCall {
    const char* name;
    int (*call)(KZB_CALC*);
    int answer;
    Types types;
};

// A result of one number: a value for `types`, `other` for the rest.
struct ResultCall {
    const char* name;
    double (*get)(KZB_CALC*);
    Types types;
    int other;
};

// Setters and getters of a phase: `out_of_range` outside the type's phases, `other` for types that have none.
struct PhaseSetter {
    const char* name;
    int (*set)(int, double, KZB_CALC*);
    int other;
};
struct PhaseGetter {
    const char* name;
    double (*get)(int, KZB_CALC*);
    Types types;
    int out_of_range;
    int other;
    Types zero_outside = no_type;  // types that answer 0.0 outside their phases
};

// An option by number.
struct NumberCall {
    const char* name;
    int (*set)(int, KZB_CALC*);
    std::vector<int> good;
    std::vector<int> bad;
    int bad_status;
    Types types;
    Types first;

    int answer_to_good(Types type) const { return (types & type) != 0 ? 0 : not_applicable; }
    int answer_to_bad(Types type) const { return (first & type) != 0 ? not_applicable : bad_status; }
};

extern const std::vector<ValueCall> value_calls;
extern const std::vector<TemperatureCall> temperature_calls;
extern const std::vector<StatusCall> plain_calls;
extern const std::vector<ResultCall> result_calls;
extern const std::vector<PhaseSetter> phase_setters;
extern const std::vector<PhaseGetter> phase_results;
extern const std::vector<NumberCall> number_calls;

}  // namespace kzb_test
