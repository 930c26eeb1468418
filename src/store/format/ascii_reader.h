// First stage of reading the ascii form: all categories, each table as a placeholder.
#pragma once

#include "store/format/file_source.h"

struct KZB_STORE;

namespace kzb {

// `source` stands at the first byte of the file. 0, or 1; what was read stays.
int read_ascii(KZB_STORE& store, FileSource& source);

}  // namespace kzb
