// How far a written model of an induction machine is from what it was built from.
//
// The written file is asked the way the model asks it, and its equivalent circuit is solved in steady state:
//   L11, M12, M21, L22, R2 at (slip frequency, primary current), the current being that which the circuit then takes.
// Compared are the points of the magnetizing curve, the machine at rated voltage over the slip, and an operating point
// that somebody published.
#pragma once

#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "kzb/build_im.h"

namespace kzb::tool {

struct ImDeviation {
    std::string quantity;
    std::string unit;
    double largest = 0.0;
    double rms = 0.0;
    double scale = 0.0;  // largest magnitude of the quantity
    std::string at;      // where the largest deviation lies
};

struct ImDeviationReport {
    std::string against;  // "magnetizing curve", "equivalent circuit", "operating point"
    std::size_t points = 0;
    std::size_t left_out = 0;  // beyond the tables
    std::vector<ImDeviation> deviations;
};

// `store` holds the written model with its tables loaded.
std::vector<ImDeviationReport> compare_im(KZB_STORE* store, const ImBuild& build, const ImOptions& options);

// The written model in steady state.
ImState written_steady_state(KZB_STORE* store, ImApplication application, double voltage, double omega, double slip);

}  // namespace kzb::tool
