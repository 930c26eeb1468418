// A whole TOML file; what is no TOML ends the command with the place of the fault.
#pragma once

#include <string>

#include "kzb/toml.h"

namespace kzb::tool {

// The text of the file `name`. Failure(exit_file).
toml::table parse_toml(const std::string& text, const std::string& name);

// Reads the file, which is to be `what` ("a scenario in TOML"). Failure(exit_file).
toml::table read_toml(const std::string& file, const char* what);

}  // namespace kzb::tool
