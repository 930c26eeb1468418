// Tables of a generic model from the rows of CSV files.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_applications.h"
#include "kzb/build_generic.h"
#include "kzb/build_row_grid.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "kzb/generic_reader.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

constexpr double same_place = 1e-6;  // of a period
constexpr double same_value = 1e-6;  // of the largest value
constexpr std::size_t generic_value_limit = 100'000'000;

std::vector<double> column_of(const CsvTable& csv, const ColumnText& column) {
    const auto at = csv.column(column.header);
    if (!at) {
        throw_at(column.place, fmt::format("{} has no column \"{}\", expected one of \"{}\"", csv.name(),
                                           printable_line(column.header),
                                           printable_line(fmt::format("{}", fmt::join(csv.header(), "\", \"")))));
    }
    std::vector<double> values = csv.numbers(*at, column.scale);
    std::transform(values.begin(), values.end(), values.begin(), [](double x) { return x + 0.0; });  // no -0
    return values;
}

CsvTable read_csv(const GenericDescription& description, const TableText& table) {
    try {
        return CsvTable::read(description.path_of(table.file));
    } catch (const Failure& failure) {
        throw_at(table.place, failure.what());
    }
}

std::size_t points_of(const std::vector<TableAxis>& axes, std::size_t first, std::size_t last) {
    std::size_t points = 1;
    for (std::size_t a = first; a < last; ++a) {
        points *= axes[a].nodes.size();
    }
    return points;
}

// Ends axis `a` a period after its first node, with the values of that node.
void close_axis(BuiltTable& table, std::size_t a, double period, const ColumnText& column) {
    std::vector<double>& nodes = table.axes[a].nodes;
    const double span = nodes.back() - nodes.front();
    if (span > period * (1.0 + same_place)) {
        throw_at(column.place, fmt::format("\"{}\" spans {:g}, expected at most the period {:g}",
                                           printable_line(column.header), span, period));
    }
    const std::size_t inner = points_of(table.axes, a + 1, table.axes.size());
    const std::size_t outer = points_of(table.axes, 0, a);
    const std::size_t rows = nodes.size();
    const bool closed = rows > 1 && span > period * (1.0 - same_place);
    table.axes[a].cyclic = true;
    if (closed) {
        double largest = 0.0;
        double off = 0.0;
        for (std::size_t n = 0; n < outer * inner; ++n) {
            const std::size_t first = n / inner * rows * inner + n % inner;
            largest = std::max(largest, std::fabs(table.values[first]));
            off = std::max(off, std::fabs(table.values[first + (rows - 1) * inner] - table.values[first]));
        }
        if (off > same_value * largest) {
            throw_at(column.place, fmt::format("the values at both ends of the period {:g} differ by up to {:g}, "
                                               "expected the same",
                                               period, off));
        }
        nodes.back() = nodes.front() + period;
        return;
    }
    std::vector<double> values;
    values.reserve(outer * (rows + 1) * inner);
    for (std::size_t n = 0; n < outer; ++n) {
        const auto block = table.values.begin() + static_cast<std::ptrdiff_t>(n * rows * inner);
        values.insert(values.end(), block, block + static_cast<std::ptrdiff_t>(rows * inner));
        values.insert(values.end(), block, block + static_cast<std::ptrdiff_t>(inner));
    }
    table.values = std::move(values);
    nodes.push_back(nodes.front() + period);
}

// Values of an axis node by node: f(outer, node, inner).
struct AxisView {
    const BuiltTable& table;
    std::size_t axis;
    double at(std::size_t place, std::size_t node) const {
        const std::size_t inner = points_of(table.axes, axis + 1, table.axes.size());
        const std::size_t rows = table.axes[axis].nodes.size();
        const std::size_t own = place / inner % rows;
        return table.values[place + node * inner - own * inner];
    }
    std::size_t node_of(std::size_t place) const {
        return place / points_of(table.axes, axis + 1, table.axes.size()) % table.axes[axis].nodes.size();
    }
    // By the two neighbours, on a cyclic axis across its end; of the first and last node else by one neighbour.
    double slope(std::size_t place) const {
        const std::vector<double>& x = table.axes[axis].nodes;
        const std::size_t n = node_of(place);
        const std::size_t last = x.size() - 1;
        if (table.axes[axis].cyclic && (n == 0 || n == last)) {
            return (at(place, 1) - at(place, last - 1)) / (x[1] - x[0] + x[last] - x[last - 1]);
        }
        const std::size_t low = n == 0 ? 0 : n - 1;
        const std::size_t high = std::min(n + 1, last);
        return (at(place, high) - at(place, low)) / (x[high] - x[low]);
    }
};

std::size_t axis_fed(const GenericDescription& description, Feed feed, int reference) {
    const auto at = std::find_if(description.axes.begin(), description.axes.end(), [&](const AxisText& axis) {
        return axis.feed == feed && axis.reference == reference;
    });
    return static_cast<std::size_t>(at - description.axes.begin());
}

void require_two_nodes(const GenericDescription& description, const BuiltTable& flux, std::size_t axis) {
    if (flux.axes[axis].nodes.size() < 2) {
        throw_at(description.axes[axis].place,
                 "one node alone, expected two for the differences of the flux, or [inductance]");
    }
}

