// What a run of the permanent-magnet machine has switched on, and the runs that are compared.
#pragma once

#include <ostream>
#include <vector>

#include "bench/reference/sample_machine.h"

namespace kzb_bench_test {

using kzb_reference::SampleMachine;

struct Scenario {
    const char* name;
    SampleMachine machine{};
    int interpolation = 0;
    int kind = -1;  // -1: as the file's accuracy says
    bool iron_loss = false;
    bool user_copper_loss = false;
    bool temperatures = false;
    bool corrections_by_call = false;
    bool open_phases = false;
    bool irregular = true;  // step widths
    bool repeated = true;   // Execute calls per sample
    bool initial_values = false;
    double voltage = 60.0;  // peak
    int samples = 300;
    int calc_mode = 1;
};

inline void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

std::vector<Scenario> scenarios();

}  // namespace kzb_bench_test
