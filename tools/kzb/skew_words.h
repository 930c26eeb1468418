// The types of a skew as users write them, and as the library numbers them.
#pragma once

#include <array>
#include <string_view>

namespace kzb::tool {

inline constexpr std::array<std::string_view, 3> skew_words = {"none", "continuous", "stepped"};
inline constexpr int skew_none = 0;
inline constexpr int skew_stepped = 3;
inline constexpr std::array<int, 3> skew_types = {skew_none, 1, skew_stepped};  // one per word

}  // namespace kzb::tool
