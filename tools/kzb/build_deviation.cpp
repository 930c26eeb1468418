#include "kzb/build_deviation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "kzb/build_outcome.h"
#include "kzb/deviation_sum.h"

namespace kzb::tool {

namespace {

struct MapPoint {
    double id, iq, theta, psi_d, psi_q, torque;
};

// What the tables say at a point, in the quantities compared.
using Answer = std::array<double, 3>;

double mean_of(const std::vector<double>& field, std::size_t first, std::size_t count) {
    const auto begin = field.begin() + static_cast<std::ptrdiff_t>(first);
    return std::accumulate(begin, begin + static_cast<std::ptrdiff_t>(count), 0.0) / static_cast<double>(count);
}

// Whether the map tells the torque of its points: by a column, or without positions by the flux vector product.
bool tells_torque(const SourceMap& map) {
    return !map.torque.empty() || !map.has_positions;
}

// The points of the map, torque 0 where the map does not tell it.
std::vector<MapPoint> points_of_map(const SourceMap& map, double pole_pairs, bool means) {
    std::vector<MapPoint> points;
    const std::size_t positions = map.theta.size();
    for (std::size_t i = 0; i < map.id.size(); ++i) {
        for (std::size_t j = 0; j < map.iq.size(); ++j) {
            for (std::size_t k = 0; k < (means ? 1 : positions); ++k) {
                const std::size_t n = map.index(i, j, k);
                const std::size_t count = means ? positions : 1;
                MapPoint p{
                    map.id[i], map.iq[j], map.theta[k], mean_of(map.psi_d, n, count), mean_of(map.psi_q, n, count),
                    0.0};
                if (!map.torque.empty()) {
                    p.torque = mean_of(map.torque, n, count);
                } else if (tells_torque(map)) {
                    p.torque = 1.5 * pole_pairs * (p.psi_d * p.iq - p.psi_q * p.id);
                }
                points.push_back(p);
            }
        }
    }
    return points;
}

// Amplitude-invariant Park transform of winding quantities.
std::array<double, 2> park(const std::array<double, 3>& winding, double theta) {
    double d = 0.0;
    double q = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
        const double angle = theta - 120.0 * static_cast<double>(k);
        d += 2.0 / 3.0 * winding[k] * cos_deg(angle);
        q -= 2.0 / 3.0 * winding[k] * sin_deg(angle);
    }
    return {d, q};
}

struct Asked {
    MapPoint point;
    double amplitude, phase, position;
};

Answer ask_harmonic(OutcomeLookup& tables, const Asked& asked) {
    std::array<double, 3> flux{};
    for (std::size_t k = 0; k < 3; ++k) {
        flux[k] =
            tables.at("current_flux", "flux", {asked.amplitude, asked.phase, asked.position, static_cast<double>(k)});
    }
    const auto dq = park(flux, asked.point.theta);
    return {dq[0], dq[1], tables.at("harmonic_torque", "torque_ibeta", {asked.phase, asked.position, asked.amplitude})};
}

// psi = magnet flux + L i, each column of L taken half a period on where its current is negative.
Answer ask_simple_harmonic(OutcomeLookup& tables, const Asked& asked, double pole_pairs) {
    std::array<double, 3> flux{};
    for (std::size_t row = 0; row < 3; ++row) {
        flux[row] = tables.with("Spline", "mag_flux", "flux", {asked.position, static_cast<double>(row)});
        for (std::size_t column = 0; column < 3; ++column) {
            const double angle = asked.point.theta - 120.0 * static_cast<double>(column);
            const double i = asked.point.id * cos_deg(angle) - asked.point.iq * sin_deg(angle);
            const double position = asked.position + (i < 0.0 ? 180.0 / pole_pairs : 0.0);
            const double element = static_cast<double>(3 * column + row);
            flux[row] += i * tables.at("inductance", "inductance", {asked.amplitude, position, element});
        }
    }
    const auto dq = park(flux, asked.point.theta);
    return {dq[0], dq[1], tables.at("torque", "torque_ibeta", {asked.phase, asked.position, asked.amplitude})};
}

Answer ask_ldlq(OutcomeLookup& tables, const Asked& asked, double magnet_flux, double pole_pairs) {
    const MapPoint& p = asked.point;
    const double psi_d =
        magnet_flux + p.id * tables.at("dq_inductance", "d_inductance", {asked.phase, asked.amplitude});
    const double psi_q = p.iq * tables.at("dq_inductance", "q_inductance", {asked.phase, asked.amplitude});
    return {psi_d, psi_q, 1.5 * pole_pairs * (psi_d * p.iq - psi_q * p.id)};
}

Answer ask_flux_integral(OutcomeLookup& tables, const Asked& asked) {
    const std::vector<double> flux{power_invariant_factor * asked.point.psi_d,
                                   power_invariant_factor * asked.point.psi_q, asked.position};
    return {tables.at("current_table", "id", flux) / power_invariant_factor,
            tables.at("current_table", "iq", flux) / power_invariant_factor,
            tables.at("harmonic_torque", "torque_ibeta", {asked.phase, asked.position, asked.amplitude})};
}

// The phase brought onto the axis where a whole turn does it.
double phase_on(const TableAxis& axis, double phase) {
    if (phase < axis.nodes.front() - 1e-9 && phase + 360.0 <= axis.nodes.back() + 1e-9) {
        return phase + 360.0;
    }
    return phase;
}

}  // namespace

