// The work of `kzb build wfsm`: inductances or a flux map in, KZB model of a wound-field synchronous machine out.
//
//   current_flux/flux               linkage of U, V, W, F       (first, second, field, position, component)
//   harmonic_inductance/inductance  incremental, element 4 * column + row of (U, V, W, F)
//   harmonic_torque/torque_ibeta    torque                      (first, second, field, position)
// first and second are amplitude (A peak) and phase (degrees) from a map (current_type 1), d and q current in the
// power-invariant frame, sqrt(3/2) times peak, from inductances (current_type 0). Position in mechanical degrees.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kzb/build_grids.h"
#include "kzb/build_model.h"
#include "kzb/wfsm_machine.h"

namespace kzb::tool {

// What the field quantities of the parameters are: referred to the stator with the power 1.5 v_e i_e and a symmetric
// inductance matrix, or those of the field winding itself.
enum class FieldForm { referred, winding };

struct WfsmOptions {
    std::string parameter_path;  // empty: all by `parameters`
    std::string map_path;        // empty: constant inductances
    std::string out_path;
    std::string form = "binary";
    std::vector<std::string> parameters;
    FieldForm field_form = FieldForm::referred;
    double field_leakage = 0.0;  // leakage factor of field winding and d axis, for a map; 0: the least possible
    int connection = 0;
    double zero_inductance = 0.0;
    double position_step = 0.0;       // electrical degrees; 0: 1 for inductances, 5 for a map
    double phase_step = 15.0;         // degrees
    std::size_t amplitude_parts = 2;  // nodes of the tables in each interval of the map
    double current_max = 1e5;         // A, of tables from inductances
    std::string title;
    std::string preparer;
    std::map<std::string, double> information;
};

struct WfsmBuild {
    double pole_pairs = 1.0;
    double resistance = 0.0;
    double field_resistance = 0.0;  // of the field winding itself
    std::optional<WoundFieldMap> map;
    WoundFieldConstants constants;
    std::unique_ptr<WoundFieldMachine> machine;
    bool polar = false;  // current_type 1
    TableAxis first, second, field, position;
    StorePointer store;
    std::vector<std::string> notes;
};

// All in memory: nothing is written.
WfsmBuild build_wfsm(const WfsmOptions& options);

}  // namespace kzb::tool
