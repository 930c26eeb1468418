// Tables filled by formula over given axes, for the machines of the benchmarks.
#pragma once

#include <functional>
#include <vector>

#include "bench/reference/store.h"

namespace kzb_reference {

using Axis = std::vector<double>;
using Formula = std::function<double(const double*)>;

inline Axis evenly(double first, double last, int nodes) {
    Axis axis;
    for (int i = 0; i < nodes; ++i) {
        axis.push_back(first + (last - first) * i / (nodes - 1));
    }
    return axis;
}

// A table over `axes`, cyclic where `cyclic` says 1, its values those of `formula` at the nodes.
void fill(Store& store, const char* category, const char* key, const std::vector<Axis>& axes,
          const std::vector<int>& cyclic, const Formula& formula);

}  // namespace kzb_reference
