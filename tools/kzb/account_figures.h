// What the accounts of all builds tell alike: the size of the file, an axis of its tables, a share.
#pragma once

#include <cstdint>
#include <string>

#include "kzb/build_grids.h"
#include "kzb/json.h"

namespace kzb::tool {

// Bytes; 0 when the file cannot be asked.
std::uintmax_t size_of_file(const std::string& path);

Json axis_json(const TableAxis& axis);

// 0 of nothing.
double percent_of(double part, double whole);

}  // namespace kzb::tool
