// kzb get: the value of one parameter, alone on stdout.
#include <CLI/CLI.hpp>
#include <memory>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/model_file.h"
#include "kzb/parameter.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct GetOptions {
    std::string file;
    std::string name;
    std::string type;
    bool json = false;
};

std::string plain_text(const Json& value) {
    if (value.is_string()) {
        return printable(value.get<std::string>());
    }
    return value.is_number_float() ? fmt::format("{}", value.get<double>()) : value.dump();
}

void get(const GetOptions& options, const Context& context) {
    const ModelFile model = read_model(options.file);
    for (const std::string& line : model.damage) {
        warn(fmt::format("{}: {}", options.file, printable_line(line)));
    }
    const std::optional<Parameter> parameter =
        find_parameter(*model.store, options.name, kind_named(options.type), options.file);
    if (!parameter) {
        throw Failure(exit_usage, fmt::format("{}: {}", options.file, unknown_parameter(*model.store, options.name)));
    }
    const Json value = value_of(*model.store, *parameter);
    if (!options.json) {
        context.print(plain_text(value) + '\n');
        return;
    }
    Json document;
    document["file"] = valid_utf8(options.file);
    document["category"] = valid_utf8(parameter->name.category);
    document["key"] = valid_utf8(parameter->name.key);
    document["type"] = word_of(parameter->kind);
    document["value"] = value;
    context.print(json_text(document));
}

}  // namespace

void add_get(CLI::App& app, Context& context) {
    CLI::App* get_app = app.add_subcommand("get", "Print the value of one parameter of a KZB file");
    const auto options = std::make_shared<GetOptions>();
    get_app->add_option("model", options->file, "KZB file")->required()->type_name("MODEL");
    get_app->add_option("key", options->name, "Parameter as CATEGORY/KEY")->required()->type_name("KEY");
    get_app->add_option("--type", options->type, "Which of several parameters of that name")
        ->check(CLI::IsMember(kind_words()));
    get_app->add_flag("--json", options->json, "JSON on stdout");
    get_app->callback([options, &context] { context.action = [options, &context] { get(*options, context); }; });
}

}  // namespace kzb::tool
