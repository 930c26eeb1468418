#include "circuit/generic/table_axis.h"

#include <cmath>

namespace kzb {
namespace {

// Where an axis or a factor of this kind reads; a key that nothing fills reads 0.0.
const double* source_of(AxisSources& sources, int kind, int reference_id) {
    static_assert(static_cast<int>(axis_current) == static_cast<int>(factor_current) &&
                  static_cast<int>(axis_displacement) == static_cast<int>(factor_displacement));
    switch (kind) {
        case axis_current:
            return &sources.coil_currents[reference_id];
        case axis_displacement:
            return &sources.motion_positions[reference_id];
        default:
            return nullptr;
    }
}

void read_grid(const KZB_STORE& store, const std::string& flux_category, KZTableAxis& axis) {
    const KZB_TABLE* const table = find_table(store, flux_category, "table");
    if (table == nullptr) {
        return;
    }
    const int rows = table_rows(store, flux_category, "table", axis.id);
    for (int i = 0; i < rows; ++i) {
        axis.grid.push_back(table_get_axis_value(table, axis.id, i));
    }
    axis.cyclic = table_get_cyclic_flag(table, axis.id) == 1;
}

KZTableAxis read_axis(const KZB_STORE& store, const Record& record, const std::string& flux_category,
                      KZCorrectionSet& corrections, AxisSources& sources) {
    KZTableAxis axis;
    axis.id = record.integer("id");
    const int type = record.integer("type");
    axis.kind = type >= axis_expression && type <= axis_displacement ? type : static_cast<int>(axis_unknown);
    if (axis.kind == axis_expression) {
        axis.definition = record.text("definition");
    } else if (axis.kind != axis_unknown) {
        axis.reference_id = record.integer("reference_id");
        axis.source = source_of(sources, axis.kind, axis.reference_id);
    }
    axis.correction = corrections.add(record);
    read_grid(store, flux_category, axis);
    return axis;
}

}  // namespace

std::vector<KZFactor> read_factors(const KZB_STORE& store, AxisSources& sources) {
    constexpr int taken_parameter = 3;
    std::vector<KZFactor> factors;
    for (const Record& record : records_of(store, "input_parameter_list;input_parameter")) {
        if (record.integer("type") == taken_parameter) {
            factors.push_back({record.text("name"), factor_constant, 0, record.number("value"), nullptr});
        }
    }
    for (const Record& record : records_of(store, "user_defined_equation_list;user_defined_equation")) {
        const int type = record.integer("type");
        const int kind = type == factor_current || type == factor_displacement ? type : static_cast<int>(factor_none);
        const int reference_id = record.integer("reference_id");
        factors.push_back({record.text("name"), kind, reference_id, 0.0, source_of(sources, kind, reference_id)});
    }
    return factors;
}

std::vector<KZTableAxis> read_table_axes(const KZB_STORE& store, const std::string& flux_category,
                                         KZCorrectionSet& corrections, AxisSources& sources,
                                         std::vector<std::string>& faults) {
    std::vector<KZTableAxis> axes;
    for (const Record& record : records_of(store, "table_axis_list;axis")) {
        axes.push_back(read_axis(store, record, flux_category, corrections, sources));
    }
    for (const KZTableAxis& axis : axes) {
        if (axis.id < 1 || static_cast<std::size_t>(axis.id) > axes.size()) {
            faults.push_back("table axis: id " + std::to_string(axis.id) + ", expected 1 to " +
                             std::to_string(axes.size()));
        }
    }
    return axes;
}

void compile_definitions(std::vector<KZTableAxis>& axes, const std::vector<KZFactor>& factors) {
    std::vector<std::string> names;
    for (const KZFactor& factor : factors) {
        names.push_back(factor.name);
    }
    for (KZTableAxis& axis : axes) {
        if (axis.kind == axis_expression) {
            axis.expression.emplace(names, axis.definition);
        }
    }
}

double axis_value(KZTableAxis& axis, const std::vector<KZFactor>& factors, KZCorrectionSet& corrections) {
    double value = 0.0;
    if (axis.source != nullptr) {
        value = *axis.source;
    } else if (axis.expression) {
        std::vector<double>& given = axis.expression->values();
        for (std::size_t i = 0; i < factors.size(); ++i) {
            const KZFactor& factor = factors[i];
            given[i] = factor.source != nullptr ? *factor.source : factor.value;
        }
        value = axis.expression->evaluate();
        if (std::isnan(value) && !axis.grid.empty()) {
            value = axis.grid.front();
        }
    }
    return corrections.correct(axis.correction, value);
}

}  // namespace kzb
