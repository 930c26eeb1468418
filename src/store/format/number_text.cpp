#include "store/format/number_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace kzb {
namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_hex_digit(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Takes white space and one sign; true for a minus.
bool take_sign(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    return negative;
}

// True when a number beyond the range of double is too large, false when it is too small: by the power of its first
// digit other than 0.
bool is_huge(std::string_view number, bool hex) {
    std::int64_t power = 0;
    bool significant = false;
    bool fraction = false;
    std::size_t i = 0;
    for (; i < number.size(); ++i) {
        const char c = number[i];
        if (c == '.') {
            fraction = true;
            continue;
        }
        if (!(hex ? is_hex_digit(c) : is_digit(c))) {
            break;
        }
        significant = significant || c != '0';
        power += significant && !fraction ? 1 : 0;
        power -= !significant && fraction ? 1 : 0;
    }
    if (i == number.size()) {
        return power > 0;
    }
    std::string_view digits = number.substr(i + 1);
    const bool down = take_sign(digits);
    std::int64_t exponent = 0;
    for (const char c : digits) {
        exponent = std::min<std::int64_t>(10 * exponent + (c - '0'), std::numeric_limits<std::int32_t>::max());
    }
    return (hex ? 4 * power : power) + (down ? -exponent : exponent) > 0;
}

}  // namespace

bool scan_int(std::string_view& text, int& value) {
    std::string_view rest = text;
    const bool negative = take_sign(rest);
    if (rest.empty() || !is_digit(rest.front())) {
        return false;
    }
    std::uint64_t magnitude = 0;
    const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), magnitude);
    constexpr auto longest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const std::uint64_t limit = longest + (negative ? 1U : 0U);
    if (parsed.ec == std::errc::result_out_of_range || magnitude > limit) {
        magnitude = limit;
    }
    value = static_cast<int>(static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude));
    text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
    return true;
}

bool scan_double(std::string_view& text, double& value) {
    std::string_view rest = text;
    const bool negative = take_sign(rest);
    // "0x" counts as the start of a hexadecimal number only if a digit of one follows.
    const bool hex = rest.size() > 2 && rest[0] == '0' && (rest[1] == 'x' || rest[1] == 'X') &&
                     (is_hex_digit(rest[2]) || (rest[2] == '.' && rest.size() > 3 && is_hex_digit(rest[3])));
    if (hex) {
        rest.remove_prefix(2);
    }
    if (rest.starts_with('-')) {  // a second sign
        return false;
    }
    double magnitude = 0.0;
    const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), magnitude,
                                        hex ? std::chars_format::hex : std::chars_format::general);
    if (parsed.ec == std::errc::invalid_argument) {
        return false;
    }
    const auto length = static_cast<std::size_t>(parsed.ptr - rest.data());
    if (parsed.ec == std::errc::result_out_of_range) {
        magnitude = is_huge(rest.substr(0, length), hex) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    value = negative ? -magnitude : magnitude;
    rest.remove_prefix(length);
    text = rest;
    return true;
}

void append_double(std::string& out, double value) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 10).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    out.append(length < 20 ? 20 - length : 0, ' ');
    out.append(digits, length);
}

void append_int(std::string& out, int value, std::size_t width) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    out.append(length < width ? width - length : 0, ' ');
    out.append(digits, length);
}

}  // namespace kzb
