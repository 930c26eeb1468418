#include "kzb/build_grids.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

constexpr double small_part = 1e-9;

// The part of the phase circle that the map covers, in degrees.
struct Sector {
    double first;
    double last;
};

Sector covered_sector(const MachineMap& map) {
    const double tiny_d = small_part * (map.id().back() - map.id().front());
    const double tiny_q = small_part * (map.iq().back() - map.iq().front());
    const bool positive_d = map.id().back() > tiny_d;
    const bool negative_d = map.id().front() < -tiny_d;
    const bool positive_q = map.iq().back() > tiny_q;
    const bool negative_q = map.iq().front() < -tiny_q;
    if (!positive_q) {
        throw Failure(exit_usage,
                      "--outside limit: the map covers q currents below zero only, expected one with q "
                      "currents above zero");
    }
    // Phase 0 is +q, 90 is -d, -90 is +d.
    const double quarter = negative_q ? 180.0 : 90.0;
    return {positive_d ? -quarter : 0.0, negative_d ? quarter : 0.0};
}

}  // namespace

double sin_deg(double angle) {
    const double turn = std::remainder(angle, 360.0);
    const double quarters = turn / 90.0;
    if (quarters == std::round(quarters)) {
        constexpr double values[] = {0.0, 1.0, 0.0, -1.0};
        return values[(static_cast<int>(quarters) + 4) % 4];
    }
    return std::sin(turn * std::numbers::pi / 180.0);
}

double cos_deg(double angle) {
    return sin_deg(std::remainder(angle, 360.0) + 90.0);
}

DqCurrent current_at(double amplitude, double phase_deg) {
    return {-amplitude * sin_deg(phase_deg), amplitude * cos_deg(phase_deg)};
}

double phase_of(double id, double iq) {
    return std::atan2(-id, iq) * 57.29577951308232;
}

std::size_t whole_steps(const char* option, double range, double step) {
    const double steps = std::round(range / step);
    if (steps < 1.0 || std::fabs(steps * step - range) > 1e-9 * range) {
        throw Failure(exit_usage, fmt::format("{} {:g}: expected a whole part of {:g} degrees", option, step, range));
    }
    return static_cast<std::size_t>(steps);
}

std::vector<double> even_nodes(double first, double last, std::size_t count) {
    std::vector<double> nodes(count);
    for (std::size_t i = 0; i < count; ++i) {
        nodes[i] = first + (last - first) * static_cast<double>(i) / static_cast<double>(count - 1);
    }
    nodes.back() = last;
    return nodes;
}

double inner_radius(const MachineMap& map) {
    double radius = std::numeric_limits<double>::infinity();
    for (const std::vector<double>* axis : {&map.id(), &map.iq()}) {
        const double tiny = small_part * (axis->back() - axis->front());
        for (const double edge : {-axis->front(), axis->back()}) {
            if (edge > tiny) {
                radius = std::min(radius, edge);
            }
        }
    }
    return radius;
}

TableGrids make_grids(const MachineMap& map, const GridOptions& options) {
    TableGrids grids;
    const double current_max = options.current_max > 0.0 ? options.current_max : inner_radius(map);
    grids.amplitude.nodes = even_nodes(0.0, current_max, options.amplitude_nodes);

    const Sector sector = options.outside == Outside::limit ? covered_sector(map) : Sector{-180.0, 180.0};
    const double width = sector.last - sector.first;
    const auto steps = static_cast<std::size_t>(std::lround(width / options.phase_step));
    grids.phase.nodes = even_nodes(sector.first, sector.last, steps + 1);
    grids.phase.cyclic = width == 360.0;

    grids.position.nodes = even_nodes(0.0, 360.0 / map.pole_pairs(), map.position_count() + 1);
    grids.position.cyclic = true;
    grids.flux_nodes = options.flux_nodes;
    return grids;
}

}  // namespace kzb::tool