DeviationReport compare_tables(KZB_STORE* store, Application application, const SourceMap& source,
                               const TableGrids& grids, const MachineOptions& machine, const std::string& method,
                               bool means) {
    const bool from_flux = application == Application::FluxIntegralDQTheta;
    std::vector<DeviationSum<Deviation>> comparisons;
    comparisons.emplace_back(from_flux ? "id" : "psi_d", from_flux ? "A" : "Vs");
    comparisons.emplace_back(from_flux ? "iq" : "psi_q", from_flux ? "A" : "Vs");
    comparisons.emplace_back("torque", "Nm");
    DeviationReport report;
    report.application = application;
    report.against = means ? "position means" : "points";
    OutcomeLookup tables(store, method);
    const double magnet_flux = kzb_get_double("d_flux", "d_flux", store) / power_invariant_factor;
    for (const MapPoint& point : points_of_map(source, machine.pole_pairs, means)) {
        Asked asked{point, std::hypot(point.id, point.iq), phase_on(grids.phase, phase_of(point.id, point.iq)),
                    std::fmod(point.theta - machine.beta_zero + 720.0, 360.0) / machine.pole_pairs};
        if (asked.amplitude > grids.current_max() * (1.0 + 1e-9)) {
            ++report.left_out;
            continue;
        }
        asked.amplitude = std::min(asked.amplitude, grids.current_max());
        ++report.points;
        Answer answer{};
        switch (application) {
            case Application::LdLq:
                answer = ask_ldlq(tables, asked, magnet_flux, machine.pole_pairs);
                break;
            case Application::SimpleHarmonic:
                answer = ask_simple_harmonic(tables, asked, machine.pole_pairs);
                break;
            case Application::Harmonic:
                answer = ask_harmonic(tables, asked);
                break;
            case Application::FluxIntegralDQTheta:
                answer = ask_flux_integral(tables, asked);
                break;
        }
        const Answer wanted{from_flux ? point.id : point.psi_d, from_flux ? point.iq : point.psi_q, point.torque};
        for (std::size_t n = 0; n < wanted.size(); ++n) {
            comparisons[n].add(answer[n] - wanted[n], wanted[n], [&point](Deviation& d) {
                d.id = point.id;
                d.iq = point.iq;
                d.theta_deg = point.theta;
            });
        }
    }
    report.deviations = {comparisons[0].result(), comparisons[1].result()};
    if (tells_torque(source)) {
        report.deviations.push_back(comparisons[2].result());
    }
    report.out_of_table = tables.out_of_table();
    return report;
}

}  // namespace kzb::tool
