// KZFEMTableModel: force, user-specified outputs, iron loss.
#include <cstdint>

#include "circuit/generic/fem_table_model.h"

namespace kzb {
namespace {

enum ReferenceType { reference_user_input = 0, reference_coil_set = 1, reference_motion = 2 };
enum PhysicalType { physical_amplitude = 1, physical_phase = 2, physical_speed = 3 };

}  // namespace

double KZFEMTableModel::force(const KZForceTable& table) {
    point_ = axes_;
    if (force_rows_ > 1) {
        point_.push_back(table.forcetable_id - 1.0);
    }
    const double value = look_up(force_table_, point_);
    if (!table_axes_form_) {
        return value * table.coef_force;
    }
    const auto correction = force_corrections_.find(table.forcetable_id);
    return correction == force_corrections_.end() ? value : corrections_.correct(correction->second, value);
}

double KZFEMTableModel::output(const KZUserSpecifiedParam& param) {
    const bool second = !single_output_table_ && param.resolution == 1;
    const int limit = second ? output2_rows_ : output_rows_;
    const std::int64_t row = single_output_table_ ? std::int64_t{param.table_id} - 1 : param.row;
    // One past the last row is let through, as established.
    if (row < 0 || row > limit) {
        return 0.0;
    }
    point_ = axes_;
    if (limit > 1) {
        point_.push_back(static_cast<double>(row));
    }
    const double value = look_up(output_tables_[second ? 1 : 0], point_);
    if (!table_axes_form_) {
        return value * param.coef_output_port;
    }
    const auto correction = output_corrections_.find(param.table_id);
    return correction == output_corrections_.end() ? value : corrections_.correct(correction->second, value);
}

double KZFEMTableModel::iron_loss(const std::vector<double>& user_inputs) {
    point_.assign(iron_loss_axes_.size(), 0.0);
    for (const UserAxis& axis : iron_loss_axes_) {
        double value = 0.0;
        if (axis.reference_type == reference_user_input) {
            const std::size_t port = static_cast<std::size_t>(axis.reference_id) - 1;
            value = port < user_inputs.size() ? user_inputs[port] : 0.0;
        } else if (axis.reference_type == reference_coil_set) {
            for (const auto& set : coil_sets_) {
                if (set->id == axis.reference_id) {
                    value = axis.physical_type == physical_amplitude ? set->amplitude
                            : axis.physical_type == physical_phase   ? set->phase - set->phase_initial
                                                                     : 0.0;
                    break;
                }
            }
        } else if (axis.reference_type == reference_motion && axis.physical_type == physical_speed) {
            const KZMotionCondition* const moving = motion(axis.reference_id);
            value = moving == nullptr ? 0.0 : moving->speed(dt_);
        }
        const std::size_t place = static_cast<std::size_t>(axis.axis_no) - 1;
        if (place < point_.size()) {
            point_[place] = value;
        }
    }
    return iron_loss_table_.at(*store_, method_, point_.data(), static_cast<int>(point_.size()));
}

}  // namespace kzb
