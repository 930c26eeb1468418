#include "models/environment.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "store/format/number_scan.h"

namespace kzb {

double environment_double(const char* name, double unset) {
    const char* const text = std::getenv(name);
    if (text == nullptr) {
        return unset;
    }
    std::string_view rest = text;
    double value = 0.0;
    scan_double(rest, value);
    return value;
}

int environment_int(const char* name, int unset) {
    const char* const text = std::getenv(name);
    if (text == nullptr) {
        return unset;
    }
    std::string_view rest = text;
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n\v\f\r"), rest.size()));
    if (rest.starts_with('+') && !rest.starts_with("+-")) {
        rest.remove_prefix(1);
    }
    int value = 0;
    // Out of range is the end of the range, not the low bits.
    if (std::from_chars(rest.data(), rest.data() + rest.size(), value).ec == std::errc::result_out_of_range) {
        value = rest.starts_with('-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    return value;
}

std::string environment_text(const char* name, const std::string& unset) {
    const char* const text = std::getenv(name);
    return text == nullptr ? unset : text;
}

}  // namespace kzb
