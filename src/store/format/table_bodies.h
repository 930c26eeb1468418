// Second stage of reading: the body of one table in each form of the file.
#pragma once

#include "store/format/body_memory.h"
#include "store/format/file_source.h"
#include "table/table.h"

namespace kzb {

// Reads the body at table.file_position and makes the table a loaded one. Counts beyond the table's shape are read
// over; a body that cannot be true leaves the table as far as it had come, or as the placeholder it was. False when the
// terminator behind the body is missing ("this file is broken\n"). Where memory runs out ("memory allocation error")
// the table stays a placeholder that a later call may load.
bool load_binary_table(KZB_TABLE& table, FileSource& source, BodyMemory& memory);
bool load_ascii_table(KZB_TABLE& table, FileSource& source, BodyMemory& memory);

}  // namespace kzb
