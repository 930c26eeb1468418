#include "models/coil_dump.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>

#include "diagnostics/own_file.h"

namespace kzb {
namespace {

// "%10.4E", or with a blank in the place of a plus sign.
void append_number(std::string& text, double value, bool blank_for_plus) {
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific, 4).ptr;
    std::string number = blank_for_plus && !std::signbit(value) ? " " : "";
    for (const char* at = digits; at != end; ++at) {
        number += *at >= 'a' && *at <= 'z' ? static_cast<char>(*at - 'a' + 'A') : *at;
    }
    text.append(number.size() < 10 ? 10 - number.size() : 0, ' ');
    text += number;
}

// "% 10d" of a number that is not negative.
void append_count(std::string& text, int value) {
    const std::string number = ' ' + std::to_string(value);
    text.append(number.size() < 10 ? 10 - number.size() : 0, ' ');
    text += number;
}

double value_or_zero(const std::vector<double>& values, std::size_t k) {
    return k < values.size() ? values[k] : 0.0;
}

}  // namespace

CoilDump::CoilDump(double time, int step_count) {
    text_ = "##### time = ";
    append_number(text_, time, false);
    text_ += " (";
    append_count(text_, step_count);
    text_ += " step)#####\n";
}

void CoilDump::line(const char* label, std::initializer_list<double> values) {
    text_ += label;
    text_ += '\n';
    const char* separator = "";
    for (const double value : values) {
        text_ += separator;
        append_number(text_, value, true);
        separator = " ";
    }
    text_ += '\n';
}

void CoilDump::block(const char* label, const std::vector<double>& values, std::size_t rows) {
    text_ += label;
    text_ += '\n';
    for (std::size_t k = 0; k < 4 * rows; ++k) {
        if (k < values.size()) {
            append_number(text_, values[k], true);
            text_ += ' ';
        }
        text_ += k % 4 == 3 ? "\n" : "";
    }
}

void CoilDump::phase_currents(const char* label, const std::vector<double>& current) {
    line(label, {value_or_zero(current, 0) - value_or_zero(current, 1),
                 value_or_zero(current, 2) - value_or_zero(current, 3)});
}

void CoilDump::append_to(const char* file_name) {
    text_ += '\n';
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(open_own_file(file_name, "a"), std::fclose);
    if (file) {
        std::fwrite(text_.data(), 1, text_.size(), file.get());
    }
}

}  // namespace kzb
