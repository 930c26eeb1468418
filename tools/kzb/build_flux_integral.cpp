// The tables of FluxIntegralDQTheta: the flux map inverted over a rectangle of flux linkages at each position.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/build_flux_inversion.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

// Space left around the flux linkages of the largest circle of currents, so that a run stays inside.
constexpr double flux_margin = 0.05;
constexpr double rim_step_deg = 2.5;

// Peak flux linkages that the currents of the grids reach, over all positions, with the margin. No flux at all is among
// them: the model probes the table there before its first step.
FluxRange reached_flux(const MachineMap& map, const TableGrids& grids) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    FluxRange range{inf, -inf, inf, -inf};
    const auto include = [&](const MachinePoint& p) {
        range.d_low = std::min(range.d_low, p.psi_d);
        range.d_high = std::max(range.d_high, p.psi_d);
        range.q_low = std::min(range.q_low, p.psi_q);
        range.q_high = std::max(range.q_high, p.psi_q);
    };
    include(MachinePoint{});
    for (std::size_t k = 0; k < (map.has_positions() ? map.position_count() : 1); ++k) {
        include(map.at(0.0, 0.0, k));
        for (double phase = grids.phase.nodes.front(); phase <= grids.phase.nodes.back(); phase += rim_step_deg) {
            for (const double amplitude : {0.5 * grids.current_max(), grids.current_max()}) {
                const DqCurrent i = current_at(amplitude, phase);
                include(map.at(i.id, i.iq, k));
            }
        }
    }
    const double around_d = flux_margin * (range.d_high - range.d_low);
    const double around_q = flux_margin * (range.q_high - range.q_low);
    return {range.d_low - around_d, range.d_high + around_d, range.q_low - around_q, range.q_high + around_q};
}

// `count` nodes from low to high, even on both sides of a node at `inner`: without current the linear lookup between
// nodes then gives no current either.
std::vector<double> nodes_through(double low, double inner, double high, std::size_t count) {
    if (count < 3) {
        return even_nodes(low, high, count);
    }
    const double share = std::round(static_cast<double>(count - 1) * (inner - low) / (high - low));
    const auto below = static_cast<std::size_t>(std::clamp(share, 1.0, static_cast<double>(count - 2)));
    std::vector<double> nodes = even_nodes(low, inner, below + 1);
    const std::vector<double> upper = even_nodes(inner, high, count - below);
    nodes.insert(nodes.end(), upper.begin() + 1, upper.end());
    return nodes;
}

struct CurrentTables {
    std::vector<double> id;
    std::vector<double> iq;
};

// Inverts the map at all nodes of the flux plane at position k; each search starts from its neighbour's result.
void invert_plane(const MachineMap& map, std::size_t k, const TableAxis& flux_d, const TableAxis& flux_q,
                  std::size_t positions, CurrentTables& tables, FluxRange& range, const std::string& source_name) {
    DqCurrent line_start;
    for (std::size_t a = 0; a < flux_d.nodes.size(); ++a) {
        DqCurrent start = line_start;
        for (std::size_t b = 0; b < flux_q.nodes.size(); ++b) {
            const double psi_d = flux_d.nodes[a] / power_invariant_factor;
            const double psi_q = flux_q.nodes[b] / power_invariant_factor;
            const auto found = invert_flux(map, k, psi_d, psi_q, start);
            if (!found) {
                throw Failure(exit_file,
                              fmt::format("{}: flux linkage d {:g} Vs, q {:g} Vs at theta {:g} deg lies so far "
                                          "outside the map that no current belongs to it; a smaller "
                                          "--current-max keeps the tables inside",
                                          source_name, psi_d, psi_q, map.theta_deg(k)));
            }
            start = *found;
            if (b == 0) {
                line_start = start;
            }
            const std::size_t place = (a * flux_q.nodes.size() + b) * positions + k;
            tables.id[place] = power_invariant_factor * start.id;
            tables.iq[place] = power_invariant_factor * start.iq;
            ++range.nodes;
            range.beyond_map += map.covers(start.id, start.iq) ? 0U : 1U;
        }
    }
}

