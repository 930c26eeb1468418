#include "models/calc_eq_im_parameter_file.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

#include "diagnostics/own_file.h"

namespace kzb {
namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

// Takes the first word off `text`; empty when there is none.
std::string_view take_word(std::string_view& text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    text.remove_prefix(first);
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

void take_line(std::string_view line, ImResistances& resistances, ImInductances& inductances) {
    const struct {
        std::string_view name;
        double& value;
    } parameters[] = {{"R1", resistances.Rs_DC},  {"R2", resistances.Rr_base}, {"Ls", inductances.m_Ls},
                      {"Msr", inductances.m_Msr}, {"Mrs", inductances.m_Mrs},  {"Lr", inductances.m_Lr}};
    const std::string_view name = take_word(line);
    std::string_view text = take_word(line);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
    }
    double value = 0.0;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) {
        return;
    }
    for (const auto& parameter : parameters) {
        if (parameter.name == name) {
            parameter.value = value;
        }
    }
}

}  // namespace

void read_parameter_file(const char* path, ImResistances& resistances, ImInductances& inductances) {
    // Neither a pipe nor a device: reading one may never end.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(open_own_file(path, "r"), std::fclose);
    if (!file) {
        return;
    }
    // What a line has beyond the buffer is read as a line of its own.
    char line[256];
    for (int n = 0; n < parameter_file_lines && std::fgets(line, sizeof line, file.get()) != nullptr; ++n) {
        take_line(std::string_view(line, std::strlen(line)), resistances, inductances);
    }
}

}  // namespace kzb
