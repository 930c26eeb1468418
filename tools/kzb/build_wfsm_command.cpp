// `kzb build wfsm`: options, account as text and as JSON.
#include <CLI/CLI.hpp>
#include <memory>

#include "fmt/format.h"
#include "kzb/account_figures.h"
#include "kzb/build.h"
#include "kzb/build_pmsm.h"
#include "kzb/build_wfsm.h"
#include "kzb/build_words.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/json.h"
#include "kzb/text.h"
#include "kzb/wfsm_deviation.h"

namespace kzb::tool {

namespace {

struct WfsmWords {
    WfsmOptions wfsm;
    std::vector<std::string> information;
    bool json = false;
};

struct NamedAxis {
    std::string name;
    std::string unit;
    const TableAxis* axis;
};

std::vector<NamedAxis> axes_of(const WfsmBuild& build) {
    const bool polar = build.polar;
    return {{polar ? "amplitude" : "d_current", polar ? "A peak" : "A power-invariant", &build.first},
            {polar ? "phase" : "q_current", polar ? "deg" : "A power-invariant", &build.second},
            {"field_current", "A", &build.field},
            {"position", "deg mechanical", &build.position}};
}

std::string text_of(const WfsmOptions& options, const WfsmBuild& build, const WfsmDeviationReport& report) {
    std::string text = fmt::format("{}: WFSM Harmonic, {} poles, {} bytes\n", printable_line(options.out_path),
                                   2 * static_cast<int>(build.pole_pairs), size_of_file(options.out_path));
    for (const NamedAxis& a : axes_of(build)) {
        text += fmt::format("  {:<14}{:g} to {:g} {}, {} nodes{}\n", a.name, a.axis->nodes.front(),
                            a.axis->nodes.back(), a.unit, a.axis->nodes.size(), a.axis->cyclic ? ", cyclic" : "");
    }
    text += fmt::format("\ndeviation from {} points of the {}, looked up linearly between two positions\n",
                        report.points, build.map ? "map" : "inductances");
    text += fmt::format("  {:<8}{:>14}{:>14}{:>14}   {}\n", "", "largest", "rms", "largest/max", "at i_f, id, iq");
    for (const WfsmDeviation& d : report.deviations) {
        text += fmt::format("  {:<8}{:>11.4g} {:<2}{:>11.4g} {:<2}{:>12.2g} %   {:g} A, {:g} A, {:g} A\n", d.quantity,
                            d.largest, d.unit, d.rms, d.unit, percent_of(d.largest, d.scale), d.i_f, d.id, d.iq);
    }
    return text;
}

Json json_of(const WfsmOptions& options, const WfsmBuild& build, const WfsmDeviationReport& report) {
    Json account{{"file", valid_utf8(options.out_path)},
                 {"bytes", size_of_file(options.out_path)},
                 {"motor", "WFSM"},
                 {"application", "Harmonic"},
                 {"number_of_poles", 2 * static_cast<int>(build.pole_pairs)},
                 {"axes", Json::object()},
                 {"notes", build.notes},
                 {"points", report.points},
                 {"deviations", Json::object()}};
    for (const NamedAxis& a : axes_of(build)) {
        account["axes"][a.name] = {{"first", a.axis->nodes.front()},
                                   {"last", a.axis->nodes.back()},
                                   {"nodes", a.axis->nodes.size()},
                                   {"unit", a.unit},
                                   {"cyclic", a.axis->cyclic}};
    }
    for (const WfsmDeviation& d : report.deviations) {
        account["deviations"][d.quantity] = {{"unit", d.unit},   {"largest", d.largest}, {"rms", d.rms},
                                             {"scale", d.scale}, {"at_if_A", d.i_f},     {"at_id_A", d.id},
                                             {"at_iq_A", d.iq}};
    }
    return account;
}

void run(WfsmWords words, const Context& context) {
    WfsmOptions& options = words.wfsm;
    options.information = read_information(words.information);
    if (!options.parameter_path.empty()) {
        refuse_over_input(options.out_path, options.parameter_path, "the file of parameters");
    }
    if (!options.map_path.empty()) {
        refuse_over_input(options.out_path, options.map_path, "the map");
    }
    const WfsmBuild build = build_wfsm(options);
    for (const std::string& note : build.notes) {
        tell("note: " + note);
    }
    const StorePointer written = write_model(build.store.get(), options.out_path, options.form);
    const WfsmDeviationReport report = compare_wfsm(written.get(), build);
    context.print(words.json ? json_text(json_of(options, build, report)) : text_of(options, build, report));
}

void add_options(CLI::App& app, WfsmWords& words) {
    WfsmOptions& wfsm = words.wfsm;
    app.add_option("parameters", wfsm.parameter_path,
                   "Parameters: CSV with name, value, unit, or TOML; may be left out");
    app.add_option("-o,--out", wfsm.out_path, "KZB file to write")->required();
    app.add_option("--form", wfsm.form, "binary or ascii [binary]")->check(CLI::IsMember({"binary", "ascii"}));
    app.add_option("--parameter", wfsm.parameters,
                   "QUANTITY=NUMBER in SI, or QUANTITY=NAME of the file; see the documentation for the quantities");
    app.add_option("--map", wfsm.map_path,
                   "Flux map: CSV with i_f, i, beta, psi_d, psi_q and, if known, torque [constant inductances]");
    add_choice<FieldForm>(app, "--field", wfsm.field_form,
                          {{"referred", FieldForm::referred}, {"winding", FieldForm::winding}},
                          "Field parameters: referred to the stator, or of the field winding itself [referred]");
    app.add_option("--field-leakage", wfsm.field_leakage,
                   "Leakage factor 1 - 1.5 M^2 / (L_d L_f) that completes a map [the least for which the "
                   "inductances stay positive definite at its points]")
        ->check(number_in(0.001, 0.9, "a number from 0.001 to 0.9"));
    add_choice<int>(app, "--connection", wfsm.connection, {{"star", 0}, {"delta", 1}}, "star or delta [star]");
    app.add_option("--zero-inductance", wfsm.zero_inductance, "Inductance of the current common to all windings, H [0]")
        ->check(not_negative_number());
    app.add_option("--position-step", wfsm.position_step,
                   "Electrical degrees, a whole part of 360 [1 for inductances, 5 for a map]")
        ->check(number_in(0.01, 60.0, "degrees from 0.01 to 60"));
    app.add_option("--phase-step", wfsm.phase_step, "Degrees, a whole part of 90, for a map [15]")
        ->check(number_in(0.01, 90.0, "degrees from 0.01 to 90"));
    app.add_option("--amplitude-parts", wfsm.amplitude_parts, "Parts of each interval of the map's currents [2]")
        ->check(number_in(1, 100, "a whole number from 1 to 100"));
    app.add_option("--current-max", wfsm.current_max, "Reach of tables from inductances, A [100000]")
        ->check(positive_number());
    app.add_option("--title", wfsm.title, "Title of the model [name of the file]");
    app.add_option("--preparer", wfsm.preparer, "Preparer of the model");
    app.add_option("--info", words.information, information_help());
    app.add_flag("--json", words.json, "Account as JSON");
}

}  // namespace

void add_build_wfsm(CLI::App& build, Context& context) {
    CLI::App* app = build.add_subcommand("wfsm", "Makes a wound-field synchronous machine from inductances or a map");
    const auto words = std::make_shared<WfsmWords>();
    add_options(*app, *words);
    app->callback([words, &context] { context.action = [words, &context] { run(*words, context); }; });
}

}  // namespace kzb::tool
