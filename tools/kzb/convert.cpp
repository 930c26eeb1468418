// kzb convert: a copy of a KZB file in a given form, with a report of what that form cannot hold.
#include <CLI/CLI.hpp>
#include <memory>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/model_rewrite.h"

namespace kzb::tool {

namespace {

void convert(const RewriteOptions& options, const Context& context) {
    const RewriteReport report = rewrite_model(options);
    context.print(options.json
                      ? json_text(json_of(report))
                      : fmt::format("{}: {} form, {} categories, {} values, {} changed\n", options.output, options.form,
                                    report.categories, report.difference.values, report.difference.values_changed));
}

}  // namespace

void add_convert(CLI::App& app, Context& context) {
    CLI::App* convert_app = app.add_subcommand("convert", "Copy a KZB file into the ascii or the binary form");
    const auto options = std::make_shared<RewriteOptions>();
    convert_app->add_option("input", options->input, "KZB file")->required()->type_name("IN");
    convert_app->add_option("output", options->output, "File to write; may be the input")->required()->type_name("OUT");
    convert_app->add_option("--form", options->form, "Form to write")
        ->required()
        ->check(CLI::IsMember({"ascii", "binary"}));
    convert_app->add_flag("--json", options->json, "Report as JSON on stdout");
    convert_app->callback(
        [options, &context] { context.action = [options, &context] { convert(*options, context); }; });
}

}  // namespace kzb::tool
