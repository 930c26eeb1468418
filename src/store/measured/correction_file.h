// Correction files: measured factors that scale the tables of a permanent-magnet machine.
#pragma once

#include "store/store.h"

namespace kzb {

// Reads the file at `path` into the category `correction` and the leakage inductances of `parameter`. 0, or 1 with the
// cause in the store's error; what was read before a failure stays.
int read_correction_file(KZB_STORE& store, const char* path);

}  // namespace kzb
