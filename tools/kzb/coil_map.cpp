#include "kzb/coil_map.h"

#include <cmath>

#include "fmt/format.h"
#include "kzb/build_columns.h"
#include "kzb/build_row_grid.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

// Nodes of the next period on either side that a periodic field takes into its spline: their influence on the period
// itself falls by a factor of about 0.27 per node.
constexpr std::size_t wrapped_nodes = 20;

std::vector<double> numbers_of(const CsvTable& csv, const char* quantity,
                               const std::map<std::string, std::string>& columns) {
    const FoundColumn column = require_quantity(csv, quantity, columns);
    return csv.numbers(column.index, column.scale);
}

// A point of current 0 in front of each line where the file starts later.
void add_zero_current(CoilMap& map) {
    if (map.currents.front() == 0.0) {
        return;
    }
    const std::size_t count = map.currents.size();
    for (std::vector<double>* field : {&map.flux, &map.torque}) {
        std::vector<double> longer;
        for (std::size_t n = 0; n < field->size(); ++n) {
            if (n % count == 0) {
                longer.push_back(0.0);
            }
            longer.push_back((*field)[n]);
        }
        *field = std::move(longer);
    }
    map.currents.insert(map.currents.begin(), 0.0);
}

}  // namespace

CoilMap read_coil_map(const CsvTable& csv, const CoilQuantities& quantities,
                      const std::map<std::string, std::string>& columns) {
    const std::vector<double> positions = numbers_of(csv, quantities.position, columns);
    const std::vector<double> currents = numbers_of(csv, "current", columns);
    const std::vector<double> flux = numbers_of(csv, quantities.flux, columns);
    for (std::size_t row = 0; row < currents.size(); ++row) {
        if (currents[row] < 0.0) {
            throw Failure(exit_file, fmt::format("{}: current {:g} A, expected currents of 0 or more",
                                                 csv.place_of(row), currents[row]));
        }
    }
    const RowGrid grid =
        rows_on_grid(csv, {{quantities.position, quantities.position_unit, positions}, {"current", "A", currents}});
    CoilMap map;
    map.name = csv.name();
    map.positions = grid.nodes[0];
    map.currents = grid.nodes[1];
    require_nodes(csv, "the position", map.positions, 2);
    map.flux = grid.field(flux);
    if (quantities.torque != nullptr) {
        if (const auto column = find_quantity(csv, quantities.torque, columns)) {
            map.torque = grid.field(csv.numbers(column->index, column->scale));
        }
    }
    add_zero_current(map);
    require_nodes(csv, "the current", map.currents, 2);
    return map;
}

std::vector<double> coenergy_of(const CoilMap& map) {
    std::vector<double> coenergy;
    for (std::size_t p = 0; p < map.positions.size(); ++p) {
        const auto first = map.flux.begin() + static_cast<std::ptrdiff_t>(map.index(p, 0));
        const std::vector<double> line(first, first + static_cast<std::ptrdiff_t>(map.currents.size()));
        const std::vector<double> slopes = spline_slopes(map.currents, line);
        double sum = 0.0;
        coenergy.push_back(sum);
        for (std::size_t i = 1; i < line.size(); ++i) {
            const double h = map.currents[i] - map.currents[i - 1];
            sum += h * (0.5 * (line[i - 1] + line[i]) + h / 12.0 * (slopes[i - 1] - slopes[i]));
            coenergy.push_back(sum);
        }
    }
    return coenergy;
}

CoilField::CoilField(const CoilMap& map, const std::vector<double>& values, double period)
    : first_(map.positions.front()), period_(period) {
    if (period == 0.0) {
        surface_ = BicubicSurface(map.positions, map.currents, values);
        return;
    }
    // Nodes without the closing one, repeated on both sides.
    const auto count = static_cast<std::ptrdiff_t>(map.positions.size()) - 1;
    const auto reach = static_cast<std::ptrdiff_t>(wrapped_nodes);
    std::vector<double> positions;
    std::vector<double> wrapped;
    for (std::ptrdiff_t n = -reach; n <= count + reach; ++n) {
        const std::ptrdiff_t turns = n >= 0 ? n / count : -((count - 1 - n) / count);
        const auto node = static_cast<std::size_t>(n - turns * count);
        positions.push_back(map.positions[node] + static_cast<double>(turns) * period);
        for (std::size_t i = 0; i < map.currents.size(); ++i) {
            wrapped.push_back(values[map.index(node, i)]);
        }
    }
    surface_ = BicubicSurface(positions, map.currents, std::move(wrapped));
}

SurfaceValue CoilField::at(double position, double current) const {
    if (period_ > 0.0) {
        position -= std::floor((position - first_) / period_) * period_;
    }
    return surface_.at(position, current);
}

}  // namespace kzb::tool
