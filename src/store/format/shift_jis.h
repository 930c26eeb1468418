// Text of the file, which is UTF-8, as the store holds it: Shift_JIS.
#pragma once

#include <string>

namespace kzb {

// The text cut at its first NUL and converted. Text that cannot be converted whole is kept as it is, with a message on
// standard output.
std::string stored_text(std::string text);

}  // namespace kzb
