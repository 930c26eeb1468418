#include "kzb/build.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_columns.h"
#include "kzb/build_words.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/csv_table.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

// What the command line gives in words.
struct PmsmWords {
    PmsmOptions pmsm;
    std::vector<std::string> applications{"Harmonic"};
    std::vector<std::string> columns;
    std::vector<std::string> information;
    double position_step = 5.0;
    bool json = false;
};

// Each application once.
void read_applications(PmsmWords& words) {
    using enum Application;
    std::vector<Application>& wanted = words.pmsm.model.applications;
    wanted.clear();
    for (const Application application : {LdLq, SimpleHarmonic, Harmonic, FluxIntegralDQTheta}) {
        const auto& names = words.applications;
        if (std::find(names.begin(), names.end(), name_of(application)) != names.end()) {
            wanted.push_back(application);
        }
    }
    static_cast<void>(accuracy_type_of(wanted));  // refuses a set that one file cannot serve
}

void read_columns(PmsmWords& words) {
    for (const std::string& text : words.columns) {
        const auto [quantity, header] = split_assignment("--column", text, "QUANTITY=HEADER or QUANTITY=HEADER:UNIT");
        if (!is_quantity(quantity)) {
            throw Failure(exit_usage, fmt::format("--column {}: unknown quantity \"{}\", expected one of {}",
                                                  printable_line(text), printable_line(quantity), quantity_names()));
        }
        words.pmsm.source.columns[quantity] = header;
    }
}

void complete(PmsmWords& words) {
    read_applications(words);
    read_columns(words);
    words.pmsm.model.information = read_information(words.information);
    PmsmOptions& options = words.pmsm;
    if (options.model.number_of_poles % 2 != 0) {
        throw Failure(exit_usage, fmt::format("--poles {}: expected an even number", options.model.number_of_poles));
    }
    static_cast<void>(whole_steps("--phase-step", 90.0, options.grids.phase_step));
    options.machine.position_count = whole_steps("--position-step", 360.0, words.position_step);
    std::error_code ignored;
    if (std::filesystem::equivalent(options.map_path, options.out_path, ignored)) {
        throw Failure(exit_usage, fmt::format("--out {}: is the map itself, expected another file", options.out_path));
    }
    const std::string stem = std::filesystem::path(options.map_path).filename().string();
    options.model.input_file_name = stem;
    if (options.model.title.empty()) {
        options.model.title = stem;
    }
}

void run(PmsmWords words, const Context& context) {
    complete(words);
    const PmsmOptions& options = words.pmsm;
    const PmsmBuild build = build_pmsm(options);
    for (const std::string& note : build.notes) {
        tell("note: " + note);
    }
    const StorePointer written = write_model(build.model.store.get(), options.out_path);
    const std::vector<DeviationReport> reports = compare_pmsm(written.get(), build, options);
    context.print(words.json ? json_account(options, build, reports).dump(2) + "\n"
                             : text_account(options, build, reports));
}

void add_file_options(CLI::App& app, PmsmWords& words) {
    app.add_option("map", words.pmsm.map_path,
                   "Flux map: CSV with id, iq, psi_d, psi_q and, if known, theta_e, psi_0, "
                   "torque")
        ->required();
    app.add_option("-o,--out", words.pmsm.out_path, "KZB file to write")->required();
    app.add_option("--column", words.columns,
                   "QUANTITY=HEADER[:UNIT]: the column of a quantity (" + quantity_names() + ")");
    add_choice<DqFrame>(
        app, "--frame", words.pmsm.source.frame,
        {{"peak", DqFrame::amplitude_peak}, {"rms", DqFrame::amplitude_rms}, {"power", DqFrame::power_invariant}},
        "dq quantities of the map: peak or rms of the phase, or power-invariant [peak]");
    app.add_flag("--json", words.json, "Account as JSON");
}

