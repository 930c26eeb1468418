// Axes, fluxes and differential inductances of a generic model at the present currents and positions.
#include "bench/reference/generic_tables.h"

#include <muParser.h>

#include <cmath>
#include <deque>

namespace kzb_reference::generic {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

mu::string_type widened(const std::string& text) {
    return mu::string_type(text.begin(), text.end());
}

}  // namespace

double convert(double v, Unit from, Unit to) {
    switch (from) {
        case degrees:
            return to == radians ? M_PI * v / 180.0 : v;
        case radians:
            return to == degrees ? v * 180.0 / M_PI : v;
        case linear:
            return v;
        case radians_per_second:
            return to == revolutions_per_minute ? v / (2.0 * M_PI) * 60.0 : 0.0;
        default:
            return 0.0;
    }
}

double Motion::speed(double dt) const {
    const double change = dt > 0.0 ? (position - previous_position) / dt : 0.0;
    return kind != 0 ? change / (2.0 * M_PI) * 60.0 : change;
}

const Motion* CoilSet::position_motion() const {
    const CoilSet* set = this;
    while (set->is_reference) {
        set = set->reference_set.get();
    }
    return set->motion.get();
}

double evaluate_expression(const std::vector<std::string>& names, const std::string& expression,
                           const std::vector<double>& values) {
    std::deque<double> copies(values.begin(), values.end());
    try {
        mu::Parser parser;
        for (std::size_t i = 0; i < names.size(); ++i) {
            parser.DefineVar(widened(names[i]), &copies[i]);
        }
        parser.SetExpr(widened(expression));
        return parser.Eval();
    } catch (const mu::ParserError&) {
        return 0.0;
    }
}

int CorrectionSet::add(const std::string& expression, const std::string& variable) {
    expressions.push_back(expression);
    variables.push_back(variable);
    return static_cast<int>(expressions.size()) - 1;
}

double CorrectionSet::correct(int number, double value) const {
    if (number < 0 || number >= static_cast<int>(expressions.size())) {
        return value;
    }
    std::vector<std::string> names = parameter_names;
    std::vector<double> values = parameter_values;
    names.push_back(variables[at(number)]);
    values.push_back(value);
    return evaluate_expression(names, expressions[at(number)], values);
}

double TableModel::flux_at(const std::vector<double>& point) {
    return kzb_get_subcategory_table_interpolated_value("flux_list;flux_table", {0, 0}, "table", point, interpolation,
                                                        *store_);
}

double TableModel::inductance_at(std::vector<double> point, int pair) {
    point.push_back(static_cast<double>(pair));
    return kzb_get_subcategory_table_interpolated_value("inductance_list;diff_inductance_table", {0, 0}, "table", point,
                                                        interpolation, *store_);
}

void TableModel::set_displacements(const std::vector<double>& values) {
    if (values.size() != motions.size() || motions.empty()) {
        return;
    }
    for (const auto& moved : motions) {
        moved->previous_position = moved->position;
        moved->position = values[at(moved->id - 1)];
        if (table_axes_form_) {
            motion_positions_[moved->id] = moved->position_in(moved->table_unit());
        }
    }
}

const Motion* TableModel::motion(int id) const {
    for (const auto& candidate : motions) {
        if (candidate->id == id) {
            return candidate.get();
        }
    }
    return nullptr;
}

void TableModel::update_coil_state(const Circuit& circuit) {
    if (!table_axes_form_) {
        for (const auto& set : coil_sets) {
            update_set_state(*set);
        }
        return;
    }
    for (const auto& branch : circuit.branches) {
        if (branch->element_type->type == 1) {
            coil_currents_[branch->element_type->get_int_parameter("group_id")] = branch->current;
        }
    }
}

