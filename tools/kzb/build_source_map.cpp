#include "kzb/build_source_map.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

#include "fmt/format.h"
#include "kzb/build_columns.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

// Two coordinates closer than this part of the axis are one node.
constexpr double same_node = 1e-7;

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

double span_of(const std::vector<double>& coordinates) {
    const auto [low, high] = std::minmax_element(coordinates.begin(), coordinates.end());
    return *high - *low;
}

std::vector<double> nodes_of(std::vector<double> coordinates) {
    const double tolerance = same_node * span_of(coordinates);
    std::sort(coordinates.begin(), coordinates.end());
    std::vector<double> nodes;
    for (const double x : coordinates) {
        if (nodes.empty() || x - nodes.back() > tolerance) {
            nodes.push_back(x);
        }
    }
    return nodes;
}

std::size_t node_index(const std::vector<double>& nodes, double x) {
    const auto above = std::lower_bound(nodes.begin(), nodes.end(), x);
    if (above == nodes.begin()) {
        return 0;
    }
    if (above == nodes.end() || x - *(above - 1) < *above - x) {
        return static_cast<std::size_t>(above - nodes.begin()) - 1;
    }
    return static_cast<std::size_t>(above - nodes.begin());
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

void require_axis(const CsvTable& csv, const char* name, const std::vector<double>& nodes, std::size_t least) {
    if (nodes.size() < least) {
        throw Failure(exit_file, fmt::format("{}: {} takes {} value(s), expected a grid with at least {}", csv.name(),
                                             name, nodes.size(), least));
    }
}

// Row of each grid point, theta fastest; refuses a point given twice and a point that is missing.
std::vector<std::size_t> rows_of_grid(const CsvTable& csv, const SourceMap& map, const Rows& rows) {
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    const std::size_t points = map.id.size() * map.iq.size() * map.theta.size();
    if (points > 16 * csv.row_count() + 16) {  // scattered points would ask for a huge grid
        throw Failure(exit_file,
                      fmt::format("{}: not a grid: {} rows for {} x {} x {} different coordinates", csv.name(),
                                  csv.row_count(), map.id.size(), map.iq.size(), map.theta.size()));
    }
    std::vector<std::size_t> at(points, none);
    for (std::size_t row = 0; row < csv.row_count(); ++row) {
        const std::size_t k = map.has_positions ? node_index(map.theta, rows.theta[row]) : 0;
        std::size_t& place = at[map.index(node_index(map.id, rows.id[row]), node_index(map.iq, rows.iq[row]), k)];
        if (place != none) {
            throw Failure(exit_file, fmt::format("{}: the point of line {} a second time, expected each point once",
                                                 csv.place_of(row), csv.line_of(place)));
        }
        place = row;
    }
    for (std::size_t i = 0; i < map.id.size(); ++i) {
        for (std::size_t j = 0; j < map.iq.size(); ++j) {
            for (std::size_t k = 0; k < map.theta.size(); ++k) {
                if (at[map.index(i, j, k)] == none) {
                    throw Failure(exit_file,
                                  fmt::format("{}: no row for id {:g} A, iq {:g} A{}, expected a full grid", csv.name(),
                                              map.id[i], map.iq[j],
                                              map.has_positions ? fmt::format(", theta {:g} deg", map.theta[k]) : ""));
                }
            }
        }
    }
    return at;
}

std::vector<double> in_grid_order(const std::vector<double>& column, const std::vector<std::size_t>& at) {
    std::vector<double> field;
    if (!column.empty()) {
        field.reserve(at.size());
        for (const std::size_t row : at) {
            field.push_back(column[row]);
        }
    }
    return field;
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

bool near(double a, double b) {
    return std::fabs(a - b) < 1e-6 * std::fabs(b);
}

// Which period the positions cover, and whether the last node closes it.
void find_period(const CsvTable& csv, SourceMap& map) {
    const std::size_t n = map.theta.size();
    const double span = map.theta.back() - map.theta.front();
    const double step = span / static_cast<double>(n - 1);
    for (const double period : {60.0, 120.0, 180.0, 360.0}) {
        const bool closed = near(span, period);
        if (!closed && !near(span + step, period)) {
            continue;
        }
        map.period = period;
        if (closed) {
            for (auto* field : {&map.psi_d, &map.psi_q, &map.psi_0, &map.torque}) {
                *field = without_last_position(*field, n);
            }
            map.theta.pop_back();
        }
        require_axis(csv, "the position", map.theta, 3);
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
    map.id = nodes_of(rows.id);
    map.iq = nodes_of(rows.iq);
    map.has_positions = !rows.theta.empty();
    map.theta = map.has_positions ? nodes_of(rows.theta) : std::vector<double>{0.0};
    require_axis(csv, "the d current", map.id, 2);
    require_axis(csv, "the q current", map.iq, 2);
    if (map.has_positions) {
        require_axis(csv, "the position", map.theta, 3);
    }
    const std::vector<std::size_t> at = rows_of_grid(csv, map, rows);
    map.psi_d = in_grid_order(rows.psi_d, at);
    map.psi_q = in_grid_order(rows.psi_q, at);
    map.psi_0 = in_grid_order(rows.psi_0, at);
    map.torque = in_grid_order(rows.torque, at);
    if (map.has_positions) {
        find_period(csv, map);
    }
    return map;
}

}  // namespace kzb::tool
