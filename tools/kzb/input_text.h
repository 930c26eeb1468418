// Text files that a user names: scenarios and CSV tables.
#pragma once

#include <string>
#include <string_view>

namespace kzb::tool {

// The whole text. Failure(exit_file) tells what keeps it from being read and what was `expected` ("a CSV file"). Pipes
// are read; devices are refused, since some of them never end.
std::string read_input_text(const std::string& path, std::string_view expected);

}  // namespace kzb::tool
