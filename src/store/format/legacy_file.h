// Files older than the head "$DORN-KZ": sections marked by a star and a name.
//
//   *version   *control   *parameter   *settings   *table (any number)
//
// One pass reads everything: every table is in memory at its end, in the category and under the key of the present
// layout (legacy_mapping.h). What was read before a fault stays in the store.
#pragma once

#include "store/format/file_source.h"

struct KZB_STORE;

namespace kzb {

// Reads an old file, opened and standing at its first byte, in the form that the store's input_type names. Result 0,
// or 1: 90002 the source is closed, 90003 too many entries in `control`, 90004 no section could be read on; a section
// that cannot be true is told through perror and leaves no code.
int read_legacy_file(KZB_STORE& store, FileSource& source);

// The two forms.
int ReadCategoryParameterByBinaryModeForOldFileFormat(KZB_STORE& store, FileSource& source);
int ReadCategoryParameterByAsciiModeForOldFileFormat(KZB_STORE& store, FileSource& source);

inline constexpr int legacy_control_limit = 1000;  // entries of `control`; one more is error 90003

}  // namespace kzb
