// Reading of the table model: flags, row counts, motions, then one of the two forms, then the loss axes.
#include <cmath>
#include <cstdlib>

#include "bench/reference/generic_tables.h"

namespace kzb_reference::generic {

namespace {

constexpr const char* flux_table = "flux_list;flux_table";

}  // namespace

void TableModel::read(Store& store, const Circuit& circuit, int user_param_count) {
    store_ = &store;
    const std::string outputs = "output_list;output_table";
    single_output_table_ = kzb_has_subcategory_parameter(outputs, {0, 0}, "table", store) != 0 &&
                           kzb_has_subcategory_parameter(outputs, {0, 1}, "table", store) == 0;
    has_iron_loss = kzb_has_parameter("ironloss", "table", store) != 0;
    table_axes_form_ = kzb_has_subcategory("table_axis_list;axis", {0, 0}, store) != 0;
    force_rows_ = row_count("torque_force_list;torque_table", 0);
    output_rows_ = row_count("output_list;output_table", 0);
    output2_rows_ = row_count("output_list;output_table", 1);
    read_motions();
    if (table_axes_form_) {
        read_table_axes_form(user_param_count);
    } else {
        read_coil_sets(circuit);
    }
    if (has_iron_loss) {
        read_iron_loss_axes();
    }
    axes.assign(static_cast<std::size_t>(axis_count_), 0.0);
}

int TableModel::row_count(const char* path, int table) const {
    const std::string category = subcategory_name(path, {0, table});
    const int dim = kzb_get_table_dim(category.c_str(), "table", *store_);
    return dim == axis_count_ ? 1 : kzb_get_table_num_rows(category.c_str(), "table", dim, *store_);
}

void TableModel::read_motions() {
    const std::string path = "motion_condition_list;motion_condition";
    const int count = kzb_get_subcategory_num(path, {0, 0}, *store_);
    for (int i = 0; i < count; ++i) {
        auto added = std::make_shared<Motion>();
        added->id = kzb_get_subcategory_int(path, {0, i}, "id", *store_);
        const int type = kzb_get_subcategory_int(path, {0, i}, "type", *store_);
        added->kind = type == 0 || type == 1 ? type : 2;
        added->periodic = kzb_get_subcategory_int(path, {0, i}, "flg_periodic", *store_) == 1;
        added->axis_no = kzb_get_subcategory_int(path, {0, i}, "axis_no", *store_);
        added->forcetable_id = kzb_get_subcategory_int(path, {0, i}, "forcetable_id", *store_);
        const double limit = kzb_get_subcategory_double(path, {0, i}, "max_displacement", *store_);
        added->period = added->kind == 0 ? limit : added->kind == 1 ? M_PI * limit / 180.0 : 0.0;
        added->name = kzb_get_subcategory_string(path, {0, i}, "name", *store_);
        motions.push_back(added);
        if (!table_axes_form_) {
            ++axis_count_;
        }
    }
}

void TableModel::read_table_axes_form(int user_param_count) {
    if (const char* const text = std::getenv("DORN_KZ_DEBUG_CONSTDIFF")) {
        constant_step_ = std::atoi(text) == 1;
    }
    if (const char* const text = std::getenv("DORN_KZ_DEBUG_MINIMUM_CURRENT")) {
        minimum_current_ = std::atof(text);
    }
    read_corrections(user_param_count);
    read_axes();
    read_flux_phases();
    read_factors();
    axis_count_ = static_cast<int>(table_axes_.size());
}

void TableModel::read_corrections(int user_param_count) {
    const std::string parameters = "correction_parameter_list;correction_parameter";
    const int parameter_count = kzb_get_subcategory_num(parameters, {0, 0}, *store_);
    for (int i = 0; i < parameter_count; ++i) {
        corrections_.parameter_names.push_back(kzb_get_subcategory_string(parameters, {0, i}, "name", *store_));
        corrections_.parameter_values.push_back(kzb_get_subcategory_double(parameters, {0, i}, "value", *store_));
    }
    const std::string phases = "torque_force_list;phase_list;phase";
    const int phase_count = kzb_get_subcategory_num(phases, {0, 0, 0}, *store_);
    for (int i = 0; i < phase_count; ++i) {
        const std::string expression = kzb_get_subcategory_string(phases, {0, 0, i}, "correction_expression", *store_);
        if (!expression.empty()) {
            force_corrections_[kzb_get_subcategory_int(phases, {0, 0, i}, "index", *store_) + 1] = corrections_.add(
                expression, kzb_get_subcategory_string(phases, {0, 0, i}, "correction_variable", *store_));
        }
    }
    for (int i = 1; i <= user_param_count; ++i) {
        const std::string category = "user_specified_parameter" + std::to_string(i);
        const std::string expression = kzb_get_string(category.c_str(), "correction_expression", *store_);
        if (!expression.empty()) {
            output_corrections_[kzb_get_int(category.c_str(), "table_id", *store_)] =
                corrections_.add(expression, kzb_get_string(category.c_str(), "correction_variable", *store_));
        }
    }
}

void TableModel::read_axes() {
    const std::string path = "table_axis_list;axis";
    const std::string table = subcategory_name(flux_table, {0, 0});
    const int count = kzb_get_subcategory_num(path, {0, 0}, *store_);
    for (int i = 0; i < count; ++i) {
        TableAxis axis;
        axis.id = kzb_get_subcategory_int(path, {0, i}, "id", *store_);
        const int type = kzb_get_subcategory_int(path, {0, i}, "type", *store_);
        axis.kind = type >= 0 && type <= 2 ? type : -1;
        if (axis.kind == 1 || axis.kind == 2) {
            axis.reference_id = kzb_get_subcategory_int(path, {0, i}, "reference_id", *store_);
        }
        if (axis.kind == 0) {
            axis.definition = kzb_get_subcategory_string(path, {0, i}, "definition", *store_);
        }
        const std::string expression = kzb_get_subcategory_string(path, {0, i}, "correction_expression", *store_);
        if (!expression.empty()) {
            axis.correction =
                corrections_.add(expression, kzb_get_subcategory_string(path, {0, i}, "correction_variable", *store_));
        }
        axis.cyclic = kzb_get_table_cyclic_flag(table.c_str(), "table", axis.id, *store_) == 1;
        const int rows = kzb_get_table_num_rows(table.c_str(), "table", axis.id, *store_);
        for (int r = 0; r < rows; ++r) {
            axis.grid.push_back(kzb_get_table_axis_value(table.c_str(), "table", axis.id, r, *store_));
        }
        table_axes_.push_back(axis);
    }
}

void TableModel::read_flux_phases() {
    const std::string path = "flux_list;phase_list;phase";
    const int count = kzb_get_subcategory_num(path, {0, 0, 0}, *store_);
    for (int i = 0; i < count; ++i) {
        PhaseOfGroup phase;
        phase.index = kzb_get_subcategory_int(path, {0, 0, i}, "index", *store_);
        phase.correction = -1;
        const std::string expression = kzb_get_subcategory_string(path, {0, 0, i}, "correction_expression", *store_);
        if (!expression.empty()) {
            phase.correction = corrections_.add(
                expression, kzb_get_subcategory_string(path, {0, 0, i}, "correction_variable", *store_));
        }
        phase_of_group_[kzb_get_subcategory_int(path, {0, 0, i}, "reference_id", *store_)] = phase;
    }
}

void TableModel::read_factors() {
    const std::string constants = "input_parameter_list;input_parameter";
    const int constant_count = kzb_get_subcategory_num(constants, {0, 0}, *store_);
    for (int i = 0; i < constant_count; ++i) {
        if (kzb_get_subcategory_int(constants, {0, i}, "type", *store_) == 3) {
            Factor factor;
            factor.kind = 0;
            factor.name = kzb_get_subcategory_string(constants, {0, i}, "name", *store_);
            factor.value = kzb_get_subcategory_double(constants, {0, i}, "value", *store_);
            factors_.push_back(factor);
        }
    }
    const std::string equations = "user_defined_equation_list;user_defined_equation";
    const int equation_count = kzb_get_subcategory_num(equations, {0, 0}, *store_);
    for (int i = 0; i < equation_count; ++i) {
        Factor factor;
        factor.name = kzb_get_subcategory_string(equations, {0, i}, "name", *store_);
        factor.reference_id = kzb_get_subcategory_int(equations, {0, i}, "reference_id", *store_);
        const int type = kzb_get_subcategory_int(equations, {0, i}, "type", *store_);
        factor.kind = type == 1 || type == 2 ? type : -1;
        factors_.push_back(factor);
    }
}

void TableModel::read_coil_sets(const Circuit& circuit) {
    std::vector<std::shared_ptr<Branch>> fem_branches;
    for (const auto& branch : circuit.branches) {
        if (branch->element_type->type == 1) {
            fem_branches.push_back(branch);
        }
    }
    const std::string path = "element_set_list;coil_set";
    const std::string coils = "element_set_list;coil_set;coil";
    const int count = kzb_get_subcategory_num(path, {0, 0}, *store_);
    for (int i = 0; i < count; ++i) {
        const int type = kzb_get_subcategory_int(path, {0, i}, "type", *store_);
        auto set = std::make_shared<CoilSet>();
        const int coil_count = kzb_get_subcategory_num(coils, {0, i, 0}, *store_);
        for (int c = 0; c < coil_count; ++c) {
            const int coil_id = kzb_get_subcategory_int(coils, {0, i, c}, "coil_id", *store_);
            const double phase_diff = kzb_get_subcategory_double(coils, {0, i, c}, "phase_diff", *store_);
            for (const auto& branch : fem_branches) {
                if (branch->element_type->get_int_parameter("group_id") == coil_id) {
                    set->coils.push_back({branch, phase_diff});
                }
            }
        }
        set->id = kzb_get_subcategory_int(path, {0, i}, "id", *store_);
        set->is_reference = kzb_get_subcategory_int(path, {0, i}, "flg_ref_coil", *store_) == 1;
        set->reference_set_id = kzb_get_subcategory_int(path, {0, i}, "ref_coil_set_id", *store_);
        set->poles = kzb_get_subcategory_int(path, {0, i}, "number_of_poles", *store_);
        set->phase_initial = kzb_get_subcategory_double(path, {0, i}, "phase_initial", *store_);
        set->current_axis = kzb_get_subcategory_int(path, {0, i}, "current_axis_no", *store_);
        if (type == 0) {
            set->kind = 0;
            axis_count_ += 1;
        } else {
            set->kind = set->coils.size() == 1 ? 1 : set->coils.size() == 3 ? 2 : 3;
            const int motion_id = kzb_get_subcategory_int(path, {0, i}, "motion_id", *store_);
            for (const auto& candidate : motions) {
                if (candidate->id == motion_id) {
                    set->motion = candidate;
                    break;
                }
            }
            axis_count_ += set->is_reference ? 1 : 2;
        }
        if (set->kind == 1 || set->kind == 2) {
            set->phase_axis = kzb_get_subcategory_int(path, {0, i}, "phase_axis_no", *store_);
        }
        coil_sets.push_back(set);
    }
    for (const auto& set : coil_sets) {
        if (set->is_reference) {
            for (const auto& candidate : coil_sets) {
                if (candidate->id == set->reference_set_id) {
                    set->reference_set = candidate;
                    break;
                }
            }
        }
    }
}

void TableModel::read_iron_loss_axes() {
    const std::string inputs = "input_port_list;user_input";
    std::vector<std::pair<int, int>> pairs;
    const int input_count = kzb_get_subcategory_num(inputs, {0, 0}, *store_);
    for (int i = 0; i < input_count; ++i) {
        pairs.emplace_back(kzb_get_subcategory_int(inputs, {0, i}, "loss_axis_no", *store_),
                           kzb_get_subcategory_int(inputs, {0, i}, "id", *store_));
    }
    const std::string path = "ironloss;axis_list;axis";
    const int count = kzb_get_subcategory_num(path, {0, 0, 0}, *store_);
    for (int i = 0; i < count; ++i) {
        UserAxis axis;
        axis.axis_no = kzb_get_subcategory_int(path, {0, 0, i}, "axis_no", *store_);
        axis.physical_type = kzb_get_subcategory_int(path, {0, 0, i}, "physical_type", *store_);
        axis.reference_type = kzb_get_subcategory_int(path, {0, 0, i}, "reference_type", *store_);
        axis.reference_id = kzb_get_subcategory_int(path, {0, 0, i}, "reference_id", *store_);
        if (axis.reference_type == 0) {
            for (const auto& [loss_axis_no, id] : pairs) {
                if (loss_axis_no == axis.axis_no) {
                    axis.reference_id = id;
                    break;
                }
            }
        }
        if (axis.physical_type < 0 || axis.physical_type > 3) {
            axis.physical_type = -1;
        }
        if (axis.reference_type < 0 || axis.reference_type > 2) {
            axis.reference_type = -1;
        }
        iron_loss_axes_.push_back(axis);
    }
}

}  // namespace kzb_reference::generic
