// Numbers of the ascii form, read alike under every locale of the host.
//
// Reading follows the conversions "%d" and "%lf" of the C library: white space before the number is skipped, characters
// are taken as long as they can go on a number, what follows is left. Hexadecimal fractions, "inf", "infinity" and
// "nan" are numbers. An exponent without digits is taken too and counts for nothing; "0x" or "infi" that goes on as no
// number is none at all.
#pragma once

#include <string_view>

namespace kzb {

// Takes an int, or a double, from the front of `text`; false, with `value` as it was, when there is none. An int beyond
// the range of long is held at its end, then cut to 32 bits.
bool scan_int(std::string_view& text, int& value);
bool scan_double(std::string_view& text, double& value);

}  // namespace kzb