void TableModel::update_set_state(CoilSet& set) const {
    if (set.kind == 0) {
        const Branch& branch = *set.coils[0].branch;
        set.amplitude = branch.current * branch.element_type->turn_ratio();
        set.phase = 0.0;
        return;
    }
    if (set.kind == 3) {
        return;
    }
    const Motion& moved = *set.position_motion();
    const double theta = moved.position * 2.0 * M_PI / moved.period;
    double cosines = 0.0;
    double sines = 0.0;
    for (const CoilEntry& entry : set.coils) {
        const double current = entry.branch->current * entry.branch->element_type->turn_ratio();
        cosines += current * std::cos(entry.phase_diff * M_PI / 180.0 + theta);
        sines += current * std::sin(entry.phase_diff * M_PI / 180.0 + theta);
    }
    const double a = std::sqrt(2.0 / 3.0) * cosines;
    const double b = -std::sqrt(2.0 / 3.0) * sines;
    set.amplitude = std::sqrt((a * a + b * b) * 2.0 / 3.0);
    if (b != 0.0) {
        set.phase = std::atan2(-a, b) * 180.0 / M_PI;
    } else {
        set.phase = a > 0.0 ? 90.0 : a < 0.0 ? -90.0 : 0.0;
    }
}

void TableModel::evaluate(const Circuit& circuit) {
    evaluate_axes();
    if (table_axes_form_) {
        evaluate_differences(circuit);
    } else {
        evaluate_inductances();
    }
    evaluate_fluxes(circuit);
}

double TableModel::axis_value(const TableAxis& axis, Currents& currents) {
    double value = 0.0;
    if (axis.kind == 1) {
        value = currents[axis.reference_id];
    } else if (axis.kind == 2) {
        value = motion_positions_[axis.reference_id];
    } else if (axis.kind == 0) {
        std::vector<std::string> names;
        std::vector<double> values;
        for (const Factor& factor : factors_) {
            names.push_back(factor.name);
            values.push_back(factor.kind == 0   ? factor.value
                             : factor.kind == 1 ? currents[factor.reference_id]
                             : factor.kind == 2 ? motion_positions_[factor.reference_id]
                                                : 0.0);
        }
        value = evaluate_expression(names, axis.definition, values);
        if (std::isnan(value) && !axis.grid.empty()) {
            value = axis.grid[0];
        }
    }
    return corrections_.correct(axis.correction, value);
}

void TableModel::evaluate_axes() {
    if (table_axes_form_) {
        for (const TableAxis& axis : table_axes_) {
            axes[at(axis.id - 1)] = axis_value(axis, coil_currents_);
        }
        return;
    }
    for (const auto& set : coil_sets) {
        if (set->current_axis > 0) {
            axes[at(set->current_axis - 1)] = set->amplitude;
        }
        if (set->phase_axis > 0) {
            axes[at(set->phase_axis - 1)] = set->phase - set->phase_initial;
        }
    }
    for (const auto& moved : motions) {
        if (moved->axis_no > 0) {
            axes[at(moved->axis_no - 1)] = moved->position_in(moved->table_unit());
        }
    }
}

std::vector<double> TableModel::clamped_axes() const {
    std::vector<double> clamped = axes;
    for (std::size_t i = 0; i < table_axes_.size(); ++i) {
        const TableAxis& axis = table_axes_[i];
        if (axis.cyclic || axis.grid.empty()) {
            continue;
        }
        const double first = axis.grid.front();
        const double last = axis.grid.back();
        if (axis.grid.size() < 2 || clamped[i] < first || clamped[i] > last) {
            clamped[i] = clamped[i] < first ? first : 0.99 * last;
        }
    }
    return clamped;
}

void TableModel::evaluate_fluxes(const Circuit& circuit) {
    std::vector<double> point = axes;
    point.push_back(0.0);
    if (table_axes_form_) {
        for (const int position : circuit.fem_positions) {
            if (const auto coil = circuit.fem_coil_at(position)) {
                const PhaseOfGroup phase = phase_of_group_[coil->group_id];
                point.back() = static_cast<double>(phase.index);
                coil->flux = corrections_.correct(phase.correction, flux_at(point));
            }
        }
        return;
    }
    int index = 0;
    for (const auto& set : coil_sets) {
        for (const CoilEntry& entry : set->coils) {
            if (const auto coil = std::dynamic_pointer_cast<FEMCoil>(entry.branch->element_type)) {
                point.back() = static_cast<double>(index);
                coil->flux = flux_at(point);
                ++index;
            }
        }
    }
}

