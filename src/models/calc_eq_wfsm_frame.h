// The d-q frame as the wound-field model takes it: its own q axis output, inverse and phase angle.
//
//   q = -sqrt(2/3) (sin th u + sin(th - a) v + sin(th + a) w),   a = 2 pi / 3
//   k =  sqrt(2/3) (cos th_k d - sin th_k q),   th_k = th, th - a, th + a
//
// The d output, the amplitude and the angles are those of models/park.h.
#pragma once

#include <cmath>

#include "models/calc_eq_wfsm_data.h"
#include "models/park.h"

namespace kzb::wfsm {

inline Phases armature(const WfsmCoils& x) {
    return {x[0], x[1], x[2]};
}

// The sign stands before the sum, not before each term as in `park_q`: a sum of 0.0 gives -0.0 here.
inline double park_q(const Phases& x, const PhaseAngles& at) {
    return -sqrt_two_thirds * (at.s[0] * x[0] + at.s[1] * x[1] + at.s[2] * x[2]);
}

inline DqPair park(const Phases& x, const PhaseAngles& at) {
    return {park_d(x, at), wfsm::park_q(x, at)};
}

// Phases of a d-q pair; there is no zero sequence.
inline Phases inverse_park(const DqPair& x, const PhaseAngles& at) {
    Phases phases;
    for (std::size_t k = 0; k < 3; ++k) {
        phases[k] = sqrt_two_thirds * (at.c[k] * x.d - at.s[k] * x.q);
    }
    return phases;
}

// Degrees from +q towards -d. On the d axis, where `phase_of` of the permanent-magnet model gives 0, the angle is -90
// or 90 by the sign of d.
inline double current_phase(double d, double q) {
    if (q == 0.0) {
        return d > 0.0 ? -90.0 : d < 0.0 ? 90.0 : 0.0;
    }
    const double beta = std::atan(-d / q) * degrees_per_radian;
    if (q < 0.0) {
        return d < 0.0 ? beta + 180.0 : beta + -180.0;
    }
    return beta;
}

}  // namespace kzb::wfsm