// Pair s * total + q: coil of set s by the current of set q.
BuiltTable single_inductances(const GenericDescription& description, const BuiltTable& flux) {
    const std::size_t total = description.coil_sets.size();
    BuiltTable result{flux.axes, {}};
    result.axes.back() = component_axis(total * total);
    result.values.resize(flux.values.size() / total * total * total);
    for (std::size_t q = 0; q < total; ++q) {
        const AxisView view{flux, axis_fed(description, Feed::amplitude, static_cast<int>(q) + 1)};
        require_two_nodes(description, flux, view.axis);
        for (std::size_t place = 0; place < flux.values.size(); ++place) {
            const std::size_t coil = place % total;
            result.values[place / total * total * total + coil * total + q] = view.slope(place);
        }
    }
    return result;
}

// Pairs 0, 1, 2: the first coil by the currents of the three; the others read the table where their own phase puts
// them.
//
//   i_d = -I sin(phase), i_q = I cos(phase);  d psi / d i_k = 2/3 (psi_d cos(theta + phi_k) - psi_q sin(theta + phi_k))
//
// Without current the slopes are those of the next amplitude.
BuiltTable three_phase_inductances(const GenericDescription& description, const BuiltTable& flux) {
    constexpr double degree = std::numbers::pi / 180.0;
    const CoilSetText& set = description.coil_sets.front();
    const AxisView amplitude{flux, axis_fed(description, Feed::amplitude, 1)};
    const AxisView phase{flux, axis_fed(description, Feed::phase, 1)};
    const AxisView position{flux, axis_fed(description, Feed::displacement, set.motion)};
    require_two_nodes(description, flux, amplitude.axis);
    require_two_nodes(description, flux, phase.axis);
    const double period = description.motions[static_cast<std::size_t>(set.motion) - 1].range;
    const std::size_t step = points_of(flux.axes, amplitude.axis + 1, flux.axes.size());
    BuiltTable result{flux.axes, std::vector<double>(flux.values.size())};
    for (std::size_t point = 0; point < flux.values.size(); point += 3) {
        std::size_t from = point;
        double current = flux.axes[amplitude.axis].nodes[amplitude.node_of(point)];
        if (current == 0.0) {
            from += step;
            current = flux.axes[amplitude.axis].nodes[amplitude.node_of(from)];
        }
        const double angle = (flux.axes[phase.axis].nodes[phase.node_of(point)] + set.phase_initial) * degree;
        const double along = amplitude.slope(from);
        const double across = phase.slope(from) / degree / current;
        const double psi_d = -along * std::sin(angle) - across * std::cos(angle);
        const double psi_q = along * std::cos(angle) - across * std::sin(angle);
        const double theta = flux.axes[position.axis].nodes[position.node_of(point)] / period * 360.0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double own = (theta + set.phases[k]) * degree;
            result.values[point + k] = 2.0 / 3.0 * (psi_d * std::cos(own) - psi_q * std::sin(own));
        }
    }
    return result;
}

}  // namespace

BuiltTable read_table(const GenericDescription& description, const TableText& table,
                      const std::vector<TableColumns>& axes) {
    const CsvTable csv = read_csv(description, table);
    std::vector<Coordinate> coordinates;
    for (const TableColumns& axis : axes) {
        coordinates.push_back({axis.column.header, "", column_of(csv, axis.column)});
    }
    const RowGrid grid = rows_on_grid(csv, coordinates);
    BuiltTable result;
    for (const std::vector<double>& nodes : grid.nodes) {
        result.axes.push_back({nodes, false});
    }
    result.axes.push_back(component_axis(table.columns.size()));
    if (grid.rows.size() > generic_value_limit / table.columns.size()) {
        throw_at(table.place, fmt::format("{} points of {} columns, expected at most {} values", grid.rows.size(),
                                          table.columns.size(), generic_value_limit));
    }
    result.values.resize(grid.rows.size() * table.columns.size());
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const std::vector<double> field = grid.field(column_of(csv, table.columns[c]));
        for (std::size_t n = 0; n < field.size(); ++n) {
            result.values[n * table.columns.size() + c] = field[n];
        }
    }
    for (std::size_t a = 0; a < axes.size(); ++a) {
        if (axes[a].period) {
            close_axis(result, a, *axes[a].period, axes[a].column);
        }
    }
    return result;
}

BuiltTable derive_inductances(const GenericDescription& description, const BuiltTable& flux) {
    const auto& sets = description.coil_sets;
    if (std::all_of(sets.begin(), sets.end(),
                    [](const CoilSetText& set) { return !set.moving() && set.coils.size() == 1; })) {
        return single_inductances(description, flux);
    }
    if (sets.size() == 1 && sets.front().motion > 0 && sets.front().coils.size() == 3) {
        return three_phase_inductances(description, flux);
    }
    throw_at(description.flux.place,
             "these coil sets need [inductance], which is missing; the flux gives it for sets of "
             "one coil without motion, or for one set of three coils");
}

}  // namespace kzb::tool
