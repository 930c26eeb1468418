// `kzb build sr`: options and account.
#include <CLI/CLI.hpp>
#include <memory>

#include "kzb/build.h"
#include "kzb/build_sr.h"
#include "kzb/build_words.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

void run(const SrOptions& options, const Context& context) {
    refuse_over_inputs(options.common);
    if (!options.mutual_path.empty()) {
        refuse_over_input(options.common.out_path, options.mutual_path, "the map of the coupling");
    }
    const SrBuild build = build_sr(options);
    tell_notes(build.notes);
    const StorePointer written = write_model(build.store.get(), options.common.out_path, options.common.form);
    const Outcome outcome = compare_sr(written.get(), build, options);
    context.print(options.common.json ? json_text(json_of(outcome)) : text_of(outcome));
}

}  // namespace

void add_build_sr(CLI::App& build, Context& context) {
    CLI::App* app = build.add_subcommand("sr", "Makes a switched reluctance machine from the map of one phase");
    const auto options = std::make_shared<SrOptions>();
    add_map_options(*app, options->common, "Map of one phase: CSV with theta_mech, current, psi and, if known, torque");
    add_coil_options(*app, options->common);
    app->add_option("--mutual", options->mutual_path,
                    "Flux linkage of the next phase: CSV with theta_mech, current, psi_neighbour");
    add_choice<double>(*app, "--closing-coupling", options->closing_sign, {{"opposite", -1.0}, {"same", 1.0}},
                       "Sign of the coupling between the last phase and the first [opposite]");
    app->callback([options, &context] { context.action = [options, &context] { run(*options, context); }; });
}

}  // namespace kzb::tool
