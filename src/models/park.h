// Park transforms of three phase quantities, power invariant, and the polar form of a two-axis current.
//
//   d    =  sqrt(2/3) (u cos th + v cos(th - a) + w cos(th + a)),   a = 2 pi / 3
//   q    = -sqrt(2/3) (u sin th + v sin(th - a) + w sin(th + a))
//   zero =  (u + v + w) / sqrt(3)
//
// Amplitude is the peak phase value, sqrt(2/3) times the two-axis magnitude; the phase beta counts in degrees from the
// q axis towards negative d. Results bind to the last bit: the order of operations here is part of the definition.
#pragma once

#include <array>
#include <cmath>

namespace kzb {

using Phases = std::array<double, 3>;  // u, v, w
using Dq0 = std::array<double, 3>;     // d, q, zero
struct DqPair {
    double d;
    double q;
};
using Matrix3 = std::array<double, 9>;  // row by row

// These are the doubles that atan and sqrt give; tests compare them.
inline constexpr double pi = 3.141592653589793;               // atan(1) * 4
inline constexpr double two_thirds_turn = pi * 2.0 / 3.0;     // 2.0943951023931953
inline constexpr double sqrt_two_thirds = 0.816496580927726;  // sqrt(2.0 / 3.0)
inline constexpr double sqrt_three_halves = 1.224744871391589;
inline constexpr double sqrt_half = 0.7071067811865476;
inline constexpr double sqrt_three = 1.7320508075688772;
inline constexpr double degrees_per_radian = 57.29577951308232;

// Cosine and sine of th, th - a, th + a for one electrical angle.
struct PhaseAngles {
    Phases c;
    Phases s;

    explicit PhaseAngles(double th)
        : c{std::cos(th), std::cos(th - two_thirds_turn), std::cos(th + two_thirds_turn)},
          s{std::sin(th), std::sin(th - two_thirds_turn), std::sin(th + two_thirds_turn)} {}
};

inline double park_d(const Phases& x, const PhaseAngles& at) {
    return sqrt_two_thirds * (x[0] * at.c[0] + x[1] * at.c[1] + x[2] * at.c[2]);
}

inline double park_q(const Phases& x, const PhaseAngles& at) {
    return sqrt_two_thirds * (-x[0] * at.s[0] - x[1] * at.s[1] - x[2] * at.s[2]);
}

inline double park_zero(const Phases& x) {
    return (x[0] + x[1] + x[2]) / sqrt_three;
}

inline Dq0 park(const Phases& x, const PhaseAngles& at) {
    return {park_d(x, at), park_q(x, at), park_zero(x)};
}

// Inverse of the three-output form.
inline Phases inverse_park(const Dq0& x, const PhaseAngles& at) {
    Phases phases;
    for (std::size_t k = 0; k < 3; ++k) {
        phases[k] = sqrt_two_thirds * (x[0] * at.c[k] - x[1] * at.s[k] + sqrt_half * x[2]);
    }
    return phases;
}

// Inverse of the two-output form: the three phases without zero sequence, by determinants.
inline Phases inverse_park_dq(double d, double q, const PhaseAngles& at) {
    const Phases& c = at.c;
    const Phases& s = at.s;
    const double determinant = s[1] * c[2] - (c[1] * s[2] + c[0] * s[1] + s[0] * c[2]) + s[0] * c[1] + c[0] * s[2];
    return {((c[2] - c[1]) * q + (s[2] - s[1]) * d) * sqrt_three_halves / determinant,
            ((c[0] - c[2]) * q + (s[0] - s[2]) * d) * sqrt_three_halves / determinant,
            ((c[1] - c[0]) * q + (s[1] - s[0]) * d) * sqrt_three_halves / determinant};
}

// Peak phase value of a two-axis quantity.
inline double amplitude_of(double d, double q) {
    return std::sqrt((d * d + q * q) * 2.0 / 3.0);
}

// Current phase beta in degrees; 0 where q is 0.
inline double phase_of(double d, double q) {
    if (q == 0.0) {
        return 0.0;
    }
    const double beta = std::atan(-d / q) * degrees_per_radian;
    if (q < 0.0) {
        return d < 0.0 ? beta + 180.0 : beta - 180.0;
    }
    return beta;
}

inline double radians_of(double degrees) {
    return degrees * pi / 180.0;
}

}  // namespace kzb
