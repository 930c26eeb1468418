#include "kzb/scenario_section.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

std::string lower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

}  // namespace

Section::Section(const toml::table& table, std::string name, std::string file)
    : table_(&table), name_(std::move(name)), file_(std::move(file)) {}

std::string Section::full_name(std::string_view key) const {
    return printable_line(name_.empty() ? std::string(key) : fmt::format("{}.{}", name_, key));
}

std::string Section::place(std::string_view key) const {
    const toml::node* value = table_->get(key);
    const auto line = value != nullptr ? value->source().begin.line : table_->source().begin.line;
    return fmt::format("{}:{}: {}", file_, std::max<unsigned>(line, 1), full_name(key));
}

void Section::fail(std::string_view key, std::string_view text) const {
    throw Failure(exit_file, fmt::format("{}: {}", place(key), text));
}

void Section::missing(std::string_view key) const {
    fail(key, "missing, this key is required");
}

const toml::node* Section::node(std::string_view key) {
    if (std::find(known_.begin(), known_.end(), key) == known_.end()) {
        known_.emplace_back(key);
    }
    return table_->get(key);
}

std::optional<double> Section::number(std::string_view key) {
    const toml::node* value = node(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    const std::optional<double> result = value->is_number() ? value->value<double>() : std::nullopt;
    if (!result || !std::isfinite(*result)) {
        fail(key, "expected a finite number");
    }
    return result;
}

std::optional<double> Section::positive(std::string_view key) {
    const std::optional<double> result = number(key);
    if (result && *result <= 0.0) {
        fail(key, fmt::format("{} is not above 0", *result));
    }
    return result;
}

std::optional<double> Section::not_negative(std::string_view key) {
    const std::optional<double> result = number(key);
    if (result && *result < 0.0) {
        fail(key, fmt::format("{} is below 0", *result));
    }
    return result;
}

std::optional<int> Section::integer(std::string_view key, int least) {
    const toml::node* value = node(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    const std::optional<std::int64_t> result = value->is_integer() ? value->value<std::int64_t>() : std::nullopt;
    if (!result || *result < least || *result > INT_MAX) {
        fail(key, fmt::format("expected an integer from {}", least));
    }
    return static_cast<int>(*result);
}

std::optional<bool> Section::flag(std::string_view key) {
    const toml::node* value = node(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_boolean()) {
        fail(key, "expected true or false");
    }
    return value->value<bool>();
}

std::optional<std::string> Section::text(std::string_view key) {
    const toml::node* value = node(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_string()) {
        fail(key, "expected a text in quotes");
    }
    return value->value<std::string>();
}

std::optional<std::size_t> Section::choice(std::string_view key, std::span<const std::string_view> words) {
    const toml::node* value = node(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    const std::optional<std::string> word = value->is_string() ? value->value<std::string>() : std::nullopt;
    const auto at = word ? std::find(words.begin(), words.end(), lower(*word)) : words.end();
    if (at == words.end()) {
        fail(key, fmt::format("expected one of \"{}\"", fmt::join(words, "\", \"")));
    }
    return static_cast<std::size_t>(at - words.begin());
}

std::optional<Section> Section::section(std::string_view key) {
    const toml::node* value = node(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_table()) {
        fail(key, fmt::format("expected a table, [{}]", full_name(key)));
    }
    return Section(*value->as_table(), full_name(key), file_);
}

const toml::array* Section::array(std::string_view key) {
    const toml::node* value = node(key);
    if (value == nullptr) {
        return nullptr;
    }
    if (!value->is_array()) {
        fail(key, "expected an array, [ ... ]");
    }
    return value->as_array();
}

std::vector<double> Section::numbers(std::string_view key) {
    std::vector<double> result;
    const toml::array* values = array(key);
    for (std::size_t i = 0; values != nullptr && i < values->size(); ++i) {
        const toml::node& entry = (*values)[i];
        const std::optional<double> number = entry.is_number() ? entry.value<double>() : std::nullopt;
        if (!number || !std::isfinite(*number)) {
            fail(key, "expected finite numbers, [1.0, 2.0]");
        }
        result.push_back(*number);
    }
    return result;
}

std::vector<std::string> Section::keys() const {
    std::vector<std::string> result;
    for (const auto& [key, value] : *table_) {
        result.emplace_back(key.str());
    }
    return result;
}

void Section::end() const {
    const toml::node* first = nullptr;
    std::string name;
    for (const auto& [key, value] : *table_) {
        const bool known = std::find(known_.begin(), known_.end(), key.str()) != known_.end();
        if (!known && (first == nullptr || value.source().begin.line < first->source().begin.line)) {
            first = &value;
            name = key.str();
        }
    }
    if (first != nullptr) {
        fail(name, fmt::format("unknown key, expected one of {}", fmt::join(known_, ", ")));
    }
}

}  // namespace kzb::tool
