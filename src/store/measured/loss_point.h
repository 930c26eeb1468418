// One line of a loss file as numbers: the coordinates of a point and, last, the value there.
#pragma once

#include <string_view>
#include <vector>

namespace kzb {

// Fields between blanks, commas and line feeds; empty ones do not count. False when one of them is no number. A line
// without fields gives no numbers.
bool read_loss_point(std::string_view line, std::vector<double>& numbers);

}  // namespace kzb
