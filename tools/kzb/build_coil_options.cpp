#include "kzb/build_coil_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_origin.h"
#include "kzb/build_words.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/text.h"

namespace kzb::tool {

void add_coil_options(CLI::App& app, CoilBuildOptions& options) {
    app.add_option("-o,--out", options.out_path, "KZB file to write")->required();
    app.add_option("--form", options.form, "binary or ascii [binary]")->check(CLI::IsMember({"binary", "ascii"}));
    app.add_option("--parameters", options.parameter_path, "Parameters: CSV with name, value, unit, or TOML");
    app.add_option("--parameter", options.parameters,
                   "QUANTITY=NUMBER in SI, or QUANTITY=NAME of the file; see the documentation for the quantities");
    app.add_option("--turns", options.turns_in_coil, "Turns in a coil, for turn corrections [not told]")
        ->check(positive_number());
    app.add_option("--base-coil-temperature", options.base_coil_temperature,
                   "Temperature of the resistance, K; a run is at 293.15 unless told")
        ->check(positive_number());
    app.add_option("--title", options.title, "Title of the model [name of the source]");
    app.add_option("--preparer", options.preparer, "Preparer of the model");
    app.add_option("--info", options.information, information_help());
    app.add_option("--interpolation", options.method,
                   "Scheme of the comparison with the source: Linear, Cubic, Spline4, Spline6, Spline [Linear]")
        ->check(CLI::IsMember({"Linear", "Cubic", "Spline4", "Spline6", "Spline"}));
    app.add_flag("--json", options.json, "Account as JSON");
}

void add_map_options(CLI::App& app, CoilBuildOptions& options, const std::string& help) {
    app.add_option("map", options.map_path, help)->required();
    app.add_option("--column", options.columns, "QUANTITY=HEADER[:UNIT]: the column of a quantity");
    app.add_option("--position-nodes", options.position_nodes, "Even nodes over the position [those of the map]")
        ->check(number_in(3, 20000, "a whole number from 3 to 20000"));
    app.add_option("--current-nodes", options.current_nodes, "Even nodes over the current, 0 included [of the map]")
        ->check(number_in(2, 20000, "a whole number from 2 to 20000"));
    app.add_option("--current-max", options.current_max, "Largest current of the tables, A [that of the map]")
        ->check(positive_number());
}

std::map<std::string, std::string> columns_of(const CoilBuildOptions& options,
                                              const std::vector<std::string>& quantities) {
    std::map<std::string, std::string> columns;
    for (const std::string& text : options.columns) {
        const auto [quantity, header] = split_assignment("--column", text, "QUANTITY=HEADER or QUANTITY=HEADER:UNIT");
        if (std::find(quantities.begin(), quantities.end(), quantity) == quantities.end()) {
            throw Failure(exit_usage,
                          fmt::format("--column {}: unknown quantity \"{}\", expected one of {}", printable_line(text),
                                      printable_line(quantity), fmt::join(quantities, ", ")));
        }
        columns[quantity] = header;
    }
    return columns;
}

Parameters parameters_of(const CoilBuildOptions& options, const std::vector<ParameterQuantity>& known) {
    return Parameters(ParameterFile::read(options.parameter_path), options.parameters, known);
}

StorePointer coil_model(const CoilBuildOptions& options, int motor_type, const char* resistance_key,
                        double resistance) {
    StorePointer store = open_store();
    put_version(store.get());
    kzb_put_int("control", "motor_type", motor_type, store.get());
    put_if_told(store.get(), "control", "turns_in_coil", options.turns_in_coil);
    put_if_told(store.get(), "control", "base_coil_temperature", options.base_coil_temperature);
    kzb_put_double("parameter", resistance_key, resistance, store.get());
    const std::string& source = options.map_path.empty() ? options.parameter_path : options.map_path;
    const std::string name = std::filesystem::path(source).filename().string();
    put_origin(store.get(), {options.title.empty() ? name : options.title, options.preparer, name,
                             read_information(options.information)});
    return store;
}

TableAxis current_axis(const CoilBuildOptions& options, const std::vector<double>& own) {
    const double largest = options.current_max > 0.0 ? options.current_max : own.back();
    if (largest > own.back()) {
        throw Failure(exit_usage,
                      fmt::format("--current-max {:g}: the map ends at {:g} A, expected no more", largest, own.back()));
    }
    if (options.current_nodes > 0) {
        return {even_nodes(0.0, largest, options.current_nodes), false};
    }
    TableAxis axis;
    std::copy_if(own.begin(), own.end(), std::back_inserter(axis.nodes), [=](double i) { return i < largest; });
    axis.nodes.push_back(largest);
    return axis;
}

TableAxis signed_axis(const TableAxis& axis) {
    TableAxis both;
    for (std::size_t n = axis.nodes.size(); n-- > 1;) {
        both.nodes.push_back(-axis.nodes[n]);
    }
    both.nodes.insert(both.nodes.end(), axis.nodes.begin(), axis.nodes.end());
    return both;
}

void refuse_over_inputs(const CoilBuildOptions& options) {
    if (!options.map_path.empty()) {
        refuse_over_input(options.out_path, options.map_path, "the map");
    }
    if (!options.parameter_path.empty()) {
        refuse_over_input(options.out_path, options.parameter_path, "the file of parameters");
    }
}

void tell_notes(const std::vector<std::string>& notes) {
    for (const std::string& note : notes) {
        tell("note: " + note);
    }
}

}  // namespace kzb::tool
