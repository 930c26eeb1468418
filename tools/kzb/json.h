// JSON for programs that read the command line: keys in the order of insertion, always valid UTF-8.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace kzb::tool {

using Json = nlohmann::ordered_json;

// One document, indented, with a line end. A number that is not finite appears as null.
std::string json_text(const Json& document);

}  // namespace kzb::tool
