// The KZB file: reading in two stages, writing, and the table bodies in between.
//
// Stage one, read_model_file, takes in all categories and leaves a placeholder for each table that remembers where its
// body lies. Stage two, read_tables, fetches the bodies of the tables that the selected application needs.
#pragma once

#include <string>

#include "store/format/file_place.h"

struct KZB_STORE;

namespace kzb {

// Reads the file at `path` into the store: 0, or 1 with the cause in the store's error. What was read stays.
int read_model_file(KZB_STORE& store, const char* path);

// Fetches the bodies of the tables of the selected application (application_loads) from the store's input file. Throws
// bad_alloc where one of them found no memory, with the others loaded.
void read_tables(KZB_STORE& store);

// Writes to output_path in the form of output_type; nothing where output_type is neither word. Silent on failure.
void write_model_file(const KZB_STORE& store);

// The writers of the two forms. False when the file could not be written whole, errno tells why; what stood there
// before is then left as it was.
bool write_binary(const KZB_STORE& store, const std::string& path, Writing writing = Writing::beside);
bool write_ascii(const KZB_STORE& store, const std::string& path, Writing writing = Writing::beside);

}  // namespace kzb
