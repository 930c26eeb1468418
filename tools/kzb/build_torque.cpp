#include "kzb/build_torque.h"

#include <algorithm>
#include <cstddef>
#include <numbers>

#include "kzb/build_spline.h"

namespace kzb::tool {

namespace {

// Integral of f from a to b, f a cubic between the nodes: Simpson's rule piece by piece is exact.
template <class Function>
double integral(double a, double b, const std::vector<double>& nodes, Function f) {
    if (b < a) {
        return -integral(b, a, nodes, f);
    }
    double sum = 0.0;
    double from = a;
    const auto piece = [&](double to) {
        sum += (to - from) / 6.0 * (f(from) + 4.0 * f(0.5 * (from + to)) + f(to));
        from = to;
    };
    for (const double node : nodes) {
        if (node > a && node < b) {
            piece(node);
        }
    }
    piece(b);
    return sum;
}

// psi of one position as a field over the currents.
std::vector<double> at_position(const std::vector<double>& field, const SourceMap& map, std::size_t k) {
    std::vector<double> plane;
    plane.reserve(map.id.size() * map.iq.size());
    for (std::size_t n = k; n < field.size(); n += map.theta.size()) {
        plane.push_back(field[n]);
    }
    return plane;
}

// Coenergy at each point of the map, by way of i_q = 0.
std::vector<double> coenergy(const SourceMap& map) {
    const double id0 = std::clamp(0.0, map.id.front(), map.id.back());
    const double iq0 = std::clamp(0.0, map.iq.front(), map.iq.back());
    std::vector<double> w(map.psi_d.size());
    for (std::size_t k = 0; k < map.theta.size(); ++k) {
        const BicubicSurface psi_d(map.id, map.iq, at_position(map.psi_d, map, k));
        const BicubicSurface psi_q(map.id, map.iq, at_position(map.psi_q, map, k));
        for (std::size_t i = 0; i < map.id.size(); ++i) {
            const double along_d = integral(id0, map.id[i], map.id, [&](double x) { return psi_d.at(x, iq0).f; });
            for (std::size_t j = 0; j < map.iq.size(); ++j) {
                const double along_q =
                    integral(iq0, map.iq[j], map.iq, [&](double y) { return psi_q.at(map.id[i], y).f; });
                w[map.index(i, j, k)] = 1.5 * (along_d + along_q);
            }
        }
    }
    return w;
}

std::vector<double> rest_from_coenergy(const SourceMap& map, double pole_pairs) {
    constexpr double degrees = 180.0 / std::numbers::pi;
    const std::vector<double> w = coenergy(map);
    std::vector<double> rest(w.size());
    const std::size_t n = map.theta.size();
    for (std::size_t line = 0; line < w.size(); line += n) {
        const auto first = w.begin() + static_cast<std::ptrdiff_t>(line);
        const PeriodicSpline over_theta(map.theta, std::vector<double>(first, first + static_cast<std::ptrdiff_t>(n)),
                                        map.period);
        for (std::size_t k = 0; k < n; ++k) {
            rest[line + k] = pole_pairs * degrees * over_theta.slope_at(map.theta[k]);
        }
    }
    return rest;
}

}  // namespace

std::vector<double> torque_rest(const SourceMap& map, double pole_pairs, TorqueSource& source) {
    if (map.torque.empty()) {
        source = map.has_positions ? TorqueSource::coenergy : TorqueSource::flux_and_current;
        return map.has_positions ? rest_from_coenergy(map, pole_pairs) : std::vector<double>(map.psi_d.size(), 0.0);
    }
    source = TorqueSource::column;
    std::vector<double> rest(map.torque);
    for (std::size_t i = 0; i < map.id.size(); ++i) {
        for (std::size_t j = 0; j < map.iq.size(); ++j) {
            for (std::size_t k = 0; k < map.theta.size(); ++k) {
                const std::size_t n = map.index(i, j, k);
                rest[n] -= 1.5 * pole_pairs * (map.psi_d[n] * map.iq[j] - map.psi_q[n] * map.id[i]);
            }
        }
    }
    return rest;
}

}  // namespace kzb::tool
