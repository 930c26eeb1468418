// Small whole models, the files beside them, and what a store holds as one text.
#pragma once

#include <string>

#include "KZBCalculator/kzb_store.h"
#include "faults/calls.h"
#include "interface/model_file.h"

namespace kzb_test {

// An empty folder that goes away with its object; its name ends in a slash.
class Folder {
  public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string operator/(const std::string& name) const { return path_ + name; }
    std::vector<std::string> names() const;  // of all files, sorted

  private:
    std::string path_;
};

std::string read_file(const std::string& path);
void write_file(const std::string& path, const std::string& content);

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
