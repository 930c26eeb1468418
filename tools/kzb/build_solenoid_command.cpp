// `kzb build solenoid`: options and account.
#include <CLI/CLI.hpp>
#include <memory>

#include "kzb/build.h"
#include "kzb/build_solenoid.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

void run(const SolenoidOptions& options, const Context& context) {
    refuse_over_inputs(options.common);
    const SolenoidBuild build = build_solenoid(options);
    tell_notes(build.notes);
    const StorePointer written = write_model(build.store.get(), options.common.out_path, options.common.form);
    const Outcome outcome = compare_solenoid(written.get(), build, options);
    context.print(options.common.json ? json_text(json_of(outcome)) : text_of(outcome));
}

}  // namespace

void add_build_solenoid(CLI::App& build, Context& context) {
    CLI::App* app = build.add_subcommand("solenoid", "Makes a linear solenoid from the map of its coil");
    const auto options = std::make_shared<SolenoidOptions>();
    add_map_options(*app, options->common, "Map of the coil: CSV with x, current, psi and, if known, force");
    add_coil_options(*app, options->common);
    app->callback([options, &context] { context.action = [options, &context] { run(*options, context); }; });
}

}  // namespace kzb::tool
