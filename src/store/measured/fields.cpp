#include "store/measured/fields.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "store/format/number_scan.h"

namespace kzb {

namespace {

constexpr std::string_view white_space = " \t\n\v\f\r";

// What std::from_chars does not know: a plus sign, where it stands before the number itself.
std::string_view without_plus(std::string_view text) {
    const bool plus = text.size() > 1 && text.front() == '+' && text[1] != '-';
    return plus ? text.substr(1) : text;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(white_space);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(white_space) - first + 1);
}

bool CommaTokens::take(std::string_view& token) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(','), rest_.size()));
    if (rest_.empty()) {
        return false;
    }
    token = rest_.substr(0, rest_.find(','));
    rest_.remove_prefix(token.size());
    return true;
}

int leading_int(std::string_view text) {
    int value = 0;
    scan_int(text, value);
    return value;
}

double leading_double(std::string_view text) {
    double value = 0.0;
    std::string_view rest = text;
    if (scan_double(rest, value)) {
        return value;
    }
    // A number that goes on wrongly counts up to there: the "inf" of "infix", the "0" of "0x".
    std::size_t start = std::min(text.find_first_not_of(white_space), text.size());
    start += start < text.size() && (text[start] == '-' || text[start] == '+') ? 1U : 0U;
    for (const std::size_t length : {std::size_t{3}, std::size_t{1}}) {
        rest = text.substr(0, start + length);
        if (scan_double(rest, value)) {
            return value;
        }
    }
    return 0.0;
}

bool whole_int(std::string_view text, int& value) {
    const std::string_view digits = without_plus(text);
    int read = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), read);
    if (parsed.ec != std::errc() || parsed.ptr != digits.data() + digits.size()) {
        return false;
    }
    value = read;
    return true;
}

bool whole_double(std::string_view text, double& value) {
    const std::string_view digits = without_plus(text);
    double read = 0.0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), read);
    if (parsed.ec == std::errc::invalid_argument || parsed.ptr != digits.data() + digits.size()) {
        return false;
    }
    if (parsed.ec == std::errc::result_out_of_range) {
        // Too small a number counts as 0, too large a one is none.
        std::string_view rest = digits;
        if (!scan_double(rest, read) || std::isinf(read)) {
            return false;
        }
    }
    value = read;
    return true;
}

}  // namespace kzb
