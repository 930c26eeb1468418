#include "kzb/parameter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "kzb/library_noise.h"
#include "kzb/text.h"
#include "store/format/shift_jis.h"

namespace kzb::tool {

namespace {

constexpr std::array<ParameterKind, 3> all_kinds = {ParameterKind::integer, ParameterKind::real, ParameterKind::text};

bool holds(const KZB_STORE& store, const EntryName& name, ParameterKind kind) {
    const KZB_CATEGORY* category = find_category(store, name.category);
    if (category == nullptr) {
        return false;
    }
    switch (kind) {
        case ParameterKind::integer:
            return category->ints.find(name.key) != nullptr;
        case ParameterKind::real:
            return category->doubles.find(name.key) != nullptr;
        default:
            return category->strings.find(name.key) != nullptr;
    }
}

template <class List>
void add_keys(const List& list, std::vector<std::string>& keys) {
    for (const auto& record : list) {
        keys.push_back(record.keyword);
    }
}

std::vector<std::string> keys_of(const KZB_CATEGORY& category) {
    std::vector<std::string> keys;
    add_keys(category.ints, keys);
    add_keys(category.doubles, keys);
    add_keys(category.strings, keys);
    return keys;
}

int integer_of(const Parameter& parameter, const std::string& text) {
    int value = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value);
    if (error != std::errc() || end != last) {
        throw Failure(exit_usage, fmt::format("{}: \"{}\" is no integer, expected one from {} to {}",
                                              printable_line(parameter.name.text()), printable_line(text),
                                              std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    }
    return value;
}

double number_of(const Parameter& parameter, const std::string& text) {
    const std::optional<double> value = finite_number(text);
    if (!value) {
        throw Failure(exit_usage, fmt::format("{}: \"{}\" is not a finite number, expected one such as 0.021",
                                              printable_line(parameter.name.text()), printable_line(text)));
    }
    return *value;
}

// Typed in UTF-8, kept as the reader of a file would keep it.
std::string stored_string(const std::string& text) {
    const LibraryNoise noise;
    return stored_text(text);
}

}  // namespace

std::string_view word_of(ParameterKind kind) {
    constexpr std::array<std::string_view, 3> words = {"int", "double", "string"};
    return words[static_cast<std::size_t>(kind)];
}

std::vector<std::string> kind_words() {
    std::vector<std::string> words;
    std::transform(all_kinds.begin(), all_kinds.end(), std::back_inserter(words),
                   [](ParameterKind kind) { return std::string(word_of(kind)); });
    return words;
}

std::optional<ParameterKind> kind_named(std::string_view word) {
    const auto* at =
        std::find_if(all_kinds.begin(), all_kinds.end(), [word](ParameterKind kind) { return word_of(kind) == word; });
    return at == all_kinds.end() ? std::nullopt : std::optional<ParameterKind>(*at);
}

std::optional<Parameter> find_parameter(const KZB_STORE& store, const std::string& name,
                                        std::optional<ParameterKind> kind, const std::string& place) {
    const std::optional<EntryName> entry =
        find_entry(name, [&store](const EntryName& tried) { return has_parameter(store, tried.category, tried.key); });
    if (!entry) {
        return std::nullopt;
    }
    std::vector<std::string_view> present;
    for (const ParameterKind tried : all_kinds) {
        if (holds(store, *entry, tried)) {
            present.push_back(word_of(tried));
        }
    }
    if (kind && holds(store, *entry, *kind)) {
        return Parameter{*entry, *kind};
    }
    const std::string shown = printable_line(entry->text());
    if (present.empty()) {
        throw Failure(exit_usage, fmt::format("{}: {} is a table, expected a single parameter; kzb info --grid shows "
                                              "the nodes of a table, kzb plot its values",
                                              place, shown));
    }
    if (kind || present.size() > 1) {
        throw Failure(exit_usage, fmt::format("{}: {} is there as {}, expected --type {}", place, shown,
                                              fmt::join(present, " and "), fmt::join(present, " or ")));
    }
    return Parameter{*entry, *kind_named(present.front())};
}

std::string unknown_parameter(const KZB_STORE& store, const std::string& name) {
    const std::string shown = name.empty() ? "\"\"" : printable_line(name);
    const std::optional<EntryName> entry =
        find_entry(name, [&store](const EntryName& tried) { return has_category(store, tried.category); });
    if (!entry) {
        return fmt::format("no parameter {}, expected CATEGORY/KEY as kzb info shows them", shown);
    }
    const std::vector<std::string> keys = keys_of(*find_category(store, entry->category));
    return fmt::format("no parameter {}, expected one of {}", shown,
                       keys.empty() ? "none: the category has tables alone"
                                    : printable_line(fmt::format("{}", fmt::join(keys, ", "))));
}

Json value_of(const KZB_STORE& store, const Parameter& parameter) {
    const EntryName& name = parameter.name;
    switch (parameter.kind) {
        case ParameterKind::integer:
            return get_int(store, name.category, name.key);
        case ParameterKind::real:
            return get_double(store, name.category, name.key);
        default:
            return from_store(get_string(store, name.category, name.key));
    }
}

void set_parameter(KZB_STORE& store, const Parameter& parameter, const std::string& value) {
    const EntryName& name = parameter.name;
    int failed = 0;
    switch (parameter.kind) {
        case ParameterKind::integer:
            failed = put_int(store, name.category, name.key, integer_of(parameter, value));
            break;
        case ParameterKind::real:
            failed = put_double(store, name.category, name.key, number_of(parameter, value));
            break;
        case ParameterKind::text:
            failed = put_string(store, name.category, name.key, stored_string(value));
            break;
    }
    if (failed != 0) {
        throw Failure(exit_usage, fmt::format("{}: cannot be set, expected names of less than {} bytes",
                                              printable_line(name.text()), name_limit));
    }
}

}  // namespace kzb::tool
