#include "diagnostics/log_format.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace kzb {
namespace {

// One vsnprintf into a string of the right length.
std::string formatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = format_runtime(format, arguments);
    va_end(arguments);
    return text;
}

bool is_one_of(char c, const char* set) {
    return c != '\0' && std::strchr(set, c) != nullptr;
}

// What a conversion letter takes from the argument list.
enum class Takes { nothing, integer, text, number };

// By the last character of a specifier, which chooses the argument.
Takes argument_of(char last) {
    if (is_one_of(last, "cdi")) {
        return Takes::integer;
    }
    if (last == 's') {
        return Takes::text;
    }
    return is_one_of(last, "efEF") ? Takes::number : Takes::nothing;
}

struct Conversion {
    Takes takes = Takes::nothing;
    bool is_long = false;  // an integer that the runtime reads as a long
};

// The conversion as the runtime sees it: behind "%", flags, width, precision and length. What stands between it and the
// end of the specifier is text.
Conversion conversion_of(std::string_view specifier) {
    std::size_t at = 1;
    const auto skip = [&](const char* set) {
        while (at < specifier.size() && is_one_of(specifier[at], set)) {
            ++at;
        }
    };
    skip("-+#0");
    skip("0123456789");
    if (at < specifier.size() && specifier[at] == '.') {
        ++at;
        skip("0123456789");
    }
    const std::string_view rest = specifier.substr(at);
    const std::size_t length = rest.starts_with("hh") ? 2 : rest.starts_with('h') || rest.starts_with('l') ? 1 : 0;
    const char letter = length < rest.size() ? rest[length] : '\0';
    if (is_one_of(letter, "diuoxX")) {
        return {Takes::integer, rest.front() == 'l'};
    }
    if (is_one_of(letter, "eEfFgGaA") && rest.front() != 'h') {
        return {Takes::number};
    }
    if (length != 0) {
        return {};  // a wide character or text
    }
    return {letter == 'c' ? Takes::integer : letter == 's' ? Takes::text : Takes::nothing};
}

// A copy of the argument list that a helper may advance.
struct Arguments {
    std::va_list list;
};

std::string apply(const std::string& specifier, Arguments& arguments) {
    const Takes argument = argument_of(specifier.back());
    const Conversion conversion = conversion_of(specifier);
    // The runtime must not read an argument as what it isn't.
    const bool fits = conversion.takes == argument;
    switch (argument) {
        case Takes::integer: {
            const int value = va_arg(arguments.list, int);
            if (!fits) {
                return {};
            }
            return conversion.is_long ? formatted(specifier.c_str(), static_cast<long>(value))
                                      : formatted(specifier.c_str(), value);
        }
        case Takes::text: {
            const char* const value = va_arg(arguments.list, const char*);
            return fits ? formatted(specifier.c_str(), value != nullptr ? value : "(null)") : std::string();
        }
        case Takes::number: {
            const double value = va_arg(arguments.list, double);
            return fits ? formatted(specifier.c_str(), value) : std::string();
        }
        default:
            return {};
    }
}

const char* control_character(char letter) {
    switch (letter) {
        case 'n':
            return "\n";
        case 't':
            return "\t";
        case 'r':
            return "\r";
        default:
            return "";
    }
}

}  // namespace

std::string format_runtime(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length <= 0) {
        return {};
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

std::string format_own(const char* format, std::va_list arguments) {
    Arguments rest;
    va_copy(rest.list, arguments);
    std::string text;
    const std::string_view source(format);
    for (std::size_t at = 0; at < source.size();) {
        if (source[at] == '\\') {
            text += at + 1 < source.size() ? control_character(source[at + 1]) : "";
            at += 2;
        } else if (source[at] == '%') {
            const std::size_t end = std::min(source.find_first_of(" %", at + 1), source.size());
            text += apply(std::string(source.substr(at, end - at)), rest);
            at = end;
        } else {
            text += source[at++];
        }
    }
    va_end(rest.list);
    return text;
}

void purify_comment(std::string& text) {
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '-' && text[i - 1] == '-') {
            text[i - 1] = ' ';
            text[i] = ' ';
        }
    }
}

}  // namespace kzb
