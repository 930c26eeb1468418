// `kzb build stepper`: options and account.
#include <CLI/CLI.hpp>
#include <memory>

#include "kzb/build.h"
#include "kzb/build_stepper.h"
#include "kzb/build_words.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

void run(const StepperOptions& options, const Context& context) {
    refuse_over_inputs(options.common);
    const StepperBuild build = build_stepper(options);
    tell_notes(build.notes);
    const StorePointer written = write_model(build.store.get(), options.common.out_path, options.common.form);
    const Outcome outcome = compare_stepper(written.get(), build, options);
    context.print(options.common.json ? json_text(json_of(outcome)) : text_of(outcome));
}

}  // namespace

void add_build_stepper(CLI::App& build, Context& context) {
    CLI::App* app = build.add_subcommand("stepper", "Makes a two-phase stepping motor from closed forms");
    const auto options = std::make_shared<StepperOptions>();
    add_coil_options(*app, options->common);
    app->add_option("--position-nodes", options->position_nodes, "Nodes over an electrical period [121]")
        ->check(number_in(5, 20000, "a whole number from 5 to 20000"));
    app->add_option("--current-nodes", options->current_nodes,
                    "Nodes over the difference of two currents [3, with saliency 17]")
        ->check(number_in(3, 401, "a whole number from 3 to 401"));
    app->callback([options, &context] { context.action = [options, &context] { run(*options, context); }; });
}

}  // namespace kzb::tool
