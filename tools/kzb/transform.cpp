// kzb transform: a copy of a KZB file whose tables were rewritten: skew, expansion of phase symmetry, LdLq, frames.
#include <CLI/CLI.hpp>
#include <memory>

#include "kzb/command.h"
#include "kzb/model_rewrite.h"
#include "kzb/skew_words.h"
#include "kzb/transform_steps.h"

namespace kzb::tool {

namespace {

struct TransformOptions {
    RewriteOptions rewrite;
    std::string kind;
    SkewOptions skew;
};

// TransformOptions of one kind alone that were given with another.
void refuse_foreign_options(const CLI::App& app, const TransformOptions& options) {
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_group() == "Skew" && option->count() > 0 && options.kind != "skew") {
            throw Failure(exit_usage, option->get_name() + ": is an option of skew alone");
        }
    }
}

void add_skew_side(CLI::App& app, const std::string& side, SkewSideOptions& options) {
    app.add_option("--type-" + side, options.type, "Skew " + side + " (default none)")
        ->check(CLI::IsMember(std::vector<std::string>(skew_words.begin(), skew_words.end())))
        ->group("Skew");
    app.add_option("--angle-" + side, options.angle_deg, "Its angle over the stack, mechanical degrees")->group("Skew");
    app.add_option("--steps-" + side, options.steps, "Its steps, for stepped")
        ->check(CLI::Range(2, 1000))
        ->group("Skew");
}

}  // namespace

void add_transform(CLI::App& app, Context& context) {
    CLI::App* transform_app =
        app.add_subcommand("transform", "Copy a KZB file with rewritten tables: skew, expand, ldlq, dq0, uvw");
    const auto options = std::make_shared<TransformOptions>();
    add_rewrite_options(*transform_app, options->rewrite);
    transform_app
        ->add_option("kind", options->kind,
                     "skew: mean over a skewed stack; expand: full tables in place of half the current phases; ldlq: "
                     "LdLq from Harmonic; dq0, uvw: the other frame of a flux-integral model")
        ->required()
        ->type_name("KIND")
        ->check(CLI::IsMember({"skew", "expand", "ldlq", "dq0", "uvw"}));
    add_skew_side(*transform_app, "a", options->skew.a);
    add_skew_side(*transform_app, "b", options->skew.b);
    transform_app->add_option("--interpolation", options->skew.interpolation, "Scheme of lookups (default linear)")
        ->check(CLI::IsMember({"linear", "cubic", "spline4", "spline6", "spline"}))
        ->group("Skew");
    transform_app->callback([options, transform_app, &context] {
        context.action = [options, transform_app, &context] {
            refuse_foreign_options(*transform_app, *options);
            const Edit edit = transform_edit(options->kind, options->skew, options->rewrite);
            context.print(outcome_text(rewrite_model(options->rewrite, &edit)));
        };
    });
}

}  // namespace kzb::tool
