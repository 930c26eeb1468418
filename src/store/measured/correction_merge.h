// A correction table that is given once more: the factors compound, on the grid of the later table.
//
//   K(a, b) = new(a, b) * old(a, b),   old looked up by the scheme Linear, 1.0 outside its range
#pragma once

#include <string>
#include <string_view>

#include "store/measured/text_lines.h"
#include "store/store.h"

namespace kzb {

// Reads the block behind `head` and merges it into table `key` of the corrections, which exists. A block that cannot be
// read whole leaves that table as it is, and its own part under the name "<key>_dummy"; error 90019 is printed then.
void merge_block(KZB_STORE& store, TextLines& lines, std::string_view head, const std::string& key);

}  // namespace kzb
