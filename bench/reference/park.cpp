// The power-invariant frame change.
//
//   d = sqrt(2/3) (u cos t + v cos(t - a) + w cos(t + a))      a = 2 pi / 3
//   q = sqrt(2/3) (-u sin t - v sin(t - a) - w sin(t + a))     zero = (u + v + w) / sqrt(3)
#include <cmath>

#include "bench/reference/pmsm.h"

namespace kzb_reference {

namespace {

const double third_turn = std::atan(1.0) * 4.0 * 2.0 / 3.0;

}  // namespace

Dq park(const double* uvw, double angle) {
    const double a = third_turn;
    Dq dq;
    dq.d =
        std::sqrt(2.0 / 3.0) * (uvw[0] * std::cos(angle) + uvw[1] * std::cos(angle - a) + uvw[2] * std::cos(angle + a));
    dq.q = std::sqrt(2.0 / 3.0) *
           (-uvw[0] * std::sin(angle) - uvw[1] * std::sin(angle - a) - uvw[2] * std::sin(angle + a));
    dq.zero = (uvw[0] + uvw[1] + uvw[2]) / std::sqrt(3.0);
    return dq;
}

void inverse_park_with_zero(const Dq& dq, double angle, double* uvw) {
    const double a = third_turn;
    const double angles[3] = {angle, angle - a, angle + a};
    for (int k = 0; k < 3; ++k) {
        uvw[k] =
            std::sqrt(2.0 / 3.0) * (dq.d * std::cos(angles[k]) - dq.q * std::sin(angles[k]) + std::sqrt(0.5) * dq.zero);
    }
}

void inverse_park(const Dq& dq, double angle, double* uvw) {
    const double a = third_turn;
    const double c0 = std::cos(angle);
    const double c1 = std::cos(angle - a);
    const double c2 = std::cos(angle + a);
    const double s0 = std::sin(angle);
    const double s1 = std::sin(angle - a);
    const double s2 = std::sin(angle + a);
    const double determinant = s1 * c2 - (c1 * s2 + c0 * s1 + s0 * c2) + s0 * c1 + c0 * s2;
    uvw[0] = ((c2 - c1) * dq.q + (s2 - s1) * dq.d) * std::sqrt(1.5) / determinant;
    uvw[1] = ((c0 - c2) * dq.q + (s0 - s2) * dq.d) * std::sqrt(1.5) / determinant;
    uvw[2] = ((c1 - c0) * dq.q + (s1 - s0) * dq.d) * std::sqrt(1.5) / determinant;
}

double amplitude_of(const Dq& dq) {
    return std::sqrt((dq.d * dq.d + dq.q * dq.q) * 2.0 / 3.0);
}

double phase_of(const Dq& dq) {
    if (dq.q == 0.0) {
        return 0.0;
    }
    double beta = std::atan(-dq.d / dq.q) * 57.29577951308232;
    if (dq.q < 0.0) {
        beta = dq.d < 0.0 ? beta + 180.0 : beta - 180.0;
    }
    return beta;
}

double LossFilter::step(double t, double input, double first, double speed) {
    if (time == 0.0) {
        time = t;
        value = first;
        return value;
    }
    const double f = speed * 100.0 * 0.5 / M_PI;
    const double c = 1.0 / (f * 0.8) * 0.8;
    const double dt = t - time;
    value = (c * value / dt + input) / (c / dt + 1.0);
    time = t;
    return value;
}

}  // namespace kzb_reference
