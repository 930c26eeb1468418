// Flux linkage and torque (force) of one coil over position and current, as a CSV file gives them: a full grid.
//
// Without points at current 0 the flux linkage and the torque there are 0. Currents below 0 are refused: these machines
// have no magnet, so what a negative current does follows from the positive one.
//
// Between its points a field is a bicubic spline, which gives the value of the file at each point.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "kzb/build_spline.h"
#include "kzb/csv_table.h"

namespace kzb::tool {

// The quantities of a machine's map, as in build_columns.h.
struct CoilQuantities {
    const char* position;
    const char* position_unit;
    const char* flux;
    const char* torque;  // null: none is looked for
};

struct CoilMap {
    std::string name;               // of the file
    std::vector<double> positions;  // ascending
    std::vector<double> currents;   // ascending from 0
    std::vector<double> flux;       // one value per point, current fastest
    std::vector<double> torque;     // or force; empty where the file has none

    std::size_t index(std::size_t position, std::size_t current) const { return position * currents.size() + current; }
};

// `columns` as in SourceOptions. Failure(exit_file) for a column or a point that is missing, and for a current below 0.
CoilMap read_coil_map(const CsvTable& csv, const CoilQuantities& quantities,
                      const std::map<std::string, std::string>& columns);

// Integral of the flux linkage over the current from 0 at every point of the map.
std::vector<double> coenergy_of(const CoilMap& map);

// A field of a map as a function of position and current.
class CoilField {
  public:
    // `period` above 0: the positions cover one period, the last node closing it, and repeat.
    CoilField(const CoilMap& map, const std::vector<double>& values, double period = 0.0);
    SurfaceValue at(double position, double current) const;

  private:
    BicubicSurface surface_;
    double first_;
    double period_;
};

}  // namespace kzb::tool