// Copies the first position over all others (a map without positions) or only to the closing node.
void fill_positions(const MachineMap& map, std::size_t positions, std::vector<double>& values) {
    for (std::size_t line = 0; line < values.size(); line += positions) {
        for (std::size_t n = map.has_positions() ? positions - 1 : 1; n < positions; ++n) {
            values[line + n] = values[line];
        }
    }
}

void put_noload_flux(KZB_STORE* store, const MachineMap& map, const TableGrids& grids) {
    std::vector<double> d;
    std::vector<double> q;
    std::vector<double> zero;
    for (std::size_t n = 0; n < grids.position.nodes.size(); ++n) {
        const MachinePoint p = map.at(0.0, 0.0, n % map.position_count());
        d.push_back(power_invariant_factor * p.psi_d);
        q.push_back(power_invariant_factor * p.psi_q);
        zero.push_back(std::numbers::sqrt3 * p.psi_0);
    }
    put_table(store, "flux_table", "fd_noload", {grids.position}, d);
    put_table(store, "flux_table", "fq_noload", {grids.position}, q);
    put_table(store, "flux_table", "f0_noload", {grids.position}, zero);
}

void put_zero_flux(KZB_STORE* store, const MachineMap& map, const TableGrids& grids) {
    std::vector<double> zero;
    for (const double amplitude : grids.amplitude.nodes) {
        for (std::size_t j = 0; j < grids.phase.nodes.size(); ++j) {
            const bool closing = grids.phase.cyclic && j + 1 == grids.phase.nodes.size();
            const DqCurrent i = current_at(amplitude, grids.phase.nodes[closing ? 0 : j]);
            for (std::size_t n = 0; n < grids.position.nodes.size(); ++n) {
                zero.push_back(std::numbers::sqrt3 * map.at(i.id, i.iq, n % map.position_count()).psi_0);
            }
        }
    }
    put_table(store, "flux_table", "f0_ibeta", {grids.amplitude, grids.phase, grids.position}, zero);
}

}  // namespace

FluxRange put_flux_integral(KZB_STORE* store, const MachineMap& map, const TableGrids& grids,
                            const std::string& source_name) {
    require_monotone(map, source_name);
    FluxRange range = reached_flux(map, grids);
    for (double* bound : {&range.d_low, &range.d_high, &range.q_low, &range.q_high}) {
        *bound *= power_invariant_factor;
    }
    const MachinePoint noload = map.mean(0.0, 0.0);
    const TableAxis flux_d{
        nodes_through(range.d_low, power_invariant_factor * noload.psi_d, range.d_high, grids.flux_nodes), false};
    const TableAxis flux_q{
        nodes_through(range.q_low, power_invariant_factor * noload.psi_q, range.q_high, grids.flux_nodes), false};
    const std::size_t positions = grids.position.nodes.size();
    CurrentTables tables;
    tables.id.resize(grids.flux_nodes * grids.flux_nodes * positions);
    tables.iq.resize(tables.id.size());
    for (std::size_t k = 0; k < (map.has_positions() ? map.position_count() : 1); ++k) {
        invert_plane(map, k, flux_d, flux_q, positions, tables, range, source_name);
    }
    fill_positions(map, positions, tables.id);
    fill_positions(map, positions, tables.iq);
    put_table(store, "current_table", "id", {flux_d, flux_q, grids.position}, tables.id);
    put_table(store, "current_table", "iq", {flux_d, flux_q, grids.position}, tables.iq);
    put_noload_flux(store, map, grids);
    put_zero_flux(store, map, grids);
    put_torque(store, "harmonic_torque", map, grids);
    return range;
}

}  // namespace kzb::tool
