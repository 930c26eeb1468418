// How far written tables are from the flux map they were made of.
//
// Each point of the source map within the largest current of the tables is looked up in the tables the way the model
// does it, and compared: flux linkages (dq, peak, amplitude-invariant) and torque; for FluxIntegralDQTheta the currents
// that belong to the point's flux linkages, since its tables go from flux to current.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "kzb/build_model.h"
#include "kzb/build_source_map.h"

namespace kzb::tool {

struct Deviation {
    std::string quantity;
    std::string unit;
    double largest = 0.0;
    double rms = 0.0;
    double scale = 0.0;  // largest magnitude of the quantity in the points compared
    double id = 0.0;     // where the largest deviation lies
    double iq = 0.0;
    double theta_deg = 0.0;
};

struct DeviationReport {
    Application application = Application::Harmonic;
    std::string against = "points";  // or "position means"
    std::size_t points = 0;
    std::size_t left_out = 0;      // points beyond the current range of the tables
    std::size_t out_of_table = 0;  // lookups that left a table
    std::vector<Deviation> deviations;
};

// `store` holds the model with its tables loaded; `method` is an interpolation of the store's lookup. With `means` the
// positions of the source are averaged first.
DeviationReport compare_tables(KZB_STORE* store, Application application, const SourceMap& source,
                               const TableGrids& grids, const MachineOptions& machine, const std::string& method,
                               bool means);

}  // namespace kzb::tool
