// KZTableAxis: one axis of the flux table and what feeds it: a coil's current, a motion's position, or an expression
// over factors. KZFactor: a named variable of those expressions.
//
// Only the table axes form has them.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "circuit/generic/correction_set.h"
#include "circuit/generic/expression.h"

namespace kzb {

enum AxisKind { axis_expression = 0, axis_current = 1, axis_displacement = 2, axis_unknown = -1 };
enum FactorKind { factor_constant = 0, factor_current = 1, factor_displacement = 2, factor_none = -1 };

// The quantities that axes and factors read, by id. A place once made stays where it is.
struct AxisSources {
    std::map<int, double> coil_currents;     // A by group
    std::map<int, double> motion_positions;  // in table units by motion
};

struct KZFactor {
    std::string name;
    int kind = factor_none;
    int reference_id = 0;
    double value = 0.0;              // of a constant
    const double* source = nullptr;  // in AxisSources
};

struct KZTableAxis {
    int id = 0;  // from 1, the axis of the flux table
    int kind = axis_unknown;
    int reference_id = -1;  // group or motion
    bool cyclic = false;
    std::string definition;
    std::vector<double> grid;  // of the flux table
    int correction = no_correction;
    const double* source = nullptr;        // in AxisSources
    std::optional<Expression> expression;  // of kind 0, over the factors in their order
};

std::vector<KZFactor> read_factors(const KZB_STORE& store, AxisSources& sources);
// An id that is no number from 1 to the count of axes is a fault.
std::vector<KZTableAxis> read_table_axes(const KZB_STORE& store, const std::string& flux_category,
                                         KZCorrectionSet& corrections, AxisSources& sources,
                                         std::vector<std::string>& faults);
// Compiles the definitions, once the factors are known.
void compile_definitions(std::vector<KZTableAxis>& axes, const std::vector<KZFactor>& factors);

// The present value of an axis, corrected.
double axis_value(KZTableAxis& axis, const std::vector<KZFactor>& factors, KZCorrectionSet& corrections);

}  // namespace kzb
