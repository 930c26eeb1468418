// How the inner iterations of a model's steps went, since the model was opened.
#pragma once

#include <algorithm>

namespace kzb {

struct PassCounts {
    long long solved_steps = 0;
    long long passes = 0;
    long long unconverged_steps = 0;
    int most_passes = 0;  // of one step

    void add(int step_passes, bool converged) {
        ++solved_steps;
        passes += step_passes;
        unconverged_steps += converged ? 0 : 1;
        most_passes = std::max(most_passes, step_passes);
    }
};

}  // namespace kzb
