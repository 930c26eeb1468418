// Phase symmetry of a table and the fold of coordinates into the range that the file holds.
//
// A machine behaves at the current phases 90 to 270 degrees as at the mirrored phases, with the position mirrored about
// the electrical period and a torque of changed sign:
//
//   t = 180 - t (90 < t < 180),  t = 540 - t (180 < t < 270)
//   v = P - v,  v = position + beta_zero / pp,  position = v - beta_zero / pp - shift
//
// where `shift` carries the position of phases v and w, and of their inductances, back to that of phase u.
#include "store/transform/phase_fold.h"

#include <cmath>

#include "store/motor_type.h"
#include "store/store.h"

namespace kzb {
namespace {

struct Rule {
    int motor_type;
    std::string_view category;
    std::string_view key;  // empty: any table of the category
    int phase_axis;
    int position_axis;
    double flip_factor;
    FoldShift shift;
};

constexpr Rule rules[] = {
    {motor_type::pmsm, "current_flux", "flux", 2, 3, 1.0, FoldShift::flux_of_three},
    {motor_type::pmsm, "harmonic_inductance", "inductance", 2, 3, 1.0, FoldShift::inductance_of_three},
    {motor_type::pmsm, "harmonic_torque", "torque_ibeta", 1, 2, -1.0, FoldShift::none},
    {motor_type::pmsm, "hysloss", "", 2, 0, 1.0, FoldShift::none},
    {motor_type::pmsm, "eddyloss", "", 2, 0, 1.0, FoldShift::none},
    {motor_type::linear_synchronous, "distance_force", "force", 1, 2, -1.0, FoldShift::none},
    {motor_type::linear_synchronous, "distance_force", "attractive_force", 1, 2, 1.0, FoldShift::none},
    {motor_type::wound_field, "current_flux", "flux", 2, 4, 1.0, FoldShift::flux_of_four},
    {motor_type::wound_field, "harmonic_inductance", "inductance", 2, 4, 1.0, FoldShift::inductance_of_four},
    {motor_type::wound_field, "harmonic_torque", "torque_ibeta", 2, 4, -1.0, FoldShift::none},
    {motor_type::wound_field, "hysloss", "", 2, 0, 1.0, FoldShift::none},
    {motor_type::wound_field, "eddyloss", "", 2, 0, 1.0, FoldShift::none},
};

const Rule* rule_of(int motor_type, std::string_view category, std::string_view key) {
    for (const Rule& rule : rules) {
        if (rule.motor_type == motor_type && rule.category == category && (rule.key.empty() || rule.key == key)) {
            return &rule;
        }
    }
    return nullptr;
}

bool folds_at_all(const KZB_STORE& store, const Rule& rule, const KZB_TABLE& table) {
    switch (rule.motor_type) {
        case motor_type::pmsm:
            return has_category(store, "harmonic_torque");
        case motor_type::linear_synchronous:
            return table.dim == 3;
        default:
            return get_int(store, "control", "current_type") == 1;
    }
}

double wrap(double t, double lo, double hi, double step) {
    if (std::fabs(t - lo) < KZB_AXIS_TOL) {
        return lo;
    }
    if (std::fabs(t - hi) < KZB_AXIS_TOL) {
        return hi;
    }
    for (int pass = 0; pass < 10 && !(lo <= t && t <= hi); ++pass) {
        if (t < lo) {
            t += step;
        }
        if (t > hi) {
            t -= step;
        }
    }
    return t;
}

// Brings t to the range of an axis; an axis without a grid has none.
double wrap_to_axis(double t, const KZB_TABLE& table, int axis, bool step_is_range, double step) {
    const auto a = static_cast<std::size_t>(axis - 1);
    if (a >= table.axes.size() || table.axes[a].size() == 0) {
        return t;
    }
    const double first = table.axes[a][0];
    const double last = table.axes[a][table.axes[a].size() - 1];
    return wrap(t, first, last, step_is_range ? last - first : step);
}

double mirrored_phase(double t) {
    if (std::fabs(t - 180.0) < KZB_AXIS_TOL) {
        return 0.0;
    }
    if (90.0 < t && t < 180.0) {
        return 180.0 - t;
    }
    if (180.0 < t && t < 270.0) {
        return 270.0 - t + 270.0;
    }
    return t;
}

// Integer part of the component coordinate; false where no int holds it.
bool component_of(double x, int& n) {
    if (!(x > -2147483649.0 && x < 2147483648.0)) {
        return false;
    }
    n = static_cast<int>(x);
    return true;
}

double inductance_of_four(int n, double pole_pairs) {
    const int p = n / 4;
    const int s = n % 4;
    if (p < 3 && s < 3) {
        return (p * 2.0 + s * 0.5) * (120 / pole_pairs);
    }
    // The field winding's rows are plain multiples of 120, not divided by the pole pairs: kept.
    if (p == 3) {
        return s * 120.0;
    }
    return s == 3 ? p * 120.0 : 0.0;
}

double position_shift(const PhaseFold& fold, const KZB_TABLE& table, const double* x) {
    if (fold.shift == FoldShift::none) {
        return 0.0;
    }
    const bool of_three = fold.shift == FoldShift::flux_of_three || fold.shift == FoldShift::inductance_of_three;
    const int component_axis = of_three ? 3 : 4;
    int n = 0;
    // A table without the component axis has component 0; a coordinate that no int holds shifts nothing.
    if (table.dim <= component_axis || !component_of(x[component_axis], n)) {
        return 0.0;
    }
    switch (fold.shift) {
        case FoldShift::flux_of_three:
        case FoldShift::flux_of_four:
            return n < 3 ? n * 120.0 / fold.pole_pairs : 0.0;
        case FoldShift::inductance_of_three:
            return ((n / 3) * 2.0 + (n % 3) * 0.5) * (120 / fold.pole_pairs);
        default:
            return inductance_of_four(n, fold.pole_pairs);
    }
}

double mirrored_position(double v, double period) {
    if (std::fabs(v) < KZB_AXIS_TOL) {
        return period;
    }
    if (std::fabs(v - period) < KZB_AXIS_TOL) {
        return 0.0;
    }
    return 0.0 < v && v < period ? period - v : v;
}

}  // namespace

PhaseFold phase_fold_of(const KZB_STORE& store, std::string_view category, std::string_view key,
                        const KZB_TABLE* table) {
    PhaseFold fold;
    if (table == nullptr || get_int(store, "control", "use_phase_symmetry") == 0) {
        return fold;
    }
    const Rule* rule = rule_of(get_int(store, "control", "motor_type"), category, key);
    // A table with fewer axes than the rule names has no phase to fold.
    if (rule == nullptr || !folds_at_all(store, *rule, *table) || table->dim < rule->phase_axis) {
        return fold;
    }
    const int poles = get_int(store, "control", "number_of_poles");
    fold.active = true;
    fold.phase_axis = rule->phase_axis;
    fold.position_axis = table->dim < rule->position_axis ? 0 : rule->position_axis;
    fold.flip_factor = rule->flip_factor;
    fold.shift = rule->shift;
    fold.pole_pairs = poles == 0 ? 1.0 : poles * 0.5;
    fold.beta_zero = get_double(store, "control", "beta_zero") / fold.pole_pairs;
    fold.period = rule->motor_type == motor_type::linear_synchronous ? get_double(store, "control", "electrical_length")
                                                                     : 360 / fold.pole_pairs;
    return fold;
}

double fold_coordinates(const PhaseFold& fold, const KZB_TABLE& table, double* x) {
    if (!fold.active) {
        return 1.0;
    }
    double& phase = x[fold.phase_axis - 1];
    const double t = wrap(phase, 0.0, 360.0, 360.0);
    const bool flip = !(t <= 90.0 || t >= 270.0);
    phase = wrap_to_axis(mirrored_phase(t), table, fold.phase_axis, false, 360.0);
    if (!flip) {
        return 1.0;
    }
    if (fold.position_axis != 0) {
        double& position = x[fold.position_axis - 1];
        const double v = wrap_to_axis(position + fold.beta_zero, table, fold.position_axis, true, 0.0);
        position = mirrored_position(v, fold.period) - fold.beta_zero - position_shift(fold, table, x);
    }
    return fold.flip_factor;
}

}  // namespace kzb
