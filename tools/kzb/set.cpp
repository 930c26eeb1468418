// kzb set: a copy of a KZB file with other values of single parameters.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/model_rewrite.h"
#include "kzb/parameter.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct SetOptions {
    RewriteOptions rewrite;
    std::vector<std::string> assignments;
    std::string type;  // of keys that are new
};

struct Assignment {
    Parameter parameter;
    std::string value;
};

// A new key stands in a category that exists, else in a new one, named before the first slash.
EntryName new_entry(const KZB_STORE& store, const SetOptions& options, const std::string& name) {
    std::optional<EntryName> entry =
        find_entry(name, [&store](const EntryName& tried) { return has_category(store, tried.category); });
    if (!entry) {
        entry = find_entry(name, [](const EntryName&) { return true; });
    }
    if (!entry || entry->category.empty() || entry->key.empty()) {
        throw Failure(exit_usage, fmt::format("{}: \"{}\" is no name of a parameter, expected CATEGORY/KEY",
                                              options.rewrite.input, printable_line(name)));
    }
    return *entry;
}

// Names may hold an equals sign: the first one behind a name that exists divides, else the first at all.
Assignment understand(const KZB_STORE& store, const SetOptions& options, const std::string& text) {
    const std::optional<ParameterKind> kind = kind_named(options.type);
    for (std::size_t at = text.find('='); at != std::string::npos; at = text.find('=', at + 1)) {
        if (const auto known = find_parameter(store, text.substr(0, at), kind, options.rewrite.input)) {
            return {*known, text.substr(at + 1)};
        }
    }
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        throw Failure(exit_usage,
                      fmt::format("\"{}\" has no value, expected CATEGORY/KEY=VALUE", printable_line(text)));
    }
    const std::string name = text.substr(0, equals);
    const EntryName entry = new_entry(store, options, name);
    if (!kind) {
        throw Failure(exit_usage, fmt::format("{}: {}; --type int, double or string makes a new one",
                                              options.rewrite.input, unknown_parameter(store, name)));
    }
    return {{entry, *kind}, text.substr(equals + 1)};
}

void assign(KZB_STORE& store, const SetOptions& options) {
    std::vector<std::string> done;
    for (const std::string& text : options.assignments) {
        const Assignment assignment = understand(store, options, text);
        const std::string name = assignment.parameter.name.text();
        if (std::find(done.begin(), done.end(), name) != done.end()) {
            throw Failure(exit_usage,
                          fmt::format("{} twice, expected one value for each parameter", printable_line(name)));
        }
        set_parameter(store, assignment.parameter, assignment.value);
        done.push_back(name);
    }
}

void set(const SetOptions& options, const Context& context) {
    Edit edit;
    edit.change = [&options](KZB_STORE& store, Remarks&) { assign(store, options); };
    context.print(outcome_text(rewrite_model(options.rewrite, &edit)));
}

}  // namespace

void add_set(CLI::App& app, Context& context) {
    CLI::App* set_app = app.add_subcommand("set", "Copy a KZB file with other values of single parameters");
    const auto options = std::make_shared<SetOptions>();
    add_rewrite_options(*set_app, options->rewrite);
    set_app->add_option("assignments", options->assignments, "Parameters and their new values")
        ->required()
        ->type_name("CATEGORY/KEY=VALUE");
    set_app->add_option("--type", options->type, "Type of parameters that are new")->check(CLI::IsMember(kind_words()));
    set_app->callback([options, &context] { context.action = [options, &context] { set(*options, context); }; });
}

}  // namespace kzb::tool
