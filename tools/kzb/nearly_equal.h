// Equality of lengths that a file gives with few digits: to a millionth of `b`.
#pragma once

#include <cmath>

namespace kzb::tool {

inline bool nearly_equal(double a, double b) {
    return std::fabs(a - b) < 1e-6 * std::fabs(b);
}

}  // namespace kzb::tool
