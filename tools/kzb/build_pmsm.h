// The work of `kzb build pmsm`: CSV flux map in, KZB model out, with an account of what was done and how near it came.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kzb/build_deviation.h"
#include "kzb/build_grids.h"
#include "kzb/build_machine_map.h"
#include "kzb/build_model.h"
#include "kzb/build_source_map.h"

namespace kzb::tool {

struct PmsmOptions {
    std::string map_path;
    std::string out_path;
    SourceOptions source;  // pole_pairs is taken from model.number_of_poles
    MachineOptions machine;
    GridOptions grids;
    ModelOptions model;
    std::string method = "Linear";  // of the comparison with the map
};

// All in memory: nothing is written.
struct PmsmBuild {
    SourceMap source;
    MachineOptions machine;
    TableGrids grids;
    BuiltModel model;
    std::vector<std::string> notes;  // what was assumed, continued or left out
};

PmsmBuild build_pmsm(const PmsmOptions& options);

// Comparison of each application of the model in `store` with the source map.
std::vector<DeviationReport> compare_pmsm(KZB_STORE* store, const PmsmBuild& build, const PmsmOptions& options);

// Writes the model whole or not at all, and gives back what a reader of the file sees, all tables loaded. `form` is
// "binary" or "ascii".
StorePointer write_model(KZB_STORE* store, const std::string& path, const std::string& form = "binary");

}  // namespace kzb::tool
