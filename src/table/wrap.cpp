// Cyclic wrap: a coordinate is brought into the period of its axis by adding or subtracting the period.
//
// The result is that of one addition after the other, each rounded. Within one binade [2^e, 2^(e+1)) all values are
// multiples of one ulp, so the rounded step of v -> fl(v - period) is the same for every v there: with
// period = k ulp + r it is k or k + 1 ulp, by the rounding of r; a tie (r = ulp / 2) picks the even neighbour and is
// settled after one step, since an even value then follows an even value. n such steps are therefore one exact
// subtraction, and a coordinate many periods away costs a few steps per binade.
//
// Where the period is a whole number of ulps of the first value (90, 360 degrees), no step rounds at all: the result is
// the exact remainder, and a machine that turns for hours costs no more than one that starts.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "table/axis_search.h"
#include "table/lookup.h"

namespace kzb {

namespace {

// Single steps before jumps are tried: most coordinates are a few periods away.
constexpr int plain_steps = 8;
// Changes of direction before a value counts as one that never settles.
constexpr int most_turns = 64;

// The value after many steps down, short of both the limit and the end of the binade; v itself if none are safe.
double jump_down(double v, double period, double limit) {
    if (v == 0.0 || !std::isfinite(v)) {
        return v;
    }
    const int exponent = std::ilogb(v);
    const double binade_end = v > 0.0 ? std::ldexp(1.0, exponent) : -std::ldexp(1.0, exponent + 1);
    const double bottom = std::max(limit, binade_end);
    const double settled = v - period;
    const double step = settled - (settled - period);
    if (!(step > 0.0)) {
        return v;
    }
    // Two steps short of the end: the quotient is rounded.
    const double count = std::floor((settled - bottom) / step) - 2.0;
    return count >= 1.0 && std::isfinite(count) ? settled - count * step : v;
}

// The result of all steps down but a last few, where none of them rounds; false where one may.
bool take_exact_rest(double& v, double period, double limit) {
    if (!(v > 0.0) || !std::isfinite(v) || !(limit < 2.0 * period)) {
        return false;
    }
    const double ulps = std::ldexp(period, std::numeric_limits<double>::digits - 1 - std::ilogb(v));
    if (!std::isfinite(ulps) || ulps != std::floor(ulps)) {
        return false;
    }
    double rest = std::fmod(v, period);
    // The steps end at the first value that isn't above the limit; those from here up to v are exact as well.
    while (rest + period <= limit) {
        rest += period;
    }
    v = rest;
    return true;
}

// Subtracts the period while v > limit; false when a subtraction no longer changes the value.
bool step_down(double& v, double period, double limit) {
    for (int steps = 0; v > limit; ++steps) {
        if (steps == plain_steps && take_exact_rest(v, period, limit)) {
            continue;
        }
        if (steps >= plain_steps) {
            v = jump_down(v, period, limit);
        }
        const double next = v - period;
        if (next == v) {
            return false;
        }
        v = next;
    }
    return true;
}

}  // namespace

WrapOutcome wrap_into_period(double low, double high, double& value) {
    const double period = high - low;
    const double lo_limit = low - KZB_AXIS_TOL;
    const double hi_limit = high + KZB_AXIS_TOL;
    WrapOutcome outcome;
    for (int turns = 0; turns < most_turns; ++turns) {
        const bool below = lo_limit > value;
        const bool above = !below && value > hi_limit;
        if (!below && !above) {
            outcome.found = value > lo_limit && hi_limit > value;
            outcome.on_limit = !outcome.found;
            return outcome;
        }
        // A period that is not positive leads away from the range.
        if (!(period > 0.0)) {
            return outcome;
        }
        if (above) {
            outcome.went_down = true;
            if (!step_down(value, period, hi_limit)) {
                return outcome;
            }
        } else {
            // Going up is going down with all signs turned; rounding is symmetric.
            outcome.went_up = true;
            double mirrored = -value;
            const bool moved = step_down(mirrored, period, -lo_limit);
            value = 0.0 - mirrored;  // a sum that ends at zero ends at +0
            if (!moved) {
                return outcome;
            }
        }
    }
    return outcome;
}

bool table_wrap_cyclic_axes(const KZB_TABLE& table, const double* coordinates, double* wrapped) {
    // Left from one axis to the next: an axis with equal ends takes those of the axis before it.
    double low = 0.0;
    double high = 0.0;
    for (int a = 0; a < table.dim; ++a) {
        const auto axis = static_cast<std::size_t>(a);
        wrapped[a] = coordinates[a];
        if (axis >= table.axes.size() || !table.axes[axis] || table.cyclic[axis] < 1) {
            continue;
        }
        const double* nodes = table.axes[axis].data();
        const int rows = table.sizes[axis];
        if (rows == 1) {
            wrapped[a] = nodes[0];
            continue;
        }
        const double first = nodes[0];
        const double last = nodes[rows - 1];
        if (last > first || first > last) {
            low = first;
            high = last;
        } else {
            std::perror("The axis values are not in ascending order\n");
        }
        const WrapOutcome outcome = wrap_into_period(low, high, wrapped[a]);
        if (!outcome.found) {
            if (outcome.on_limit && outcome.went_up && outcome.went_down) {
                std::perror("The cyclic value is not found\n");
            }
            return false;
        }
    }
    return true;
}

}  // namespace kzb
