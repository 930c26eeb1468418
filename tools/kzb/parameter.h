// Single parameters of a model, named CATEGORY/KEY: found, read as text and set.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kzb/entry_name.h"
#include "kzb/json.h"
#include "store/store.h"

namespace kzb::tool {

enum class ParameterKind { integer, real, text };
// The words that users type: "int", "double", "string".
std::string_view word_of(ParameterKind kind);
std::vector<std::string> kind_words();
// Nothing for the empty word.
std::optional<ParameterKind> kind_named(std::string_view word);

struct Parameter {
    EntryName name;
    ParameterKind kind;
};

// The parameter of that name, and of that kind if one is asked for; nothing when there is no such name. `place` begins
// the messages. Failure(exit_usage) for a table, for a name that stands there in several kinds when none is asked for,
// and for one that stands there in others alone.
std::optional<Parameter> find_parameter(const KZB_STORE& store, const std::string& name,
                                        std::optional<ParameterKind> kind, const std::string& place);

// "no parameter NAME, expected ...", with what the category offers instead.
std::string unknown_parameter(const KZB_STORE& store, const std::string& name);

Json value_of(const KZB_STORE& store, const Parameter& parameter);

// Failure(exit_usage) for a text that is no value of the kind.
void set_parameter(KZB_STORE& store, const Parameter& parameter, const std::string& value);

}  // namespace kzb::tool
