// Small whole models, the files beside them, and what a store holds as one text.
#pragma once

#include <string>

#include "KZBCalculator/kzb_store.h"
#include "faults/calls.h"
#include "interface/model_file.h"
#include "support/files.h"

namespace kzb_test {

// Permanent-magnet machine that offers every application of its type, with the transformed tables, losses and a title.
void fill_rotary(ModelFile& file);
// The generic machine with user outputs and an iron loss table.
void fill_generic(ModelFile& file);

// The texts that store calls read, in `folder`, beside the model `path`.
CallFiles write_call_files(const Folder& folder, const std::string& model);

// A store with everything in the file at `path`.
KZB_STORE* loaded_store(const std::string& path);

// Every name, value, node and flag of a store, bit for bit.
std::string content_of(KZB_STORE* store);

}  // namespace kzb_test
