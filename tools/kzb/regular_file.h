// Files that the library opens by name: looked at before, so that no pipe, device or folder reaches it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kzb::tool {

// The first `count` bytes of the file, fewer when it is shorter. Failure(exit_file) for what cannot be opened or is no
// regular file, with what was `expected` ("a KZB file").
std::string start_of_regular_file(const std::string& path, std::size_t count, std::string_view expected);

inline void require_regular_file(const std::string& path, std::string_view expected) {
    start_of_regular_file(path, 0, expected);
}

}  // namespace kzb::tool
