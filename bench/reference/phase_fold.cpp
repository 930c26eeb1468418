// Phase symmetry: coordinates of certain tables folded into the quarter of the current phase that the file holds.
#include <cstring>

#include "bench/reference/lookup.h"

namespace kzb_reference {

namespace {

bool is(const char* category, const char* key, const char* wanted_category, const char* wanted_key) {
    return std::strcmp(category, wanted_category) == 0 && std::strcmp(key, wanted_key) == 0;
}

bool is_loss(const char* category) {
    return std::strcmp(category, "hysloss") == 0 || std::strcmp(category, "eddyloss") == 0;
}

double wrap(double t, double lo, double hi, double step) {
    if (std::fabs(t - lo) < 1e-10) {
        return lo;
    }
    if (std::fabs(t - hi) < 1e-10) {
        return hi;
    }
    for (int pass = 0; pass < 10; ++pass) {
        if (lo <= t && t <= hi) {
            break;
        }
        if (t < lo) {
            t += step;
        }
        if (t > hi) {
            t -= step;
        }
    }
    return t;
}

int whole_part(double x) {
    return x > -2147483648.0 && x < 2147483647.0 ? static_cast<int>(x) : 0;
}

struct Rule {
    int phase = 0;
    int position = 0;
    double factor = 1.0;
    double shift = 0.0;
};

Rule rule_of_rotary(const char* category, const char* key, const double* x, int dim, double pp) {
    Rule rule;
    if (is(category, key, "current_flux", "flux")) {
        rule.phase = 2;
        rule.position = 3;
        const int n = dim > 3 ? whole_part(x[3]) : 0;
        rule.shift = n < 3 ? n * 120 / pp : 0.0;
    } else if (is(category, key, "harmonic_inductance", "inductance")) {
        rule.phase = 2;
        rule.position = 3;
        const int n = dim > 3 ? whole_part(x[3]) : 0;
        rule.shift = ((n / 3) * 2.0 + (n % 3) * 0.5) * (120 / pp);
    } else if (is(category, key, "harmonic_torque", "torque_ibeta")) {
        rule.phase = 1;
        rule.position = 2;
        rule.factor = -1.0;
    } else if (is_loss(category)) {
        rule.phase = 2;
    }
    return rule;
}

Rule rule_of_linear(const char* category, const char* key, int dim) {
    Rule rule;
    if (dim != 3) {
        return rule;
    }
    if (is(category, key, "distance_force", "force")) {
        rule.phase = 1;
        rule.position = 2;
        rule.factor = -1.0;
    } else if (is(category, key, "distance_force", "attractive_force")) {
        rule.phase = 1;
        rule.position = 2;
    }
    return rule;
}

Rule rule_of_wound_field(const char* category, const char* key, const double* x, int dim, double pp) {
    Rule rule;
    if (is(category, key, "current_flux", "flux")) {
        rule.phase = 2;
        rule.position = 4;
        const int n = dim > 4 ? whole_part(x[4]) : 0;
        rule.shift = n < 3 ? n * 120 / pp : 0.0;
    } else if (is(category, key, "harmonic_inductance", "inductance")) {
        rule.phase = 2;
        rule.position = 4;
        const int n = dim > 4 ? whole_part(x[4]) : 0;
        const int p = n / 4;
        const int s = n % 4;
        if (p < 3 && s < 3) {
            rule.shift = (p * 2.0 + s * 0.5) * (120 / pp);
        } else {
            rule.shift = p == 3 ? s * 120 : p * 120;  // not divided by the pole pairs: established so
        }
    } else if (is(category, key, "harmonic_torque", "torque_ibeta")) {
        rule.phase = 2;
        rule.position = 4;
        rule.factor = -1.0;
    } else if (is_loss(category)) {
        rule.phase = 2;
    }
    return rule;
}

bool folds(const char* category, const char* key, int motor_type, const Store& store) {
    if (!((motor_type == 10000 && kzb_has_category("harmonic_torque", store) != 0) || motor_type == 10005 ||
          motor_type == 10007)) {
        return false;
    }
    return is(category, key, "current_flux", "flux") || is(category, key, "harmonic_inductance", "inductance") ||
           is(category, key, "harmonic_torque", "torque_ibeta") || is(category, key, "distance_force", "force") ||
           is(category, key, "distance_force", "attractive_force") || is_loss(category);
}

}  // namespace

double fold_coordinates(const char* category, const char* key, double* x, Store& store) {
    const int motor_type = kzb_get_int("control", "motor_type", store);
    if (!folds(category, key, motor_type, store)) {
        return 1.0;
    }
    const int poles = kzb_get_int("control", "number_of_poles", store);
    const double pp = poles == 0 ? 1.0 : poles * 0.5;
    const double b0 = kzb_get_double("control", "beta_zero", store) / pp;
    const int dim = kzb_get_table_dim(category, key, store);
    Rule rule;
    if (motor_type == 10000) {
        rule = rule_of_rotary(category, key, x, dim, pp);
    } else if (motor_type == 10005) {
        rule = rule_of_linear(category, key, dim);
    } else {
        if (kzb_get_int("control", "current_type", store) != 1) {
            return 1.0;
        }
        rule = rule_of_wound_field(category, key, x, dim, pp);
    }
    if (rule.phase == 0 || rule.phase > dim) {
        return 1.0;
    }
    double t = wrap(x[rule.phase - 1], 0.0, 360.0, 360.0);
    const bool flip = !(t <= 90.0 || t >= 270.0);
    if (!flip) {
        rule.factor = 1.0;
    }
    if (std::fabs(t - 180.0) < 1e-10) {
        t = 0.0;
    } else if (t > 90.0 && t < 180.0) {
        t = 180.0 - t;
    } else if (t > 180.0 && t < 270.0) {
        t = 270.0 - t + 270.0;
    }
    const auto range_of = [&](int axis, double& lo, double& hi) {
        const int rows = kzb_get_table_num_rows(category, key, axis, store);
        lo = kzb_get_table_axis_value(category, key, axis, 0, store);
        hi = kzb_get_table_axis_value(category, key, axis, rows - 1, store);
    };
    double lo = 0.0;
    double hi = 0.0;
    range_of(rule.phase, lo, hi);
    x[rule.phase - 1] = wrap(t, lo, hi, 360.0);
    if (flip && rule.position != 0 && rule.position <= dim) {
        range_of(rule.position, lo, hi);
        double v = wrap(x[rule.position - 1] + b0, lo, hi, hi - lo);
        const double period = motor_type == 10005 ? kzb_get_double("control", "electrical_length", store) : 360.0 / pp;
        if (std::fabs(v) < 1e-10) {
            v = period;
        } else if (std::fabs(v - period) < 1e-10) {
            v = 0.0;
        } else if (0.0 < v && v < period) {
            v = period - v;
        }
        x[rule.position - 1] = v - b0 - rule.shift;
    }
    return rule.factor;
}

}  // namespace kzb_reference
