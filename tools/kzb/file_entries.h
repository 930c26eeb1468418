// The entries of a KZB file as they stand in it, one after the other: what the store no longer shows once it has merged
// entries of one name, or could not read what lies behind a faulty table.
#pragma once

#include <string>
#include <vector>

namespace kzb::tool {

struct FileEntry {
    std::string category;
    std::string key;
    std::string kind;          // "int", "double", "string", "table"
    bool placeholder = false;  // a table whose only node is missing behind its count
};

// All entries up to the first that cannot be told; empty for a file of the older layout.
std::vector<FileEntry> entries_of_file(const std::string& path, bool ascii);

}  // namespace kzb::tool
