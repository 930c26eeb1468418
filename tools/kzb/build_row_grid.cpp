#include "kzb/build_row_grid.h"

#include <algorithm>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

// Two coordinates closer than this part of the axis are one node.
constexpr double part_of_axis = 1e-7;

std::vector<double> merged_nodes(std::vector<double> coordinates) {
    std::sort(coordinates.begin(), coordinates.end());
    const double tolerance = part_of_axis * (coordinates.back() - coordinates.front());
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

// "id 1 A, iq 2 A" of the point with this place in the grid.
std::string point_name(const RowGrid& grid, const std::vector<Coordinate>& axes, std::size_t place) {
    std::vector<std::string> parts(axes.size());
    for (std::size_t a = axes.size(); a-- > 0;) {
        const std::vector<double>& nodes = grid.nodes[a];
        parts[a] = fmt::format("{} {:g} {}", axes[a].name, nodes[place % nodes.size()], axes[a].unit);
        place /= nodes.size();
    }
    return fmt::format("{}", fmt::join(parts, ", "));
}

// Number of grid points; refuses scattered ones, which would ask for a huge grid.
std::size_t points_of(const CsvTable& csv, const RowGrid& grid) {
    std::size_t points = 1;
    std::vector<std::size_t> sizes;
    for (const std::vector<double>& nodes : grid.nodes) {
        points *= nodes.size();
        sizes.push_back(nodes.size());
        if (points > 16 * csv.row_count() + 16) {
            throw Failure(exit_file, fmt::format("{}: not a grid: {} rows for {} different coordinates", csv.name(),
                                                 csv.row_count(), fmt::join(sizes, " x ")));
        }
    }
    return points;
}

}  // namespace

std::vector<double> RowGrid::field(const std::vector<double>& column) const {
    std::vector<double> values;
    if (!column.empty()) {
        values.reserve(rows.size());
        for (const std::size_t row : rows) {
            values.push_back(column[row]);
        }
    }
    return values;
}

RowGrid rows_on_grid(const CsvTable& csv, const std::vector<Coordinate>& axes) {
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    RowGrid grid;
    for (const Coordinate& axis : axes) {
        grid.nodes.push_back(merged_nodes(axis.values));
    }
    grid.rows.assign(points_of(csv, grid), none);
    for (std::size_t row = 0; row < csv.row_count(); ++row) {
        std::size_t place = 0;
        for (std::size_t a = 0; a < axes.size(); ++a) {
            place = place * grid.nodes[a].size() + node_index(grid.nodes[a], axes[a].values[row]);
        }
        if (grid.rows[place] != none) {
            throw Failure(exit_file, fmt::format("{}: the point of line {} a second time, expected each point once",
                                                 csv.place_of(row), csv.line_of(grid.rows[place])));
        }
        grid.rows[place] = row;
    }
    const auto missing = std::find(grid.rows.begin(), grid.rows.end(), none);
    if (missing != grid.rows.end()) {
        const auto place = static_cast<std::size_t>(missing - grid.rows.begin());
        throw Failure(exit_file, fmt::format("{}: no row for {}, expected a full grid", csv.name(),
                                             point_name(grid, axes, place)));
    }
    return grid;
}

void require_nodes(const CsvTable& csv, const std::string& what, const std::vector<double>& nodes, std::size_t least) {
    if (nodes.size() < least) {
        throw Failure(exit_file, fmt::format("{}: {} takes {} value(s), expected a grid with at least {}", csv.name(),
                                             what, nodes.size(), least));
    }
}

}  // namespace kzb::tool