void TableModel::evaluate_differences(const Circuit& circuit) {
    std::vector<std::shared_ptr<FEMCoil>> coils;
    for (const int position : circuit.fem_positions) {
        coils.push_back(circuit.fem_coil_at(position));
    }
    const int n = static_cast<int>(coils.size());
    std::vector<double> base = clamped_axes();
    base.push_back(0.0);
    std::vector<double> flux0;
    for (int i = 0; i < n; ++i) {
        if (n != 1) {
            base.back() = static_cast<double>(i);
        }
        const double value = flux_at(base);
        int correction = -1;
        for (const auto& [group, phase] : phase_of_group_) {
            if (phase.index == i) {
                correction = phase.correction;
                break;
            }
        }
        flux0.push_back(corrections_.correct(correction, value));
    }
    for (const auto& j : coils) {
        std::vector<double> pert = base;
        Currents currents = coil_currents_;
        const TableAxis* own = nullptr;
        for (const TableAxis& axis : table_axes_) {
            if (axis.kind == 1 && axis.reference_id == j->group_id) {
                own = &axis;
                break;
            }
        }
        double step = 0.0;
        if (own != nullptr) {
            step = difference_step(base[at(own->id - 1)], own->grid);
            pert[at(own->id - 1)] += step;
        } else {
            double c = currents[j->group_id];
            if (std::fabs(c) < 1e-15) {
                c = minimum_current_;
            }
            step = c * 0.01;
            currents[j->group_id] += step;
            for (std::size_t i = 0; i < table_axes_.size(); ++i) {
                pert[i] = axis_value(table_axes_[i], currents);
            }
        }
        for (const auto& k : coils) {
            const PhaseOfGroup phase = phase_of_group_[k->group_id];
            pert.back() = static_cast<double>(phase.index);
            const double value = corrections_.correct(phase.correction, flux_at(pert));
            if (std::fabs(step) >= 1e-20) {
                k->inductances[j->group_id] = (value - flux0[at(phase.index)]) / step;
            }
        }
    }
}

double TableModel::difference_step(double x, const std::vector<double>& grid) const {
    if (grid.size() < 2 || constant_step_) {
        return x * 0.01;
    }
    double lo = 1e20;
    double hi = -1e20;
    double nz = 0.0;
    bool nz_set = false;
    for (const double point : grid) {
        const double magnitude = std::fabs(point);
        if (magnitude < lo) {
            lo = magnitude;
            if (magnitude > 1e-15) {
                nz = magnitude;
                nz_set = true;
            }
        }
        if (magnitude > hi) {
            hi = magnitude;
        }
    }
    if (!nz_set) {  // the first point is zero: the least magnitude that is not
        for (const double point : grid) {
            const double magnitude = std::fabs(point);
            if (magnitude > 1e-15 && (nz == 0.0 || magnitude < nz)) {
                nz = magnitude;
            }
        }
    }
    const double w = std::fabs(x) >= 1e-15 ? std::fabs(x) : nz;
    if (std::fabs(hi - lo) < 1e-15) {
        return x * 0.01;
    }
    const double u = (hi - w) / (hi - lo);
    const double v = (w - lo) / (hi - lo);
    return ((1.0 - u) * 0.05 + (1.0 - v) * 0.1) * w;
}

void TableModel::evaluate_inductances() {
    std::vector<int> ids;
    for (const auto& set : coil_sets) {
        for (const CoilEntry& entry : set->coils) {
            ids.push_back(entry.branch->element_type->id);
        }
    }
    const int total = static_cast<int>(ids.size());
    int offset = 0;
    for (std::size_t s = 0; s < coil_sets.size(); ++s) {
        const CoilSet& set = *coil_sets[s];
        if (set.kind == 2) {
            three_phase_inductances(s, offset, ids);
        } else {
            for (const CoilEntry& entry : set.coils) {
                const auto coil = std::dynamic_pointer_cast<FEMCoil>(entry.branch->element_type);
                if (!coil) {
                    continue;
                }
                int q = 0;
                for (const auto& other : coil_sets) {
                    for (std::size_t i = 0; i < other->coils.size(); ++i, ++q) {
                        coil->inductances[ids[at(q)]] = inductance_at(axes, static_cast<int>(s) * total + q);
                    }
                }
            }
        }
        offset += static_cast<int>(set.coils.size());
    }
}

