// KZFEMTableModel: differential inductances of the coil set form, from their own table.
#include <array>

#include "circuit/generic/fem_table_model.h"

namespace kzb {
namespace {

// Order of a three-phase set's coils as the coil of place 0, 1 or 2 sees them.
constexpr std::array<std::array<std::size_t, 3>, 3> coil_order{{{0, 1, 2}, {2, 0, 1}, {1, 2, 0}}};

}  // namespace

void KZFEMTableModel::evaluate_set_inductances() {
    int offset = 0;
    for (std::size_t place = 0; place < coil_sets_.size(); ++place) {
        const KZFEMCoilSet& set = *coil_sets_[place];
        point_ = axes_;
        point_.push_back(0.0);
        if (set.kind == set_three_phases) {
            set_three_phase_inductances(set, static_cast<int>(place), offset);
        } else {
            set_other_inductances(set, static_cast<int>(place));
        }
        offset += static_cast<int>(set.coils.size());
    }
}

// The axes are searched once for all pairs of a row.
void KZFEMTableModel::look_up_pairs(int first, int count) {
    pairs_.resize(static_cast<std::size_t>(count));
    inductance_table_.plain_components(*store_, method_, point_.data(), axis_count_, {count, first}, pairs_.data());
}

// Each coil reads the table at the position shifted by its own phase.
void KZFEMTableModel::set_three_phase_inductances(const KZFEMCoilSet& set, int place, int offset) {
    const KZMotionCondition& moving = *set.leading_motion();
    const double position = moving.position_in(moving.table_unit());
    const double period = moving.period_in(moving.table_unit());
    double& axis = point_[static_cast<std::size_t>(moving.axis_no - 1)];
    const int total = static_cast<int>(coil_ids_.size());
    for (int c = 0; c < 3; ++c) {
        const KZFEMCoilSet::Entry& entry = set.coils[static_cast<std::size_t>(c)];
        const std::array<std::size_t, 3>& order = coil_order[static_cast<std::size_t>(c)];
        int column = 0;
        int x = c + offset;
        for (const auto& other : coil_sets_) {
            if (other->kind == set_three_phases) {
                axis = position + entry.phase_diff / 360 * period;
                look_up_pairs(place * total + column, 3);
                for (std::size_t q = 0; q < 3; ++q) {
                    entry.coil().set_inductance(coil_ids_[static_cast<std::size_t>(column) + q], pairs_[order[q]]);
                }
            } else {
                axis = position;
                look_up_pairs(x, 1);
                // A last set without coils has no column.
                if (column < total) {
                    entry.coil().set_inductance(coil_ids_[static_cast<std::size_t>(column)], pairs_.front());
                }
            }
            column += static_cast<int>(other->coils.size());
            x += total;
        }
    }
}

// The pair doesn't depend on which coil of the set is filled: all get the same row, as established.
void KZFEMTableModel::set_other_inductances(const KZFEMCoilSet& set, int place) {
    const int total = static_cast<int>(coil_ids_.size());
    for (const KZFEMCoilSet::Entry& entry : set.coils) {
        look_up_pairs(place * total, total);
        for (std::size_t q = 0; q < pairs_.size(); ++q) {
            entry.coil().set_inductance(coil_ids_[q], pairs_[q]);
        }
    }
}

}  // namespace kzb
