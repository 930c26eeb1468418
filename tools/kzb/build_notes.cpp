#include "kzb/build_notes.h"

#include <algorithm>
#include <cmath>

#include "fmt/format.h"

namespace kzb::tool {

namespace {

bool has(const PmsmOptions& options, Application application) {
    const auto& wanted = options.model.applications;
    return std::find(wanted.begin(), wanted.end(), application) != wanted.end();
}

void note_mirror(const SourceMap& source, const MachineMap& map, std::vector<std::string>& notes) {
    notes.push_back(fmt::format(
        "q currents below zero are the mirror image of those above (psi_d even, psi_q and torque odd in iq{}); "
        "psi_q on the line iq = 0 deviates from its own image by up to {:.3g} Vs",
        source.has_positions ? " and theta" : "", map.mirror_residual()));
}

// Nodes of the (amplitude, phase) grid beyond the map.
void note_outside(const MachineMap& map, const TableGrids& grids, std::vector<std::string>& notes) {
    std::size_t beyond = 0;
    for (const double amplitude : grids.amplitude.nodes) {
        for (const double phase : grids.phase.nodes) {
            const DqCurrent i = current_at(amplitude, phase);
            beyond += map.covers(i.id, i.iq) ? 0U : 1U;
        }
    }
    if (beyond > 0) {
        notes.push_back(
            fmt::format("{} of {} current nodes lie beyond the map (id {:g} to {:g} A, iq {:g} to {:g} A) and "
                        "were continued linearly from its edge",
                        beyond, grids.amplitude.nodes.size() * grids.phase.nodes.size(), map.id().front(),
                        map.id().back(), map.iq().front(), map.iq().back()));
    }
    if (map.iq().front() >= 0.0) {
        notes.emplace_back("the map has no q currents below zero; --mirror iq completes them by symmetry");
    }
    if (!grids.phase.cyclic) {
        notes.push_back(
            fmt::format("the phase axis covers {:g} to {:g} deg; current phases beyond it are looked up at "
                        "its ends",
                        grids.phase.nodes.front(), grids.phase.nodes.back()));
    }
}

void note_left_out(const SourceMap& source, const TableGrids& grids, std::vector<std::string>& notes) {
    std::size_t left_out = 0;
    for (const double id : source.id) {
        for (const double iq : source.iq) {
            left_out += std::hypot(id, iq) > grids.current_max() * (1.0 + 1e-9) ? 1U : 0U;
        }
    }
    if (left_out > 0) {
        notes.push_back(
            fmt::format("{} of {} currents of the map are above the largest amplitude {:g} A and are not in "
                        "the tables over amplitude",
                        left_out, source.id.size() * source.iq.size(), grids.current_max()));
    }
}

void note_positions(const SourceMap& source, const PmsmOptions& options, std::vector<std::string>& notes) {
    if (!source.has_positions) {
        notes.emplace_back("the map has no positions: no harmonics, no torque ripple");
        return;
    }
    notes.push_back(
        fmt::format("{} positions over {:g} electrical degrees were resampled to {} over 360 by periodic "
                    "splines in dq",
                    source.theta.size(), source.period, options.machine.position_count));
    const bool alternates = source.period == 60.0 || source.period == 180.0;
    if (alternates && !source.psi_0.empty()) {
        notes.emplace_back("psi_0 changes its sign from one period of the map to the next");
    }
    if (has(options, Application::LdLq)) {
        notes.emplace_back("LdLq holds the means over position");
    }
    if (source.psi_0.empty()) {
        notes.emplace_back("the map has no psi_0: the zero-sequence flux is taken as zero");
    }
}

void note_torque(TorqueSource source, std::vector<std::string>& notes) {
    if (source == TorqueSource::coenergy) {
        notes.emplace_back(
            "torque from flux, current and the position derivative of the coenergy; it holds no cogging "
            "torque, which flux linkages do not tell");
    } else if (source == TorqueSource::flux_and_current) {
        notes.emplace_back("torque from flux and current, 1.5 p (psi_d iq - psi_q id)");
    }
}

// Oddities of the map itself.
void note_map(const MachineMap& map, std::vector<std::string>& notes) {
    const MachinePoint noload = map.mean(0.0, 0.0);
    if (noload.psi_d < 0.0) {
        notes.push_back(
            fmt::format("the flux without current is {:g} Vs on the d axis: a model expects the magnets on "
                        "the positive d axis",
                        noload.psi_d));
    }
    double lowest = noload.l_dd;
    for (const double id : map.id()) {
        for (const double iq : map.iq()) {
            const MachinePoint p = map.mean(id, iq);
            lowest = std::min({lowest, p.l_dd, p.l_qq});
        }
    }
    if (lowest <= 0.0) {
        notes.push_back(
            fmt::format("an incremental inductance of the map is {:g} H: a voltage-driven run may not be "
                        "stable there",
                        lowest));
    }
}

void note_flux_integral(const FluxRange& range, std::vector<std::string>& notes) {
    notes.push_back(
        fmt::format("flux plane d {:.4g} to {:.4g} Vs, q {:.4g} to {:.4g} Vs (power-invariant); {} of {} nodes "
                    "belong to currents beyond the map, continued linearly from its edge",
                    range.d_low, range.d_high, range.q_low, range.q_high, range.beyond_map, range.nodes));
}

}  // namespace

std::vector<std::string> notes_of(const SourceMap& source, const MachineMap& map, const TableGrids& grids,
                                  const FluxRange& flux_range, const PmsmOptions& options) {
    std::vector<std::string> notes;
    if (options.machine.mirror == Mirror::iq) {
        note_mirror(source, map, notes);
    }
    note_outside(map, grids, notes);
    note_left_out(source, grids, notes);
    note_positions(source, options, notes);
    note_torque(map.torque_source(), notes);
    note_map(map, notes);
    if (has(options, Application::FluxIntegralDQTheta)) {
        note_flux_integral(flux_range, notes);
    }
    return notes;
}

}  // namespace kzb::tool
