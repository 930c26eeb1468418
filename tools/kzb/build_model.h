// The KZB model of a permanent-magnet synchronous machine around its tables: control, parameter, information, version.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kzb/build_applications.h"
#include "kzb/store_pointer.h"

namespace kzb::tool {

enum class Application { LdLq, SimpleHarmonic, Harmonic, FluxIntegralDQTheta };

const char* name_of(Application application);
// The value of control/accuracy_type that lets a model use these applications. Failure(exit_usage) for a set that one
// file cannot serve.
int accuracy_type_of(const std::vector<Application>& applications);

struct ModelOptions {
    std::vector<Application> applications{Application::Harmonic};
    ApplicationOptions tables;
    int number_of_poles = 2;
    double resistance = 0.0;               // ohm, of one winding
    double leakage_inductance = 0.0;       // H, of one winding, beside the map
    int connection = 0;                    // 0 star, 1 delta
    double turns_in_coil = 0.0;            // 0: not told
    double base_coil_temperature = 0.0;    // K; 0: not told
    double base_magnet_temperature = 0.0;  // K; 0: not told
    std::string title;
    std::string preparer;
    std::string input_file_name;
    std::map<std::string, double> information;  // rated_power, inertia, ..
};

// Keys of ModelOptions::information.
const std::vector<std::string>& information_keys();

struct BuiltModel {
    StorePointer store;
    FluxRange flux_range{};  // of FluxIntegralDQTheta
};

BuiltModel make_model(const MachineMap& map, const TableGrids& grids, const ModelOptions& options,
                      const std::string& source_name);

}  // namespace kzb::tool
