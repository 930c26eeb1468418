// Two-axis form of three-phase quantities in the stationary frame, power invariant, and the same for windings that
// turn.
//
//   alpha = sqrt(2/3) (a - b/2 - c/2)                          a = sqrt(2/3) alpha
//   beta  = sqrt(2/3) (sqrt(3)/2 b - sqrt(3)/2 c)              b, c = sqrt(2/3) (-alpha/2 +- sqrt(3)/2 beta)
//
// A winding at the angle th has its phases k = 0, 1, 2 at th + k 2 pi / 3:
//
//   alpha = sqrt(2/3) sum of cos(th + k 2 pi / 3) x_k,  beta the same with sin,
//   x_k   = sqrt(2/3) (cos(th + k 2 pi / 3) alpha + sin(th + k 2 pi / 3) beta)
//
// Results bind to the last bit: the order of operations here is part of the definition.
#pragma once

#include <cmath>
#include <cstddef>

#include "models/park.h"

namespace kzb {

struct TwoAxis {
    double alpha = 0.0;
    double beta = 0.0;
};

inline TwoAxis clarke(double a, double b, double c) {
    return {sqrt_two_thirds * (a - b / 2.0 - c / 2.0), sqrt_two_thirds * (sqrt_three / 2.0 * b - sqrt_three / 2.0 * c)};
}

inline Phases inverse_clarke(const TwoAxis& x) {
    return {sqrt_two_thirds * x.alpha, sqrt_two_thirds * (sqrt_three / 2.0 * x.beta - x.alpha / 2.0),
            sqrt_two_thirds * (-x.alpha / 2.0 - sqrt_three / 2.0 * x.beta)};
}

// Cosine and sine of th, th + 2 pi / 3, th + 4 pi / 3.
struct RotorAngles {
    double angle = 0.0;
    Phases c{};
    Phases s{};

    RotorAngles() : RotorAngles(0.0) {}
    explicit RotorAngles(double th)
        : angle(th),
          c{std::cos(th), std::cos(th + 2.0 * pi / 3.0), std::cos(th + 4.0 * pi / 3.0)},
          s{std::sin(th), std::sin(th + 2.0 * pi / 3.0), std::sin(th + 4.0 * pi / 3.0)} {}
};

inline TwoAxis rotor_to_two_axis(double a, double b, double c, const RotorAngles& at) {
    return {sqrt_two_thirds * (at.c[0] * a + at.c[1] * b + at.c[2] * c),
            sqrt_two_thirds * (at.s[0] * a + at.s[1] * b + at.s[2] * c)};
}

inline Phases two_axis_to_rotor(const TwoAxis& x, const RotorAngles& at) {
    Phases phases;
    for (std::size_t k = 0; k < 3; ++k) {
        phases[k] = sqrt_two_thirds * (at.c[k] * x.alpha + at.s[k] * x.beta);
    }
    return phases;
}

// Peak phase value of a two-axis quantity, by its magnitude.
inline double peak_of(const TwoAxis& x) {
    return sqrt_two_thirds * std::sqrt(x.alpha * x.alpha + x.beta * x.beta);
}

}  // namespace kzb
