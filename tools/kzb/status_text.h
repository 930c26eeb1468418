// What a status of the calculator calls means.
#pragma once

#include <string_view>

namespace kzb::tool {

// "unknown status" for a number that is none.
std::string_view status_text(int status);

}  // namespace kzb::tool
