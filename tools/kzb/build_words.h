// What the words of the build subcommands share: numbers within bounds, KEY=VALUE, words that stand for values, and the
// options of the file to write.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "KZBCalculator/kzb_store.h"

namespace kzb::tool {

// A finite number within [low, high]; `wording` says what is expected.
CLI::Validator number_in(double low, double high, const std::string& wording);
const CLI::Validator& not_negative_number();
const CLI::Validator& positive_number();
const CLI::Validator& any_number();

// KEY and VALUE of "KEY=VALUE"; Failure(exit_usage) says what was `expected`.
std::pair<std::string, std::string> split_assignment(const std::string& option, const std::string& text,
                                                     const char* expected);

// The rated data of --info KEY=NUMBER. Failure(exit_usage) for another key.
std::map<std::string, double> read_information(const std::vector<std::string>& words);
std::string information_help();

// An option whose words stand for values.
template <class Value>
CLI::Option* add_choice(CLI::App& app, const char* name, Value& value, const std::map<std::string, Value>& choices,
                        const std::string& help) {
    std::vector<std::string> words;
    for (const auto& [word, ignored] : choices) {
        words.push_back(word);
    }
    return app
        .add_option_function<std::string>(
            name, [&value, choices](const std::string& word) { value = choices.at(word); }, help)
        ->check(CLI::IsMember(words));
}

// Failure(exit_usage) when the model would take the place of `input`, which is `what` ("the map").
void refuse_over_input(const std::string& out, const std::string& input, const char* what);

}  // namespace kzb::tool
