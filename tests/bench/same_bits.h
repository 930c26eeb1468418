// Equality of doubles to the last bit; not-a-numbers count as equal whatever their payload.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

inline bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}
