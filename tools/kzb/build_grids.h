// The grids of the tables to be written, and the way from table coordinates to currents.
//
//   id = -amplitude sin(phase),  iq = amplitude cos(phase)      amplitude in A peak, phase in degrees
//   position = (theta - beta_zero) / pole pairs                  in mechanical degrees, over one electrical period
// A phase axis over the full circle and the position axis are cyclic, with both ends in the grid.
#pragma once

#include <cstddef>
#include <vector>

#include "kzb/build_machine_map.h"
#include "kzb/dq_current.h"

namespace kzb::tool {

// What a current outside the map gets: the linear continuation of the map, or no place in the tables.
enum class Outside { extrapolate, limit };

struct GridOptions {
    double current_max = 0.0;  // A peak; 0: the largest circle inside the map
    std::size_t amplitude_nodes = 17;
    double phase_step = 7.5;  // degrees; the nodes hold all multiples of 90
    std::size_t flux_nodes = 51;
    Outside outside = Outside::extrapolate;
};

struct TableAxis {
    std::vector<double> nodes;
    bool cyclic = false;
};

struct TableGrids {
    TableAxis amplitude;
    TableAxis phase;
    TableAxis position;
    std::size_t flux_nodes = 0;
    double current_max() const { return amplitude.nodes.back(); }
};

TableGrids make_grids(const MachineMap& map, const GridOptions& options);

// Radius of the largest circle of currents inside the map, over the directions that the map covers at all.
double inner_radius(const MachineMap& map);

// Sine and cosine of degrees, exact at multiples of 90.
double sin_deg(double angle);
double cos_deg(double angle);

DqCurrent current_at(double amplitude, double phase_deg);
// Current phase in [-180, 180]: what the model forms from a current, and +-90 on the d axis.
double phase_of(double id, double iq);

// Whole number of steps of `option` in `range`, which a grid needs to hold its ends and quarters. Failure(exit_usage).
std::size_t whole_steps(const char* option, double range, double step);

// The nodes first, first + step, .. with the last exactly `last`.
std::vector<double> even_nodes(double first, double last, std::size_t count);

}  // namespace kzb::tool
