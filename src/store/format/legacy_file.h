// Files older than the head "$DORN-KZ".
#pragma once

#include "store/format/file_source.h"

struct KZB_STORE;

namespace kzb {

// Reads an old file, opened and standing at its first byte, in the form that the store's input_type names. Result 0,
// or 1 with the cause in the store's error.
int read_legacy_file(KZB_STORE& store, FileSource& source);

}  // namespace kzb
