// What the builds of machines of separate coils have in common: their options, and the frame of their models.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kzb/build_model.h"
#include "kzb/build_outcome.h"
#include "kzb/parameter_file.h"

namespace CLI {
class App;
}

namespace kzb::tool {

struct CoilBuildOptions {
    std::string map_path;
    std::string parameter_path;           // empty: all by `parameters`
    std::vector<std::string> parameters;  // QUANTITY=NUMBER or QUANTITY=NAME
    std::vector<std::string> columns;     // QUANTITY=HEADER[:UNIT]
    std::string out_path;
    std::string form = "binary";
    std::size_t position_nodes = 0;  // 0: those of the map
    std::size_t current_nodes = 0;
    double current_max = 0.0;  // A; 0: that of the map
    double turns_in_coil = 0.0;
    double base_coil_temperature = 0.0;  // K; 0: not told
    std::string title;
    std::string preparer;
    std::vector<std::string> information;
    std::string method = "Linear";  // of the comparison with the source
    bool json = false;
};

// The options of every such build, and those of one that starts from a map.
void add_coil_options(CLI::App& app, CoilBuildOptions& options);
void add_map_options(CLI::App& app, CoilBuildOptions& options, const std::string& help);

// The words of --column, each for one of `quantities`. Failure(exit_usage) for another.
std::map<std::string, std::string> columns_of(const CoilBuildOptions& options,
                                              const std::vector<std::string>& quantities);
Parameters parameters_of(const CoilBuildOptions& options, const std::vector<ParameterQuantity>& known);

// A store with version, origin and motor type; the resistance under `resistance_key` of the parameters.
StorePointer coil_model(const CoilBuildOptions& options, int motor_type, const char* resistance_key, double resistance);

// Nodes over the current from 0 to the largest: `own` up to there, or as many as asked for, evenly.
TableAxis current_axis(const CoilBuildOptions& options, const std::vector<double>& own);
// The same on both sides of 0.
TableAxis signed_axis(const TableAxis& axis);

// Refuses a result over one of the inputs, tells the notes, and prints the outcome.
void refuse_over_inputs(const CoilBuildOptions& options);
void tell_notes(const std::vector<std::string>& notes);

}  // namespace kzb::tool
