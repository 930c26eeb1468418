#include "kzb/wfsm_map.h"

#include <cmath>
#include <numbers>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_row_grid.h"
#include "kzb/command.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

std::vector<double> column_of(const CsvTable& csv, const char* header, double scale = 1.0) {
    if (const auto column = csv.column(header)) {
        return csv.numbers(*column, scale);
    }
    throw Failure(exit_file, fmt::format("{}:1: no column \"{}\"; the columns are {}", csv.name(), header,
                                         printable_line(fmt::format("{}", fmt::join(csv.header(), ", ")))));
}

void require(const CsvTable& csv, bool holds, const std::string& what) {
    if (!holds) {
        throw Failure(exit_file, fmt::format("{}: {}", csv.name(), what));
    }
}

}  // namespace

WoundFieldMap read_wound_field_map(const CsvTable& csv) {
    const bool rms = csv.column("i_rms_A").has_value() && !csv.column("i_peak_A");
    const RowGrid grid = rows_on_grid(
        csv, {{"i_f", "A", column_of(csv, "i_f_A")},
              {"phase", "deg", column_of(csv, "beta_deg", -1.0)},
              {"i", "A", rms ? column_of(csv, "i_rms_A", std::numbers::sqrt2) : column_of(csv, "i_peak_A")}});
    WoundFieldMap map;
    map.name = csv.name();
    map.field = grid.nodes[0];
    map.phase = grid.nodes[1];
    map.amplitude = grid.nodes[2];
    require_nodes(csv, "the field current", map.field, 3);
    require_nodes(csv, "the current phase", map.phase, 3);
    require_nodes(csv, "the current", map.amplitude, 3);
    require(csv, map.field.front() > 0.0, fmt::format("field current {:g} A, expected all above 0", map.field.front()));
    require(csv, map.amplitude.front() == 0.0,
            fmt::format("the smallest current is {:g} A, expected 0", map.amplitude.front()));
    require(csv, std::fabs(map.phase.front()) < 1e-9 && std::fabs(map.phase.back() - 180.0) < 1e-9,
            fmt::format("beta from {:g} to {:g} deg, expected -180 to 0", -map.phase.back(), -map.phase.front()));
    map.phase.front() = 0.0;
    map.psi_d = grid.field(column_of(csv, "psi_d_Vs"));
    map.psi_q = grid.field(column_of(csv, "psi_q_Vs"));
    if (csv.column("torque_Nm")) {
        map.torque = grid.field(column_of(csv, "torque_Nm"));
    }
    return map;
}

}  // namespace kzb::tool
