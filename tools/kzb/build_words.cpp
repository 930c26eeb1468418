#include "kzb/build_words.h"

#include <algorithm>
#include <filesystem>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_model.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

constexpr double huge = 1e12;

}  // namespace

CLI::Validator number_in(double low, double high, const std::string& wording) {
    return CLI::Validator(
        [=](const std::string& text) {
            const auto value = finite_number(text);
            return value && *value >= low && *value <= high ? std::string()
                                                            : fmt::format("\"{}\": expected {}", text, wording);
        },
        "");
}

const CLI::Validator& not_negative_number() {
    static const CLI::Validator validator = number_in(0.0, huge, "a number of 0 or more");
    return validator;
}

const CLI::Validator& positive_number() {
    static const CLI::Validator validator = number_in(1e-12, huge, "a number above 0");
    return validator;
}

const CLI::Validator& any_number() {
    static const CLI::Validator validator = number_in(-huge, huge, "a number");
    return validator;
}

std::pair<std::string, std::string> split_assignment(const std::string& option, const std::string& text,
                                                     const char* expected) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
        throw Failure(exit_usage, fmt::format("{} {}: expected {}", option, printable_line(text), expected));
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

std::map<std::string, double> read_information(const std::vector<std::string>& words) {
    std::map<std::string, double> information;
    for (const std::string& text : words) {
        const auto [key, value] = split_assignment("--info", text, "KEY=NUMBER");
        const auto& keys = information_keys();
        if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
            throw Failure(exit_usage, fmt::format("--info {}: unknown key \"{}\", expected one of {}",
                                                  printable_line(text), printable_line(key), fmt::join(keys, ", ")));
        }
        const auto number = finite_number(value);
        if (!number) {
            throw Failure(exit_usage, fmt::format("--info {}: \"{}\" is not a number", printable_line(text),
                                                  printable_line(value)));
        }
        information[key] = *number;
    }
    return information;
}

std::string information_help() {
    return fmt::format("KEY=NUMBER: rated data ({})", fmt::join(information_keys(), ", "));
}

void refuse_over_input(const std::string& out, const std::string& input, const char* what) {
    std::error_code ignored;
    if (std::filesystem::equivalent(input, out, ignored)) {
        throw Failure(exit_usage, fmt::format("--out {}: is {} itself, expected another file", out, what));
    }
}

}  // namespace kzb::tool
