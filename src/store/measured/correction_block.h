// A table block of a correction file:
//
//   $KZ_Correction_Torque,2,3      head line: item, rows, columns
//   label,0,120,240                the values of axis 2
//   0,1.0,1.1,1.2                  a row: the value of axis 1, then the values of the table
//   100,1.0,1.0,1.0
#pragma once

#include <string>
#include <string_view>

#include "store/measured/text_lines.h"
#include "store/store.h"

namespace kzb {

inline constexpr std::string_view correction_category = "correction";
inline constexpr int corrupt_correction_file = 90019;  // error: a number is missing

// Reads the block behind the head line `head` into table `key` of the corrections, which is created anew. False when it
// could not be read whole: error 90019 for a missing number, no error for rows or columns below 1 ("The num of row is
// zero.\n" on standard error). The table then stays as far as it had come, without grids.
bool read_block(KZB_STORE& store, TextLines& lines, std::string_view head, const std::string& key);

}  // namespace kzb
