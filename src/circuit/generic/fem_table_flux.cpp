// KZFEMTableModel: fluxes of the coils, and in the table axes form their differences.
#include <algorithm>
#include <cmath>

#include "circuit/generic/fem_table_model.h"

namespace kzb {
namespace {

// Currents and steps below these count as none.
constexpr double no_current = 1e-15;
constexpr double no_step = 1e-20;
// Part of a current by which it is moved.
constexpr double plain_step = 0.01;

bool is_outside(double x, const std::vector<double>& grid) {
    return x < grid.front() || x > grid.back();
}

double least_nonzero(const std::vector<double>& grid) {
    double least = 0.0;
    for (const double node : grid) {
        const double magnitude = std::fabs(node);
        if (magnitude > no_current && (least == 0.0 || magnitude < least)) {
            least = magnitude;
        }
    }
    return least;
}

}  // namespace

// The axes are searched once for all coils where the table has the coil's index as its last axis; a single coil needs
// none.
void KZFEMTableModel::look_up_fluxes(const double* axes, int count) {
    fluxes_.resize(static_cast<std::size_t>(count));
    flux_table_.plain_components(*store_, method_, axes, axis_count_, count, fluxes_.data());
}

bool KZFEMTableModel::indices_in_order() {
    int place = 0;
    for (const KZFEMCoil* const coil : fem_coils_) {
        if (phase_of_group_[coil->group_id].index != place++) {
            return false;
        }
    }
    return true;
}

// Fluxes of the coils in their order at `point_` [axis_count + 1], whose last place is written.
void KZFEMTableModel::look_up_coil_fluxes() {
    const std::size_t count = fem_coils_.size();
    if (indices_in_order()) {
        look_up_fluxes(point_.data(), static_cast<int>(count));
        return;
    }
    fluxes_.resize(count);
    for (std::size_t k = 0; k < count; ++k) {
        point_.back() = static_cast<double>(phase_of_group_[fem_coils_[k]->group_id].index);
        fluxes_[k] = look_up(flux_table_, point_);
    }
}

void KZFEMTableModel::evaluate_fluxes() {
    point_ = axes_;
    point_.push_back(0.0);
    look_up_coil_fluxes();
    for (std::size_t k = 0; k < fem_coils_.size(); ++k) {
        KZFEMCoil& coil = *fem_coils_[k];
        coil.set_flux(corrections_.correct(phase_of_group_[coil.group_id].correction, fluxes_[k]));
    }
}

void KZFEMTableModel::evaluate_set_fluxes() {
    look_up_fluxes(axes_.data(), static_cast<int>(coil_ids_.size()));
    std::size_t index = 0;
    for (const auto& set : coil_sets_) {
        for (const KZFEMCoilSet::Entry& entry : set->coils) {
            entry.coil().set_flux(fluxes_[index++]);
        }
    }
}

void KZFEMTableModel::evaluate_difference_inductances() {
    clamp_axes();
    base_fluxes();
    for (const KZFEMCoil* const moved : fem_coils_) {
        point_ = clamped_;
        point_.push_back(0.0);
        const double step = perturb(*moved);
        look_up_coil_fluxes();
        set_differences(*moved, step);
    }
}

// Above its grid an axis comes back to 0.99 times the last node, not to the node, as established.
void KZFEMTableModel::clamp_axes() {
    clamped_ = axes_;
    for (std::size_t i = 0; i < table_axes_.size(); ++i) {
        const std::vector<double>& grid = table_axes_[i].grid;
        if (!table_axes_[i].cyclic && !grid.empty() && (grid.size() < 2 || is_outside(clamped_[i], grid))) {
            clamped_[i] = clamped_[i] < grid.front() ? grid.front() : 0.99 * grid.back();
        }
    }
}

void KZFEMTableModel::base_fluxes() {
    const int count = static_cast<int>(fem_coils_.size());
    look_up_fluxes(clamped_.data(), count);
    base_flux_.resize(fem_coils_.size());
    for (int i = 0; i < count; ++i) {
        const auto place = static_cast<std::size_t>(i);
        base_flux_[place] = corrections_.correct(correction_of_index(i), fluxes_[place]);
    }
}

int KZFEMTableModel::correction_of_index(int index) const {
    for (const auto& [group, phase] : phase_of_group_) {
        if (phase.index == index) {
            return phase.correction;
        }
    }
    return no_correction;
}

// Moves `point_` along the current of a coil; how far.
double KZFEMTableModel::perturb(const KZFEMCoil& coil) {
    for (const KZTableAxis& axis : table_axes_) {
        if (axis.kind == axis_current && axis.reference_id == coil.group_id) {
            double& x = point_[static_cast<std::size_t>(axis.id - 1)];
            const double step = difference_step(x, axis.grid);
            x += step;
            return step;
        }
    }
    // The current stands behind expressions: all axes are evaluated anew with the current moved, at their place in the
    // list, unclamped.
    double& current = sources_.coil_currents[coil.group_id];
    const double present = current;
    const double step = (std::fabs(present) < no_current ? minimum_current_ : present) * plain_step;
    current = present + step;
    for (std::size_t i = 0; i < table_axes_.size(); ++i) {
        point_[i] = axis_value(table_axes_[i], factors_, corrections_);
    }
    current = present;
    return step;
}

void KZFEMTableModel::set_differences(const KZFEMCoil& moved, double step) {
    for (std::size_t k = 0; k < fem_coils_.size(); ++k) {
        KZFEMCoil& coil = *fem_coils_[k];
        const Phase& phase = phase_of_group_[coil.group_id];
        const double value = corrections_.correct(phase.correction, fluxes_[k]);
        if (std::fabs(step) >= no_step) {
            coil.set_inductance(moved.group_id, (value - base_flux_[static_cast<std::size_t>(phase.index)]) / step);
        }
    }
}

// 10 percent of the magnitude at the small end of the grid, 5 percent at the large end, and positive.
double KZFEMTableModel::difference_step(double x, const std::vector<double>& grid) const {
    if (grid.size() < 2 || constant_step_) {
        return x * plain_step;
    }
    double lo = 1e20;
    double hi = -1e20;
    double nonzero = 0.0;
    for (const double node : grid) {
        const double magnitude = std::fabs(node);
        if (magnitude < lo) {
            lo = magnitude;
            nonzero = magnitude > no_current ? magnitude : nonzero;
        }
        hi = std::max(hi, magnitude);
    }
    if (nonzero == 0.0) {
        nonzero = least_nonzero(grid);
    }
    const double w = std::fabs(x) >= no_current ? std::fabs(x) : nonzero;
    if (std::fabs(hi - lo) < no_current) {
        return x * plain_step;
    }
    const double u = (hi - w) / (hi - lo);
    const double v = (w - lo) / (hi - lo);
    return ((1 - u) * 0.05 + (1 - v) * 0.1) * w;
}

}  // namespace kzb
