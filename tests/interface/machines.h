// The motor types that the calculator serves, each with a small whole file: tables of constants, no options.
#pragma once

#include <vector>

#include "interface/model_file.h"

namespace kzb_test {

// Motor types as bits, so that a row of a table can name a set.
using Types = unsigned;
inline constexpr Types rotary_pm = 1U << 0;    // 10000
inline constexpr Types linear_pm = 1U << 1;    // 10005
inline constexpr Types stepping = 1U << 2;     // 10003
inline constexpr Types solenoid = 1U << 3;     // 10004
inline constexpr Types induction = 1U << 4;    // 10006
inline constexpr Types wound_field = 1U << 5;  // 10007
inline constexpr Types generic = 1U << 6;      // 10008
inline constexpr Types reluctance = 1U << 7;   // 10010, 10011, 10012
inline constexpr Types permanent_magnet = rotary_pm | linear_pm;
inline constexpr Types no_type = 0;
inline constexpr Types every_type = ~no_type;

struct Machine {
    int code;
    Types type;
    int phases;
    void (*fill)(ModelFile& file);
};

extern const std::vector<Machine> machines;

}  // namespace kzb_test
