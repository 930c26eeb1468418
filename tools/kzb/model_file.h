// A KZB file opened through the store, with the bodies of all its tables.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kzb/store_pointer.h"
#include "store/store.h"

namespace kzb::tool {

struct ModelFile {
    StorePointer store;
    bool has_head = false;            // false: a file of the older layout
    std::vector<std::string> notes;   // what the library said that means no loss
    std::vector<std::string> damage;  // what could not be read; empty for a sound file
};

// Reads the file and every table body. Failure(exit_file) when it cannot be read or is no KZB file.
ModelFile read_model(const std::string& path);

// "PMSM", "IM" and so on; "unknown" for any other number.
std::string_view motor_name(int motor_type);

}  // namespace kzb::tool
