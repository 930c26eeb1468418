// The types of a skew as users write them, and as the library numbers them; what one end of the stack has.
#pragma once

#include <array>
#include <string_view>

namespace kzb::tool {

inline constexpr std::array<std::string_view, 3> skew_words = {"none", "continuous", "stepped"};
inline constexpr int skew_none = 0;
inline constexpr int skew_stepped = 3;
inline constexpr std::array<int, 3> skew_types = {skew_none, 1, skew_stepped};  // one per word

struct SkewSide {
    int type = skew_none;
    double angle_deg = 0.0;
    int steps = 0;
};

}  // namespace kzb::tool
