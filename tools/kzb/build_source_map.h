// The flux map of a machine as a CSV file gives it: a full grid over d current, q current and, where the file has it,
// rotor position.
//
// Inside, everything is peak and amplitude-invariant (a balanced set of phase currents of peak I has a dq vector of
// length I), motor convention, d axis on phase a at angle 0:
//   psi_a = psi_d cos(theta) - psi_q sin(theta) + psi_0,   torque = 1.5 p (psi_d i_q - psi_q i_d) in the mean
// with currents in A, flux linkages in Vs, torque in Nm, theta in electrical degrees.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "kzb/csv_table.h"

namespace kzb::tool {

// What the dq quantities of the file are.
enum class DqFrame { amplitude_peak, amplitude_rms, power_invariant };

struct SourceOptions {
    double pole_pairs = 1.0;  // for a position column in mechanical degrees
    DqFrame frame = DqFrame::amplitude_peak;
    // Quantity ("id", "iq", "psi_d", "psi_q", "psi_0", "torque", "theta_e", "theta_mech") to the header of its column,
    // with ":unit" behind it where the header does not end in the unit.
    std::map<std::string, std::string> columns;
};

struct SourceMap {
    std::string name;
    std::vector<double> id;  // ascending, at least two nodes
    std::vector<double> iq;
    std::vector<double> theta;  // ascending, without the closing node; {0} for a map without positions
    double period = 360.0;      // of theta: 60, 120, 180 or 360
    bool has_positions = false;
    // One value per grid point, theta fastest; psi_0 and torque are empty where the file has none.
    std::vector<double> psi_d;
    std::vector<double> psi_q;
    std::vector<double> psi_0;
    std::vector<double> torque;

    std::size_t index(std::size_t i, std::size_t j, std::size_t k) const {
        return (i * iq.size() + j) * theta.size() + k;
    }
};

// Failure(exit_file) when a column is missing, a cell is no number, or the points are no full grid.
SourceMap read_source_map(const CsvTable& csv, const SourceOptions& options);

}  // namespace kzb::tool
