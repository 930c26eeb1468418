#include "kzb/wfsm_deviation.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "kzb/deviation_sum.h"

namespace kzb::tool {

namespace {

struct RotorPoint {
    double i_f, id, iq;
    double psi_d, psi_q;
    std::optional<double> psi_f, torque;
};

std::vector<RotorPoint> points_of_build(const WfsmBuild& build) {
    std::vector<RotorPoint> points;
    if (build.map) {
        const WoundFieldMap& map = *build.map;
        for (std::size_t f = 0; f < map.field.size(); ++f) {
            for (std::size_t p = 0; p < map.phase.size(); ++p) {
                for (std::size_t a = 0; a < map.amplitude.size(); ++a) {
                    const std::size_t n = map.index(f, p, a);
                    const DqCurrent i = current_at(map.amplitude[a], map.phase[p]);
                    points.push_back({map.field[f], i.id, i.iq, map.psi_d[n], map.psi_q[n], {}, {}});
                    if (!map.torque.empty()) {
                        points.back().torque = map.torque[n];
                    }
                }
            }
        }
        return points;
    }
    // A thousandth of the tables' range, where machines work.
    const double reach = 1e-3 * build.first.nodes.back();
    for (const double f : {-1.0, 0.0, 0.3, 1.0}) {
        for (const double d : {-1.0, -0.4, 0.0, 0.7}) {
            for (const double q : {-0.8, 0.0, 0.5, 1.0}) {
                const double id = d * reach;
                const double iq = q * reach;
                const WoundFieldPoint p = build.machine->at(id, iq, f * reach);
                points.push_back({f * reach, id, iq, p.psi_d, p.psi_q, p.psi_f,
                                  1.5 * build.pole_pairs * (p.psi_d * iq - p.psi_q * id)});
            }
        }
    }
    return points;
}

using WfsmSum = DeviationSum<WfsmDeviation>;

void compare(WfsmSum& sum, double told, double wanted, const RotorPoint& point) {
    sum.add(told - wanted, wanted, [&point](WfsmDeviation& deviation) {
        deviation.i_f = point.i_f;
        deviation.id = point.id;
        deviation.iq = point.iq;
    });
}

}  // namespace

WfsmDeviationReport compare_wfsm(KZB_STORE* store, const WfsmBuild& build) {
    WfsmSum psi_d("psi_d", "Vs"), psi_q("psi_q", "Vs"), psi_f("psi_f", "Vs"), torque("torque", "Nm");
    WfsmDeviationReport report;
    // Different places between the nodes: as far from one as can be.
    const std::vector<double>& positions = build.position.nodes;
    std::size_t step = 0;
    for (const RotorPoint& point : points_of_build(build)) {
        step = (step + 7) % (positions.size() - 1);
        const double position = 0.5 * (positions[step] + positions[step + 1]);
        const double theta = position * build.pole_pairs;
        double at[5] = {power_invariant_factor * point.id, power_invariant_factor * point.iq, point.i_f, position, 0.0};
        if (build.polar) {
            at[0] = std::min(std::hypot(point.id, point.iq), build.first.nodes.back());
            at[1] = phase_of(point.id, point.iq);
        }
        double d = 0.0;
        double q = 0.0;
        for (int k = 0; k < 3; ++k) {
            at[4] = k;
            const double flux = kzb_get_table_interpolated_value("current_flux", "flux", at, "Linear", store);
            d += 2.0 / 3.0 * flux * cos_deg(theta - 120.0 * k);
            q -= 2.0 / 3.0 * flux * sin_deg(theta - 120.0 * k);
        }
        compare(psi_d, d, point.psi_d, point);
        compare(psi_q, q, point.psi_q, point);
        if (point.psi_f) {
            at[4] = 3.0;
            compare(psi_f, kzb_get_table_interpolated_value("current_flux", "flux", at, "Linear", store), *point.psi_f,
                    point);
        }
        if (point.torque) {
            compare(torque, kzb_get_table_interpolated_value("harmonic_torque", "torque_ibeta", at, "Linear", store),
                    *point.torque, point);
        }
        ++report.points;
    }
    for (const WfsmSum* comparison : {&psi_d, &psi_q, &psi_f, &torque}) {
        if (comparison->any()) {
            report.deviations.push_back(comparison->result());
        }
    }
    return report;
}

}  // namespace kzb::tool
