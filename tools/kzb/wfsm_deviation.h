// How far a written model of a wound-field machine is from its source: each point of the map, or of a grid of currents
// for constant inductances, looked up the way the model does, halfway between two positions of the tables.
#pragma once

#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "kzb/build_wfsm.h"

namespace kzb::tool {

struct WfsmDeviation {
    std::string quantity;
    std::string unit;
    double largest = 0.0;
    double rms = 0.0;
    double scale = 0.0;
    double i_f = 0.0;  // where the largest deviation lies
    double id = 0.0;
    double iq = 0.0;
};

struct WfsmDeviationReport {
    std::size_t points = 0;
    std::vector<WfsmDeviation> deviations;  // psi_d, psi_q, psi_f, torque as far as the source tells them
};

// `store` holds the written model with its tables loaded.
WfsmDeviationReport compare_wfsm(KZB_STORE* store, const WfsmBuild& build);

}  // namespace kzb::tool
