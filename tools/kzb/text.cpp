#include "kzb/text.h"

#include <algorithm>
#include <boost/locale/encoding.hpp>
#include <boost/locale/utf.hpp>

namespace kzb::tool {

namespace {

namespace utf = boost::locale::utf;
namespace conv = boost::locale::conv;

constexpr std::string_view replacement = "\xef\xbf\xbd";

// Calls valid(from, to) for each character and invalid() for each byte that belongs to none; false stops.
template <class Valid, class Invalid>
void each_character(std::string_view bytes, Valid valid, Invalid invalid) {
    const char* p = bytes.data();
    const char* const end = p + bytes.size();
    while (p != end) {
        const char* next = p;
        const utf::code_point c = utf::utf_traits<char>::decode(next, end);
        if (c == utf::illegal || c == utf::incomplete) {
            invalid();
            ++p;
        } else {
            valid(std::string_view(p, static_cast<std::size_t>(next - p)));
            p = next;
        }
    }
}

bool fits_shift_jis(const std::string& text) {
    try {
        conv::from_utf<char>(text, "Shift_JIS", conv::stop);
        return true;
    } catch (const conv::conversion_error&) {
        return false;
    }
}

}  // namespace

bool is_utf8(std::string_view bytes) {
    bool valid = true;
    each_character(
        bytes, [](std::string_view) {}, [&valid] { valid = false; });
    return valid;
}

bool is_ascii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string valid_utf8(std::string_view bytes) {
    std::string text;
    each_character(
        bytes, [&text](std::string_view character) { text += character; }, [&text] { text += replacement; });
    return text;
}

std::string printable(std::string_view bytes) {
    std::string text = valid_utf8(bytes);
    for (char& c : text) {
        const auto code = static_cast<unsigned char>(c);
        if ((code < 0x20 && c != '\n') || code == 0x7f) {
            c = '?';
        }
    }
    return text;
}

std::string printable_line(std::string_view bytes) {
    std::string text = printable(bytes);
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string from_store(std::string_view bytes) {
    const std::string text(bytes);
    if (is_ascii(bytes) || (is_utf8(bytes) && !fits_shift_jis(text))) {
        return text;
    }
    try {
        return conv::to_utf<char>(text, "Shift_JIS", conv::stop);
    } catch (const conv::conversion_error&) {
        return valid_utf8(bytes);
    }
}

}  // namespace kzb::tool
