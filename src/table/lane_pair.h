// Two doubles that go through the same operations side by side. Every operation rounds each lane as it would alone.
#pragma once

#include <cstddef>

namespace kzb {

using LanePair = double __attribute__((vector_size(16)));

inline LanePair load_pair(const double* first, const double* second) {
    return LanePair{*first, *second};
}

}  // namespace kzb
