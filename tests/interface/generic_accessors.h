// The calls of the generic model with an id or a name, one row per call.
//
// A call refuses another motor type first, then the value, then the id; that of the coil temperature refuses before all
// else while temperature correction is off.
#pragma once

#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"

namespace kzb_test {

// What a setter refuses.
enum class Refused { nothing, below_zero, zero_and_below };

struct GenericSetter {
    const char* name;
    int (*set)(int id, double value, KZB_CALC* handle);
    int count;  // ids of the small machine
    int id_status;
    Refused refused;
    int value_status;
};

struct GenericGetter {
    const char* name;
    double (*get)(int id, KZB_CALC* handle);
    int count;
    int id_status;
};

struct GenericLookup {
    const char* name;
    int (*find)(const char* name, KZB_CALC* handle);
    std::vector<std::string> names;  // of the ids 1, 2 ..
    int name_status;
};

extern const std::vector<GenericSetter> generic_setters;
extern const std::vector<GenericGetter> generic_getters;
extern const std::vector<GenericLookup> generic_lookups;

// The calls that take whole arrays, and those that count and label the ports, each with nothing to give: null arrays of
// length 0.
struct GenericArrayCall {
    const char* name;
    int (*call)(KZB_CALC* handle);
};
extern const std::vector<GenericArrayCall> generic_array_calls;

}  // namespace kzb_test
