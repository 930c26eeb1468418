// The frames: three phases to two axes and back, standing and turning, each power-invariant.
#include <cmath>

#include "bench/reference/im.h"

namespace kzb_reference {

TwoAxis clarke(const double* phases) {
    TwoAxis x;
    x.a = std::sqrt(2.0 / 3.0) * (phases[0] - phases[1] / 2.0 - phases[2] / 2.0);
    x.b = std::sqrt(2.0 / 3.0) * (std::sqrt(3.0) / 2.0 * phases[1] - std::sqrt(3.0) / 2.0 * phases[2]);
    return x;
}

void inverse_clarke(const TwoAxis& x, double* phases) {
    phases[0] = std::sqrt(2.0 / 3.0) * x.a;
    phases[1] = std::sqrt(2.0 / 3.0) * (std::sqrt(3.0) / 2.0 * x.b - x.a / 2.0);
    phases[2] = std::sqrt(2.0 / 3.0) * (-x.a / 2.0 - std::sqrt(3.0) / 2.0 * x.b);
}

TwoAxis rotor_to_two_axis(const double* phases, double angle) {
    const double pi = 4.0 * std::atan(1.0);
    TwoAxis x;
    x.a = std::sqrt(2.0 / 3.0) * (std::cos(angle) * phases[0] + std::cos(angle + 2.0 * pi / 3.0) * phases[1] +
                                  std::cos(angle + 4.0 * pi / 3.0) * phases[2]);
    x.b = std::sqrt(2.0 / 3.0) * (std::sin(angle) * phases[0] + std::sin(angle + 2.0 * pi / 3.0) * phases[1] +
                                  std::sin(angle + 4.0 * pi / 3.0) * phases[2]);
    return x;
}

void two_axis_to_rotor(const TwoAxis& x, double angle, double* phases) {
    const double pi = 4.0 * std::atan(1.0);
    phases[0] = std::sqrt(2.0 / 3.0) * (std::cos(angle) * x.a + std::sin(angle) * x.b);
    for (int k = 1; k < 3; ++k) {
        const double at = angle + k * 2.0 * pi / 3.0;
        phases[k] = std::sqrt(2.0 / 3.0) * (std::cos(at) * x.a + std::sin(at) * x.b);
    }
}

}  // namespace kzb_reference
