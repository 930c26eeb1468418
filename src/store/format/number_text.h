// Numbers of the ascii form, read and written alike under every locale of the host.
//
// Reading follows the conversions "%d" and "%lf": white space before the number is skipped, the longest text that is a
// number counts, what follows is left. Hexadecimal fractions, infinities and nan are numbers.
#pragma once

#include <string>
#include <string_view>

namespace kzb {

// Takes an int, or a double, from the front of `text`; false, with `value` as it was, when there is none. An int beyond
// the range of long is held at its end, then cut to 32 bits.
bool scan_int(std::string_view& text, int& value);
bool scan_double(std::string_view& text, double& value);

// "%20.10e"
void append_double(std::string& out, double value);
// "%d", or with `width` the same padded on the left.
void append_int(std::string& out, int value, std::size_t width = 0);

}  // namespace kzb
