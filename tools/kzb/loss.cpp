// kzb loss: a copy of a KZB file with a table of iron loss or of equivalent copper-loss resistance.
#include <CLI/CLI.hpp>
#include <memory>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/measured_file.h"
#include "kzb/model_rewrite.h"
#include "kzb/output_file.h"
#include "kzb/repeated_point.h"

namespace kzb::tool {

namespace {

struct LossOptions {
    RewriteOptions rewrite;
    std::string table;
    std::string kind;
};

void loss(const LossOptions& options, const Context& context) {
    refuse_same_file(options.rewrite.output, options.table, "the loss table");
    Edit edit;
    edit.change = [&options](KZB_STORE& store, Remarks&) {
        take_in(store, options.table, "a loss table",
                options.kind == "iron" ? kzb_add_loss_table : kzb_add_equivalent_copper_loss_resistance_table);
        if (const auto repeated = repeated_point(options.table)) {
            throw Failure(
                exit_file,
                fmt::format("{}: line {}: the point of line {} once more, expected each point of the grid once",
                            options.table, repeated->line, repeated->first));
        }
        if (options.kind == "copper") {
            require_usable_table(store, "equivalent_resistance_table", "copper_loss", options.table);
        } else if (get_int(store, "control", "motor_type") == 10008) {
            require_usable_table(store, "ironloss", "table", options.table);
        } else {
            require_usable_table(store, "loss_table", "iron_loss", options.table);
        }
    };
    context.print(outcome_text(rewrite_model(options.rewrite, &edit)));
}

}  // namespace

void add_loss(CLI::App& app, Context& context) {
    CLI::App* loss_app = app.add_subcommand("loss", "Copy a KZB file with a table of iron or copper loss");
    const auto options = std::make_shared<LossOptions>();
    add_rewrite_options(*loss_app, options->rewrite);
    loss_app->add_option("table", options->table, "Loss table, text with one point per line")
        ->required()
        ->type_name("TABLE");
    loss_app->add_option("--kind", options->kind, "iron: iron loss; copper: equivalent copper-loss resistance")
        ->required()
        ->check(CLI::IsMember({"iron", "copper"}));
    loss_app->callback([options, &context] { context.action = [options, &context] { loss(*options, context); }; });
}

}  // namespace kzb::tool
