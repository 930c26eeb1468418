// The start of a run: what a model's first step takes as accepted, and the counter that tells it from later steps.
#pragma once

#include <cstddef>

namespace kzb {

// The counter of accepted steps ends here, far beyond its meaning.
inline constexpr int most_steps = 0x7fffffff;

inline void count_step(int& step_count) {
    if (step_count < most_steps) {
        ++step_count;
    }
}

// Currents and time that nobody set are 0.0 before the first step.
template <class Currents, class Flags>
void forget_unset_start(const Flags& current_set, Currents& current_previous, bool time_set, double& time_previous) {
    for (std::size_t k = 0; k < current_previous.size(); ++k) {
        if (!current_set[k]) {
            current_previous[k] = 0.0;
        }
    }
    if (!time_set) {
        time_previous = 0.0;
    }
}

}  // namespace kzb
