// `kzb build im`: options, account as text and as JSON.
#include <CLI/CLI.hpp>
#include <memory>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/account_figures.h"
#include "kzb/build.h"
#include "kzb/build_im.h"
#include "kzb/build_pmsm.h"
#include "kzb/build_words.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/im_deviation.h"
#include "kzb/im_parameters.h"
#include "kzb/json.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct ImWords {
    ImOptions im;
    std::vector<std::string> information;
    bool json = false;
};

const char* application_name(const ImOptions& options) {
    return options.application == ImApplication::tables ? "InductionParam_HigherAccuracy" : "InductionParam";
}

std::string axis_line(const char* name, const TableAxis& axis, const char* unit) {
    return axis.nodes.empty() ? std::string()
                              : fmt::format("  {:<9} {:g} to {:g} {}, {} nodes\n", name, axis.nodes.front(),
                                            axis.nodes.back(), unit, axis.nodes.size());
}

std::string text_of(const ImOptions& options, const ImBuild& build, const std::vector<ImDeviationReport>& reports) {
    std::string text =
        fmt::format("{}: IM {}, {} poles, {} bytes\n", printable_line(options.out_path), application_name(options),
                    2 * static_cast<int>(build.circuit.pole_pairs), size_of_file(options.out_path));
    text += axis_line("slip", build.slip, "Hz");
    text += axis_line("current", build.current, "A peak");
    for (const ImDeviationReport& report : reports) {
        text += fmt::format("\ndeviation from {} points of the {}", report.points, report.against);
        if (report.left_out > 0) {
            text += fmt::format(" ({} beyond the tables left out)", report.left_out);
        }
        text += fmt::format("\n  {:<16}{:>14}{:>14}{:>14}   {}\n", "", "largest", "rms", "largest/max", "at");
        for (const ImDeviation& d : report.deviations) {
            text += fmt::format("  {:<16}{:>11.4g} {:<2}{:>11.4g} {:<2}{:>12.2g} %   {}\n", d.quantity, d.largest,
                                d.unit, d.rms, d.unit, percent_of(d.largest, d.scale), printable_line(d.at));
        }
    }
    return text;
}

Json axis_span(const TableAxis& axis) {
    return {{"first", axis.nodes.front()}, {"last", axis.nodes.back()}, {"nodes", axis.nodes.size()}};
}

Json json_of(const ImOptions& options, const ImBuild& build, const std::vector<ImDeviationReport>& reports) {
    Json account{{"file", valid_utf8(options.out_path)},
                 {"bytes", size_of_file(options.out_path)},
                 {"motor", "IM"},
                 {"application", application_name(options)},
                 {"number_of_poles", 2 * static_cast<int>(build.circuit.pole_pairs)},
                 {"axes", Json::object()}};
    if (!build.slip.nodes.empty()) {
        account["axes"] = {{"slip_Hz", axis_span(build.slip)}, {"current_A", axis_span(build.current)}};
    }
    account["notes"] = build.notes;
    account["deviations"] = Json::array();
    for (const ImDeviationReport& report : reports) {
        Json entry{{"against", report.against}, {"points", report.points}, {"left_out", report.left_out}};
        for (const ImDeviation& d : report.deviations) {
            entry[d.quantity] = {
                {"unit", d.unit}, {"largest", d.largest}, {"rms", d.rms}, {"scale", d.scale}, {"at", valid_utf8(d.at)}};
        }
        account["deviations"].push_back(std::move(entry));
    }
    return account;
}

void refuse_over_inputs(const ImOptions& options) {
    const std::pair<const std::string*, const char*> inputs[] = {
        {&options.parameter_path, "the file of parameters"},
        {&options.saturation_path, "the magnetizing curve"},
        {&options.operating_point_path, "the operating point"},
    };
    for (const auto& [path, what] : inputs) {
        if (!path->empty()) {
            refuse_over_input(options.out_path, *path, what);
        }
    }
}

