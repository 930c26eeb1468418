#include "circuit/generic/fem_table_model.h"

namespace kzb {

void KZFEMTableModel::set_displacements(const std::vector<double>& values) {
    if (motions_.empty() || values.size() != motions_.size()) {
        return;
    }
    for (const auto& motion : motions_) {
        motion->previous_position = motion->position;
        motion->position = values[static_cast<std::size_t>(motion->id - 1)];
        if (table_axes_form_) {
            sources_.motion_positions[motion->id] = motion->position_in(motion->table_unit());
        }
    }
}

void KZFEMTableModel::update_coil_state() {
    if (table_axes_form_) {
        for (const auto& branch : circuit_->branches()) {
            if (const KZFEMCoil* const coil = as_fem_coil(branch->element_type.get())) {
                sources_.coil_currents[coil->group_id] = branch->current;
            }
        }
        return;
    }
    for (const auto& set : coil_sets_) {
        set->update_state();
    }
}

void KZFEMTableModel::evaluate() {
    if (table_axes_form_) {
        evaluate_axes();
        evaluate_difference_inductances();
        evaluate_fluxes();
    } else {
        evaluate_set_axes();
        evaluate_set_inductances();
        evaluate_set_fluxes();
    }
}

void KZFEMTableModel::evaluate_axes() {
    for (KZTableAxis& axis : table_axes_) {
        axes_[static_cast<std::size_t>(axis.id - 1)] = axis_value(axis, factors_, corrections_);
    }
}

void KZFEMTableModel::evaluate_set_axes() {
    for (const auto& set : coil_sets_) {
        if (set->current_axis > 0) {
            axes_[static_cast<std::size_t>(set->current_axis - 1)] = set->amplitude;
        }
        if (set->phase_axis > 0) {
            axes_[static_cast<std::size_t>(set->phase_axis - 1)] = set->phase - set->phase_initial;
        }
    }
    for (const auto& motion : motions_) {
        if (motion->axis_no > 0) {
            axes_[static_cast<std::size_t>(motion->axis_no - 1)] = motion->position_in(motion->table_unit());
        }
    }
}

double KZFEMTableModel::look_up(TableRef& table, const std::vector<double>& point) {
    return table.plain_at(*store_, method_, point.data(), static_cast<int>(point.size()));
}

int KZFEMTableModel::find_motion_by_name(std::string_view name) const {
    for (const auto& motion : motions_) {
        if (motion->name == name) {
            return motion->id;
        }
    }
    return 0;
}

}  // namespace kzb
