// What a run of the induction machine has switched on, and the runs that are compared.
#pragma once

#include <ostream>
#include <vector>

#include "bench/reference/im_machine.h"

namespace kzb_bench_test {

struct ImScenario {
    const char* name;
    kzb_reference::SampleInduction machine{};
    int calc_mode = 1;
    int interpolation = 0;
    const char* torque_type = nullptr;  // as the environment has it
    bool old_ironloss = false;
    bool iron_loss = false;
    bool user_copper_loss = false;
    bool temperatures = false;
    bool initial_values = false;
    bool own_resistances = false;
    bool moving_slip = false;
    bool irregular = false;    // step widths, among them 0
    bool repeated = false;     // Execute or GetTorque calls per sample
    double amplitude = 200.0;  // V, or A over ten
    int samples = 400;
};

inline void PrintTo(const ImScenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

std::vector<ImScenario> im_scenarios();

}  // namespace kzb_bench_test
