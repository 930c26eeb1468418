// KZFEMTableModel: what it takes from the file.
#include <algorithm>
#include <limits>

#include "circuit/generic/fem_table_model.h"
#include "models/environment.h"
#include "store/record_list.h"

namespace kzb {
namespace {

constexpr const char* table_key = "table";
constexpr std::size_t most_set_coils = 2000;

TableRef table_of(const char* path, int place = 0) {
    return {record_name(path, 0, place), table_key};
}

int in_range_or_none(int value, int high) {
    return value >= 0 && value <= high ? value : -1;
}

}  // namespace

void KZFEMTableModel::read(KZB_STORE& store, const KZCircuitForGeneric& circuit,
                           const std::vector<KZUserSpecifiedParam>& params, std::vector<std::string>& faults) {
    store_ = &store;
    circuit_ = &circuit;
    for (const int position : circuit.fem_coil_positions()) {
        fem_coils_.push_back(as_fem_coil(circuit.element_type_at(position).get()));
    }
    read_flags();
    motions_ = read_motions(store, faults);
    if (table_axes_form_) {
        read_table_axes_form(params, faults);
    } else {
        read_coil_set_form(faults);
    }
    if (has_iron_loss_) {
        read_iron_loss_axes();
    }
    axes_.assign(static_cast<std::size_t>(axis_count_), 0.0);
    point_.reserve(axes_.size() + 1);
}

void KZFEMTableModel::read_flags() {
    flux_table_ = table_of("flux_list;flux_table");
    inductance_table_ = table_of("inductance_list;diff_inductance_table");
    force_table_ = table_of("torque_force_list;torque_table");
    output_tables_[0] = table_of("output_list;output_table", 0);
    output_tables_[1] = table_of("output_list;output_table", 1);
    iron_loss_table_ = TableRef("ironloss", table_key);
    single_output_table_ = output_tables_[0].exists(*store_) && !output_tables_[1].exists(*store_);
    has_iron_loss_ = iron_loss_table_.exists(*store_);
    table_axes_form_ = has_category(*store_, record_name("table_axis_list;axis", 0, 0));
    force_rows_ = last_axis_rows(force_table_);
    output_rows_ = last_axis_rows(output_tables_[0]);
    output2_rows_ = last_axis_rows(output_tables_[1]);
}

// Compared with the number of axes while that is still 0, as established: in effect the size of the last axis, whether
// or not that is an index.
int KZFEMTableModel::last_axis_rows(TableRef& table) const {
    const int dim = table.dim(*store_);
    return dim == axis_count_ ? 1 : table_rows(*store_, table.category(), table.key(), dim);
}

void KZFEMTableModel::read_table_axes_form(const std::vector<KZUserSpecifiedParam>& params,
                                           std::vector<std::string>& faults) {
    constant_step_ = environment_int("DORN_KZ_DEBUG_CONSTDIFF", 0) == 1;
    diff_interpolation_ = environment_text("DORN_KZ_DEBUG_DIFFINTERP", diff_interpolation_);
    minimum_current_ = environment_double("DORN_KZ_DEBUG_MINIMUM_CURRENT", minimum_current_);
    read_corrections(params);
    table_axes_ = read_table_axes(*store_, flux_table_.category(), corrections_, sources_, faults);
    read_phases(faults);
    factors_ = read_factors(*store_, sources_);
    compile_definitions(table_axes_, factors_);
    axis_count_ = static_cast<int>(table_axes_.size());
}

void KZFEMTableModel::read_corrections(const std::vector<KZUserSpecifiedParam>& params) {
    corrections_.read_parameters(*store_);
    for (const Record& record : records_of(*store_, "torque_force_list;phase_list;phase")) {
        const int number = corrections_.add(record);
        const int index = record.integer("index");
        // Behind the greatest index there is no id.
        if (number != no_correction && index < std::numeric_limits<int>::max()) {
            force_corrections_[index + 1] = number;
        }
    }
    for (std::size_t i = 0; i < params.size(); ++i) {
        const Record record(find_category(*store_, "user_specified_parameter" + std::to_string(i + 1)));
        const int number = corrections_.add(record);
        if (number != no_correction) {
            output_corrections_[params[i].table_id] = number;
        }
    }
}

void KZFEMTableModel::read_phases(std::vector<std::string>& faults) {
    for (const Record& record : records_of(*store_, "flux_list;phase_list;phase")) {
        phase_of_group_[record.integer("reference_id")] = {record.integer("index"), corrections_.add(record)};
    }
    const int coils = static_cast<int>(fem_coils_.size());
    for (const KZFEMCoil* const coil : fem_coils_) {
        const auto phase = phase_of_group_.find(coil->group_id);
        if (phase != phase_of_group_.end() && (phase->second.index < 0 || phase->second.index >= coils)) {
            faults.push_back("flux phase of group " + std::to_string(coil->group_id) + ": index " +
                             std::to_string(phase->second.index) + ", expected 0 to " + std::to_string(coils - 1));
        }
    }
}

void KZFEMTableModel::read_coil_set_form(std::vector<std::string>& faults) {
    axis_count_ += static_cast<int>(motions_.size());
    coil_sets_ = read_coil_sets(*store_, *circuit_, motions_, axis_count_, faults);
    check_axis_numbers(faults);
    for (const auto& set : coil_sets_) {
        for (const KZFEMCoilSet::Entry& entry : set->coils) {
            coil_ids_.push_back(entry.coil().id);
        }
    }
    // Every pass looks up each pair; a coil counts once for each time that a set names its group.
    if (coil_ids_.size() > most_set_coils) {
        faults.push_back("coil sets: " + std::to_string(coil_ids_.size()) + " coils, expected at most " +
                         std::to_string(most_set_coils) + " together");
    }
}

void KZFEMTableModel::check_axis_numbers(std::vector<std::string>& faults) const {
    const auto check = [&](const std::string& where, int axis, int lowest) {
        if (axis < lowest || axis > axis_count_) {
            faults.push_back(where + std::to_string(axis) + ", expected " + std::to_string(lowest) + " to " +
                             std::to_string(axis_count_));
        }
    };
    // Below 1 there is no axis.
    for (const auto& motion : motions_) {
        check("motion condition " + std::to_string(motion->id) + ": axis_no ", std::max(motion->axis_no, 0), 0);
    }
    for (const auto& set : coil_sets_) {
        const std::string where = "coil set " + std::to_string(set->id) + ": ";
        check(where + "current_axis_no ", std::max(set->current_axis, 0), 0);
        check(where + "phase_axis_no ", std::max(set->phase_axis, 0), 0);
        if (set->kind == set_three_phases && faults.empty()) {
            check(where + "axis_no of its motion ", set->leading_motion()->axis_no, 1);
        }
    }
}

void KZFEMTableModel::read_iron_loss_axes() {
    const std::vector<Record> inputs = records_of(*store_, "input_port_list;user_input");
    for (const Record& record : records_of(*store_, "ironloss;axis_list;axis")) {
        constexpr int last_physical_type = 3;
        constexpr int last_reference_type = 2;
        UserAxis axis{record.integer("axis_no"), record.integer("reference_id"),
                      in_range_or_none(record.integer("reference_type"), last_reference_type),
                      in_range_or_none(record.integer("physical_type"), last_physical_type)};
        if (axis.reference_type == 0) {
            const auto input = std::find_if(inputs.begin(), inputs.end(), [&](const Record& candidate) {
                return candidate.integer("loss_axis_no") == axis.axis_no;
            });
            axis.reference_id = input == inputs.end() ? axis.reference_id : input->integer("id");
        }
        iron_loss_axes_.push_back(axis);
    }
}

}  // namespace kzb
