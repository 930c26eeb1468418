#include "kzb/build_source_map.h"

#include <array>
#include <cmath>
#include <numbers>
#include <optional>

#include "fmt/format.h"
#include "kzb/build_columns.h"
#include "kzb/build_row_grid.h"
#include "kzb/command.h"
#include "kzb/nearly_equal.h"

namespace kzb::tool {

namespace {

struct FrameScales {
    double dq;    // to peak, amplitude-invariant
    double zero;  // to (a + b + c) / 3
};

FrameScales scales_of(DqFrame frame) {
    switch (frame) {
        case DqFrame::amplitude_rms:
            return {std::numbers::sqrt2, std::numbers::sqrt2};
        case DqFrame::power_invariant:
            return {std::sqrt(2.0 / 3.0), 1.0 / std::numbers::sqrt3};
        case DqFrame::amplitude_peak:
            break;
    }
    return {1.0, 1.0};
}

struct Rows {
    std::vector<double> id, iq, theta, psi_d, psi_q, psi_0, torque;
};

std::vector<double> optional_numbers(const CsvTable& csv, const char* quantity, const SourceOptions& options) {
    const auto column = find_quantity(csv, quantity, options.columns);
    return column ? csv.numbers(column->index, column->scale) : std::vector<double>();
}

std::vector<double> required_numbers(const CsvTable& csv, const char* quantity, const SourceOptions& options,
                                     double scale = 1.0) {
    const FoundColumn column = require_quantity(csv, quantity, options.columns);
    return csv.numbers(column.index, column.scale * scale);
}

std::vector<double> position_numbers(const CsvTable& csv, const SourceOptions& options) {
    std::vector<double> theta = optional_numbers(csv, "theta_e", options);
    if (theta.empty()) {
        theta = optional_numbers(csv, "theta_mech", options);
        for (double& angle : theta) {
            angle *= options.pole_pairs;
        }
    }
    return theta;
}

Rows read_rows(const CsvTable& csv, const SourceOptions& options) {
    const FrameScales frame = scales_of(options.frame);
    Rows rows;
    rows.id = required_numbers(csv, "id", options, frame.dq);
    rows.iq = required_numbers(csv, "iq", options, frame.dq);
    rows.psi_d = required_numbers(csv, "psi_d", options, frame.dq);
    rows.psi_q = required_numbers(csv, "psi_q", options, frame.dq);
    rows.psi_0 = optional_numbers(csv, "psi_0", options);
    for (double& value : rows.psi_0) {
        value *= frame.zero;
    }
    rows.torque = optional_numbers(csv, "torque", options);
    rows.theta = position_numbers(csv, options);
    return rows;
}

// The same field without the last position of each line.
std::vector<double> without_last_position(const std::vector<double>& field, std::size_t positions) {
    std::vector<double> shorter;
    shorter.reserve(field.size());
    for (std::size_t n = 0; n < field.size(); ++n) {
        if (n % positions != positions - 1) {
            shorter.push_back(field[n]);
        }
    }
    return shorter;
}

// Which period the positions cover, and whether the last node closes it.
void find_period(const CsvTable& csv, SourceMap& map) {
    const std::size_t n = map.theta.size();
    const double span = map.theta.back() - map.theta.front();
    const double step = span / static_cast<double>(n - 1);
    for (const double period : {60.0, 120.0, 180.0, 360.0}) {
        const bool closed = nearly_equal(span, period);
        if (!closed && !nearly_equal(span + step, period)) {
            continue;
        }
        map.period = period;
        if (closed) {
            for (auto* field : {&map.psi_d, &map.psi_q, &map.psi_0, &map.torque}) {
                *field = without_last_position(*field, n);
            }
            map.theta.pop_back();
        }
        require_nodes(csv, "the position", map.theta, 3);
        return;
    }
    throw Failure(exit_file,
                  fmt::format("{}: positions run from {:g} to {:g} electrical degrees in {} nodes, expected evenly "
                              "spaced ones over a period of 60, 120, 180 or 360",
                              csv.name(), map.theta.front(), map.theta.back(), n));
}

}  // namespace

SourceMap read_source_map(const CsvTable& csv, const SourceOptions& options) {
    const Rows rows = read_rows(csv, options);
    SourceMap map;
    map.name = csv.name();
    map.has_positions = !rows.theta.empty();
    std::vector<Coordinate> axes{{"id", "A", rows.id}, {"iq", "A", rows.iq}};
    if (map.has_positions) {
        axes.push_back({"theta", "deg", rows.theta});
    }
    const RowGrid grid = rows_on_grid(csv, axes);
    map.id = grid.nodes[0];
    map.iq = grid.nodes[1];
    map.theta = map.has_positions ? grid.nodes[2] : std::vector<double>{0.0};
    require_nodes(csv, "the d current", map.id, 2);
    require_nodes(csv, "the q current", map.iq, 2);
    if (map.has_positions) {
        require_nodes(csv, "the position", map.theta, 3);
    }
    map.psi_d = grid.field(rows.psi_d);
    map.psi_q = grid.field(rows.psi_q);
    map.psi_0 = grid.field(rows.psi_0);
    map.torque = grid.field(rows.torque);
    if (map.has_positions) {
        find_period(csv, map);
    }
    return map;
}

}  // namespace kzb::tool
