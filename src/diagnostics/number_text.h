// Numbers as text, the same under every locale of the host: what printf writes in the "C" locale.
#pragma once

#include <charconv>
#include <string>

namespace kzb {

// "%<width>.<precision>e"; width and precision below 64.
inline void append_scientific(std::string& text, double value, int width, int precision) {
    char digits[128];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, precision).ptr;
    const auto length = end - digits;
    if (length < width) {
        text.append(static_cast<std::size_t>(width - length), ' ');
    }
    text.append(digits, end);
}

// "%<width>d"
inline void append_integer(std::string& text, long long value, int width) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const auto length = end - digits;
    if (length < width) {
        text.append(static_cast<std::size_t>(width - length), ' ');
    }
    text.append(digits, end);
}

}  // namespace kzb
