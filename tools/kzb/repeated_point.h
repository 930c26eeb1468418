// Loss tables with a point of their grid twice: as many lines as the grid has points, and another point without a
// value.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kzb::tool {

struct RepeatedPoint {
    std::size_t line;   // from 1
    std::size_t first;  // the line that holds the same point
};

// Of a file that the library took in as a loss table: the first line whose coordinates stand in an earlier one.
std::optional<RepeatedPoint> repeated_point(const std::string& path);

}  // namespace kzb::tool