void add_machine_options(CLI::App& app, PmsmWords& words) {
    ModelOptions& model = words.pmsm.model;
    app.add_option("-a,--application", words.applications,
                   "LdLq, SimpleHarmonic, Harmonic, FluxIntegralDQTheta, or several with commas [Harmonic]")
        ->delimiter(',')
        ->check(CLI::IsMember({"LdLq", "SimpleHarmonic", "Harmonic", "FluxIntegralDQTheta"}));
    app.add_option("--poles", model.number_of_poles, "Number of poles")
        ->required()
        ->check(number_in(2, 1000, "an even number from 2 to 1000"));
    app.add_option("--resistance", model.resistance, "Resistance of a winding, ohm")
        ->required()
        ->check(not_negative_number());
    app.add_option("--leakage", model.leakage_inductance, "Leakage inductance of a winding beside the map, H [0]")
        ->check(not_negative_number());
    add_choice<int>(app, "--connection", model.connection, {{"star", 0}, {"delta", 1}}, "star or delta [star]");
    app.add_option("--turns", model.turns_in_coil, "Turns in a coil, for turn corrections [not told]")
        ->check(positive_number());
    app.add_option("--beta-zero", words.pmsm.machine.beta_zero,
                   "Electrical degrees of the d axis at position 0 of the tables [0]")
        ->check(number_in(-360.0, 360.0, "degrees from -360 to 360"));
    app.add_option("--zero-inductance", model.tables.zero_inductance,
                   "Inductance of the current common to all windings, H [0]")
        ->check(not_negative_number());
    app.add_option("--base-coil-temperature", model.base_coil_temperature,
                   "Temperature of the resistance, K; a run is at 293.15 unless told")
        ->check(positive_number());
    app.add_option("--base-magnet-temperature", model.base_magnet_temperature,
                   "Magnet temperature of the map, K; a run is at 293.15 unless told")
        ->check(positive_number());
    app.add_option("--title", model.title, "Title of the model [name of the map]");
    app.add_option("--preparer", model.preparer, "Preparer of the model");
    app.add_option("--info", words.information, information_help());
}

void add_grid_options(CLI::App& app, PmsmWords& words) {
    GridOptions& grids = words.pmsm.grids;
    add_choice<Mirror>(app, "--mirror", words.pmsm.machine.mirror, {{"none", Mirror::none}, {"iq", Mirror::iq}},
                       "iq: q currents below zero by mirror symmetry about the d axis [none]");
    add_choice<Outside>(app, "--outside", grids.outside,
                        {{"extrapolate", Outside::extrapolate}, {"limit", Outside::limit}},
                        "Directions of current that the map lacks: extrapolate it linearly, or limit the phase axis "
                        "[extrapolate]");
    app.add_option("--current-max", grids.current_max, "Largest amplitude, A peak [largest circle inside the map]")
        ->check(positive_number());
    app.add_option("--amplitude-nodes", grids.amplitude_nodes, "Nodes over amplitude, 0 included [17]")
        ->check(number_in(2, 2000, "a whole number from 2 to 2000"));
    app.add_option("--phase-step", grids.phase_step, "Degrees, a whole part of 90 [7.5]")
        ->check(number_in(0.01, 90.0, "degrees from 0.01 to 90"));
    app.add_option("--position-step", words.position_step, "Electrical degrees, a whole part of 360 [5]")
        ->check(number_in(0.01, 60.0, "degrees from 0.01 to 60"));
    app.add_option("--flux-nodes", grids.flux_nodes, "Nodes over flux d and q of FluxIntegralDQTheta [51]")
        ->check(number_in(2, 2000, "a whole number from 2 to 2000"));
    app.add_option("--interpolation", words.pmsm.method,
                   "Scheme of the comparison with the map: Linear, Cubic, Spline4, Spline6, Spline [Linear]")
        ->check(CLI::IsMember({"Linear", "Cubic", "Spline4", "Spline6", "Spline"}));
}

}  // namespace

void add_build(CLI::App& app, Context& context) {
    CLI::App* build = app.add_subcommand("build", "Makes a KZB model");
    build->require_subcommand(1);
    CLI::App* pmsm = build->add_subcommand("pmsm", "Makes a permanent-magnet synchronous machine from a flux map");
    const auto words = std::make_shared<PmsmWords>();
    add_file_options(*pmsm, *words);
    add_machine_options(*pmsm, *words);
    add_grid_options(*pmsm, *words);
    pmsm->callback([words, &context] { context.action = [words, &context] { run(*words, context); }; });
    add_build_im(*build, context);
    add_build_wfsm(*build, context);
    add_build_sr(*build, context);
    add_build_solenoid(*build, context);
    add_build_stepper(*build, context);
    add_build_generic(*build, context);
}

}  // namespace kzb::tool
