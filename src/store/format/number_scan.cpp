#include "store/format/number_scan.h"

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

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// `word` is in small letters.
bool starts_with_word(std::string_view text, std::string_view word) {
    return text.size() >= word.size() && std::equal(word.begin(), word.end(), text.begin(),
                                                    [](char expected, char c) { return lower(c) == expected; });
}

// The characters of a number, 0 for none.
struct Extent {
    std::size_t length = 0;
    bool hex = false;  // with "0x" in front
};

// "nan", "inf" or "infinity"; "inf" that goes on with an "i" must be the long word.
Extent word_extent(std::string_view text) {
    if (starts_with_word(text, "nan")) {
        return {3};
    }
    if (starts_with_word(text, "infi")) {
        return {starts_with_word(text, "infinity") ? std::size_t{8} : 0};
    }
    return {starts_with_word(text, "inf") ? std::size_t{3} : 0};
}

// Digits with one point, and behind a digit one exponent, its sign and its digits, each of which may be missing.
Extent number_extent(std::string_view text) {
    Extent extent;
    extent.hex = starts_with_word(text, "0x");
    const std::size_t start = extent.hex ? 2 : 0;
    const char exponent_letter = extent.hex ? 'p' : 'e';
    bool digit = false;
    bool point = false;
    bool exponent = false;
    std::size_t i = start;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (is_digit(c) || (extent.hex && !exponent && is_hex_digit(c))) {
            digit = true;
        } else if (exponent && (c == '+' || c == '-') && lower(text[i - 1]) == exponent_letter) {
            continue;
        } else if (digit && !exponent && lower(c) == exponent_letter) {
            exponent = true;
        } else if (!point && !exponent && c == '.') {
            point = true;
        } else {
            break;
        }
    }
    extent.length = i == start ? 0 : i;
    return extent;
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
    const Extent word = word_extent(rest);
    const Extent number = word.length != 0 ? word : number_extent(rest);
    if (number.length == 0) {
        return false;
    }
    const std::string_view digits = rest.substr(number.hex ? 2 : 0, number.length - (number.hex ? 2 : 0));
    double magnitude = 0.0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude,
                                        number.hex ? std::chars_format::hex : std::chars_format::general);
    if (parsed.ec == std::errc::invalid_argument && !number.hex) {
        return false;  // a point alone; "0x." has the digit 0
    }
    if (parsed.ec == std::errc::result_out_of_range) {
        const auto length = static_cast<std::size_t>(parsed.ptr - digits.data());
        magnitude = is_huge(digits.substr(0, length), number.hex) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    value = negative ? -magnitude : magnitude;
    rest.remove_prefix(number.length);
    text = rest;
    return true;
}

}  // namespace kzb
