#include "kzb/mean_torque.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kzb/sound_table.h"

namespace kzb::tool {

namespace {

constexpr double radians = std::numbers::pi / 180.0;

double node_of(const KZB_TABLE& table, int axis, std::size_t index) {
    return axis < 0 ? 0.0 : table.axes[static_cast<std::size_t>(axis)][index];
}

std::size_t step_of(const KZB_TABLE& table, int axis) {
    return axis < 0 ? 0 : stride_of(table, static_cast<std::size_t>(axis));
}

CurrentMap map_over(const KZB_TABLE& table, const MapAxes& axes, bool polar) {
    CurrentMap map;
    map.a = nodes_of(table, static_cast<std::size_t>(axes.a));
    map.b = nodes_of(table, static_cast<std::size_t>(axes.b));
    if (axes.field >= 0) {
        map.field = nodes_of(table, static_cast<std::size_t>(axes.field));
    }
    map.polar = polar;
    map.b_cyclic = polar && table.cyclic[static_cast<std::size_t>(axes.b)] > 0;
    map.values.assign(map.a.size() * map.b.size() * map.field.size(), 0.0);
    return map;
}

// Fills the map by at_line(flat position of the first node along the positions, a, b).
template <class AtLine>
CurrentMap fill(const KZB_TABLE& table, const MapAxes& axes, bool polar, AtLine at_line) {
    CurrentMap map = map_over(table, axes, polar);
    for (std::size_t i = 0; i < map.a.size(); ++i) {
        for (std::size_t j = 0; j < map.b.size(); ++j) {
            for (std::size_t n = 0; n < map.field.size(); ++n) {
                const std::size_t line =
                    i * step_of(table, axes.a) + j * step_of(table, axes.b) + n * step_of(table, axes.field);
                map.at(i, j, n) = at_line(line, map.a[i], map.b[j]);
            }
        }
    }
    return map;
}

}  // namespace

std::optional<TravelScale> travel_of(const KZB_STORE& store, int motor_type) {
    const double offset = get_double(store, "control", "beta_zero") * radians;
    TravelScale travel;
    if (motor_type == 10005) {
        const double length = get_double(store, "control", "electrical_length");
        travel = {2.0 * std::numbers::pi / length, offset, 2.0 * std::numbers::pi / length};
    } else {
        const double pole_pairs = 0.5 * get_int(store, "control", "number_of_poles");
        travel = {pole_pairs * radians, offset, pole_pairs};
    }
    const bool usable = travel.torque_factor > 0.0 && !is_unusable(travel.torque_factor) && !is_unusable(offset);
    return usable ? std::optional<TravelScale>(travel) : std::nullopt;
}

std::optional<Spot> spot_on(const std::vector<double>& nodes, bool cyclic, double x) {
    if (cyclic && nodes.size() > 1) {
        const double period = nodes.back() - nodes.front();
        x -= period * std::floor((x - nodes.front()) / period);
        x = std::clamp(x, nodes.front(), nodes.back());
    }
    const double slack = 1e-9 * (nodes.back() - nodes.front()) + KZB_AXIS_TOL;
    if (!(x >= nodes.front() - slack && x <= nodes.back() + slack)) {
        return std::nullopt;
    }
    if (nodes.size() == 1) {
        return Spot{};
    }
    const auto above = std::upper_bound(nodes.begin() + 1, nodes.end() - 1, x);
    const auto hi = static_cast<std::size_t>(above - nodes.begin());
    const double t = (x - nodes[hi - 1]) / (nodes[hi] - nodes[hi - 1]);
    return Spot{hi - 1, hi, std::clamp(t, 0.0, 1.0)};
}

std::optional<double> CurrentMap::interpolated(double a_value, double b_value, double field_value) const {
    const auto on_a = spot_on(a, false, a_value);
    const auto on_b = spot_on(b, b_cyclic, b_value);
    const auto on_field = field.size() == 1 ? std::optional<Spot>(Spot{}) : spot_on(field, false, field_value);
    if (!on_a || !on_b || !on_field) {
        return std::nullopt;
    }
    const auto between = [](double from, double to, double t) { return from + t * (to - from); };
    const auto along_field = [&](std::size_t i, std::size_t j) {
        return between(at(i, j, on_field->lo), at(i, j, on_field->hi), on_field->t);
    };
    const auto along_b = [&](std::size_t i) {
        return between(along_field(i, on_b->lo), along_field(i, on_b->hi), on_b->t);
    };
    return between(along_b(on_a->lo), along_b(on_a->hi), on_a->t);
}

DqCurrent dq_current(double a, double b, bool polar) {
    if (!polar) {
        return {a, b};
    }
    const double length = power_invariant_factor * a;
    return {-length * std::sin(b * radians), length * std::cos(b * radians)};
}

std::vector<double> mean_weights(const std::vector<double>& nodes) {
    std::vector<double> weights(nodes.size(), 0.0);
    if (nodes.size() == 1) {
        return {1.0};
    }
    const double span = nodes.back() - nodes.front();
    for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
        const double half = 0.5 * (nodes[i + 1] - nodes[i]) / span;
        weights[i] += half;
        weights[i + 1] += half;
    }
    return weights;
}

std::vector<double> nodes_of(const KZB_TABLE& table, std::size_t axis) {
    return {table.axes[axis].data(), table.axes[axis].data() + table.axes[axis].size()};
}

CurrentMap mean_of_table(const KZB_TABLE& table, const MapAxes& axes, bool polar) {
    const std::vector<double> weights = mean_weights(nodes_of(table, static_cast<std::size_t>(axes.position)));
    const std::size_t step = step_of(table, axes.position);
    return fill(table, axes, polar, [&](std::size_t line, double, double) {
        double mean = 0.0;
        for (std::size_t k = 0; k < weights.size(); ++k) {
            mean += weights[k] * table.values[line + k * step];
        }
        return mean;
    });
}

CurrentMap mean_of_flux(const KZB_TABLE& flux, const MapAxes& axes, bool polar, const TravelScale& travel) {
    struct Turn {
        double cosines[3];
        double sines[3];
    };
    const double scale = std::sqrt(2.0 / 3.0);
    const std::vector<double> weights = mean_weights(nodes_of(flux, static_cast<std::size_t>(axes.position)));
    std::vector<Turn> turns(weights.size());
    for (std::size_t k = 0; k < turns.size(); ++k) {
        const double theta = travel.electrical_per_unit * node_of(flux, axes.position, k) + travel.offset;
        for (int phase = 0; phase < 3; ++phase) {
            turns[k].cosines[phase] = scale * weights[k] * std::cos(theta - third_of_turn * phase);
            turns[k].sines[phase] = -scale * weights[k] * std::sin(theta - third_of_turn * phase);
        }
    }
    const std::size_t step = step_of(flux, axes.position);
    return fill(flux, axes, polar, [&](std::size_t line, double a, double b) {
        double psi_d = 0.0;
        double psi_q = 0.0;
        for (std::size_t k = 0; k < turns.size(); ++k) {
            const double* const psi = flux.values.data() + line + k * step;
            for (int phase = 0; phase < 3; ++phase) {
                psi_d += turns[k].cosines[phase] * psi[phase];
                psi_q += turns[k].sines[phase] * psi[phase];
            }
        }
        const DqCurrent i = dq_current(a, b, polar);
        return travel.torque_factor * (psi_d * i.iq - psi_q * i.id);
    });
}

}  // namespace kzb::tool