void run(ImWords words, const Context& context) {
    ImOptions& options = words.im;
    options.information = read_information(words.information);
    refuse_over_inputs(options);
    const ImBuild build = build_im(options);
    for (const std::string& note : build.notes) {
        tell("note: " + note);
    }
    const StorePointer written = write_model(build.store.get(), options.out_path, options.form);
    const std::vector<ImDeviationReport> reports = compare_im(written.get(), build, options);
    context.print(words.json ? json_text(json_of(options, build, reports)) : text_of(options, build, reports));
}

void add_source_options(CLI::App& app, ImWords& words) {
    ImOptions& im = words.im;
    app.add_option("parameters", im.parameter_path, "Parameters: CSV with name, value, unit, or TOML; may be left out");
    app.add_option("-o,--out", im.out_path, "KZB file to write")->required();
    app.add_option("--form", im.form, "binary or ascii [binary]")->check(CLI::IsMember({"binary", "ascii"}));
    app.add_option("--parameter", im.parameters,
                   "QUANTITY=NUMBER in SI, or QUANTITY=NAME of the file; see the documentation for the quantities");
    add_choice<CircuitForm>(
        app, "--circuit", im.circuit,
        {{"t", CircuitForm::t}, {"gamma", CircuitForm::gamma}, {"inverse-gamma", CircuitForm::inverse_gamma}},
        "Form of the equivalent circuit: t, gamma (all leakage in the rotor), inverse-gamma (all in the stator) [t]");
    app.add_option("--saturation", im.saturation_path, "Magnetizing curve: CSV of current and flux linkage");
    app.add_option("--operating-point", im.operating_point_path,
                   "Published operating point to compare with: CSV with name, value, unit");
    app.add_flag("--json", words.json, "Account as JSON");
}

void add_model_options(CLI::App& app, ImWords& words) {
    ImOptions& im = words.im;
    add_choice<ImApplication>(
        app, "-a,--application", im.application,
        {{"InductionParam", ImApplication::constants}, {"InductionParam_HigherAccuracy", ImApplication::tables}},
        "InductionParam: constants, for constant speed; InductionParam_HigherAccuracy: tables over slip and current "
        "[InductionParam_HigherAccuracy]");
    add_choice<int>(app, "--connection", im.connection, {{"star", 0}, {"delta", 1}}, "star or delta [star]");
    app.add_option("--slip-max", im.slip_max, "Largest slip frequency of the tables, Hz [twice the rated frequency]")
        ->check(positive_number());
    app.add_option("--slip-nodes", im.slip_nodes, "Nodes from slip 0 to the largest [41]")
        ->check(number_in(2, 2000, "a whole number from 2 to 2000"));
    app.add_option("--current-max", im.current_max,
                   "Largest primary current of the tables, A peak [2.5 times that of the locked rotor]")
        ->check(positive_number());
    app.add_option("--current-nodes", im.current_nodes, "Nodes over current, 0 included [121]")
        ->check(number_in(2, 2000, "a whole number from 2 to 2000"));
    app.add_option("--base-primary-temperature", im.base_primary_temperature,
                   "Temperature of the primary resistance, K; a run is at 293.15 unless told")
        ->check(positive_number());
    app.add_option("--base-secondary-temperature", im.base_secondary_temperature,
                   "Temperature of the secondary resistance, K")
        ->check(positive_number());
    app.add_option("--primary-coefficient", im.primary_coefficient,
                   "Change of the primary resistance, ppm/K; without it a model changes by 1 ppm/K")
        ->check(positive_number());
    app.add_option("--secondary-coefficient", im.secondary_coefficient, "The same of the secondary resistance")
        ->check(positive_number());
    app.add_option("--title", im.title, "Title of the model [name of the file]");
    app.add_option("--preparer", im.preparer, "Preparer of the model");
    app.add_option("--info", words.information, information_help());
}

}  // namespace

void add_build_im(CLI::App& build, Context& context) {
    CLI::App* app = build.add_subcommand("im", "Makes an induction machine from its equivalent circuit");
    const auto words = std::make_shared<ImWords>();
    add_source_options(*app, *words);
    add_model_options(*app, *words);
    app->callback([words, &context] { context.action = [words, &context] { run(*words, context); }; });
}

}  // namespace kzb::tool
