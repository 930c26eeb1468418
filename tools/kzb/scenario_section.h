// One table of a scenario file, read key by key; what nobody asked for is an error that names its line.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kzb/toml.h"

namespace kzb::tool {

class Section {
  public:
    // `name` as in the file, empty for the file itself.
    Section(const toml::table& table, std::string name, std::string file);

    bool has(std::string_view key) const { return table_->contains(key); }
    // Each reads the key and remembers that it is known; nothing when the key is absent.
    std::optional<double> number(std::string_view key);  // finite
    std::optional<double> positive(std::string_view key);
    std::optional<double> not_negative(std::string_view key);
    std::optional<int> integer(std::string_view key, int least);
    std::optional<bool> flag(std::string_view key);
    std::optional<std::string> text(std::string_view key);
    std::optional<std::size_t> choice(std::string_view key, std::initializer_list<std::string_view> words) {
        return choice(key, std::span<const std::string_view>(words.begin(), words.size()));
    }
    std::optional<std::size_t> choice(std::string_view key, std::span<const std::string_view> words);
    std::optional<Section> section(std::string_view key);
    const toml::array* array(std::string_view key);
    // An array of finite numbers; empty when the key is absent.
    std::vector<double> numbers(std::string_view key);
    // The bare value, for a key that takes more than one type.
    const toml::node* node(std::string_view key);

    // The value, or Failure that says that the key is missing.
    template <class Value>
    Value required(std::string_view key, std::optional<Value> value) {
        if (!value) {
            missing(key);
        }
        return std::move(*value);
    }

    // All keys in the order of the file, for a table whose keys are names.
    std::vector<std::string> keys() const;
    // Failure(exit_file) for the first key that nobody asked for.
    void end() const;

    const std::string& file() const { return file_; }
    // "file:line: section.key"
    std::string place(std::string_view key) const;
    [[noreturn]] void fail(std::string_view key, std::string_view text) const;
    [[noreturn]] void missing(std::string_view key) const;

  private:
    std::string full_name(std::string_view key) const;
    const toml::table* table_;
    std::string name_;
    std::string file_;
    std::vector<std::string> known_;
};

}  // namespace kzb::tool