void TableModel::three_phase_inductances(std::size_t s, int offset, const std::vector<int>& ids) {
    static constexpr int order[3][3] = {{0, 1, 2}, {2, 0, 1}, {1, 2, 0}};
    const CoilSet& set = *coil_sets[s];
    const int total = static_cast<int>(ids.size());
    std::vector<double> point = axes;
    const Motion& m = *set.position_motion();
    const Unit unit = m.table_unit();
    const double period = m.period_in(unit);
    for (int c = 0; c < 3; ++c) {
        const auto coil_c = std::dynamic_pointer_cast<FEMCoil>(set.coils[at(c)].branch->element_type);
        if (!coil_c) {
            continue;
        }
        const double phase_diff = set.coils[at(c)].phase_diff;
        int col = 0;
        int x = c + offset;
        for (const auto& t : coil_sets) {
            if (t->kind == 2) {
                if (m.axis_no > 0) {
                    point[at(m.axis_no - 1)] = m.position_in(unit) + phase_diff / 360.0 * period;
                }
                for (int q = 0; q < 3; ++q) {
                    const int pair = static_cast<int>(s) * total + order[c][q] + col;
                    coil_c->inductances[ids[at(col + q)]] = inductance_at(point, pair);
                }
            } else {
                if (m.axis_no > 0) {
                    point[at(m.axis_no - 1)] = m.position_in(unit);
                }
                const double value = inductance_at(point, x);
                if (at(col) < ids.size()) {
                    coil_c->inductances[ids[at(col)]] = value;
                }
            }
            col += static_cast<int>(t->coils.size());
            x += total;
        }
    }
}

double TableModel::force(const ForceTable& table) {
    std::vector<double> point = axes;
    if (force_rows_ > 1) {
        point.push_back(static_cast<double>(table.forcetable_id - 1));
    }
    const double value = kzb_get_subcategory_table_interpolated_value("torque_force_list;torque_table", {0, 0}, "table",
                                                                      point, interpolation, *store_);
    if (!table_axes_form_) {
        return value * table.coef_force;
    }
    const auto found = force_corrections_.find(table.forcetable_id);
    return found == force_corrections_.end() ? value : corrections_.correct(found->second, value);
}

double TableModel::output(const UserParam& param) {
    int limit = 0;
    int row = param.row;
    int index = 0;
    if (single_output_table_) {
        limit = output_rows_;
        row = param.table_id - 1;
    } else if (param.resolution == 0) {
        limit = output_rows_;
    } else if (param.resolution == 1) {
        limit = output2_rows_;
        index = 1;
    }
    if (row < 0 || row > limit) {
        return 0.0;
    }
    std::vector<double> point = axes;
    if (limit > 1) {
        point.push_back(static_cast<double>(row));
    }
    const double value = kzb_get_subcategory_table_interpolated_value("output_list;output_table", {0, index}, "table",
                                                                      point, interpolation, *store_);
    if (!table_axes_form_) {
        return value * param.coef_output_port;
    }
    const auto found = output_corrections_.find(param.table_id);
    return found == output_corrections_.end() ? value : corrections_.correct(found->second, value);
}

double TableModel::iron_loss(const std::vector<double>& user_inputs) {
    std::vector<double> values(iron_loss_axes_.size(), 0.0);
    for (const UserAxis& axis : iron_loss_axes_) {
        double value = 0.0;
        if (axis.reference_type == 0) {
            if (axis.reference_id >= 1 && at(axis.reference_id) <= user_inputs.size()) {
                value = user_inputs[at(axis.reference_id - 1)];
            }
        } else if (axis.reference_type == 1) {
            for (const auto& set : coil_sets) {
                if (set->id == axis.reference_id) {
                    value = axis.physical_type == 1   ? set->amplitude
                            : axis.physical_type == 2 ? set->phase - set->phase_initial
                                                      : 0.0;
                    break;
                }
            }
        } else if (axis.reference_type == 2 && axis.physical_type == 3) {
            if (const Motion* const moved = motion(axis.reference_id)) {
                value = moved->speed(dt);
            }
        }
        if (axis.axis_no >= 1 && at(axis.axis_no) <= values.size()) {
            values[at(axis.axis_no - 1)] = value;
        }
    }
    const int dim = kzb_get_table_dim("ironloss", "table", *store_);
    if (dim > 0 && values.size() < at(dim)) {
        values.resize(at(dim), 0.0);
    }
    count_unplaced(values);
    return kzb_get_table_interpolated_value<Bare>("ironloss", "table", values.data(), interpolation.c_str(), *store_);
}

}  // namespace kzb_reference::generic
