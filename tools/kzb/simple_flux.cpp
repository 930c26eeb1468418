#include "kzb/simple_flux.h"

#include <cmath>
#include <numbers>

#include "kzb/sound_table.h"

namespace kzb::tool {

SimpleFlux::SimpleFlux(const KZB_TABLE& magnet, const KZB_TABLE& inductance, const TravelScale& travel)
    : magnet_(magnet),
      inductance_(inductance),
      travel_(travel),
      magnet_positions_(nodes_of(magnet, 0)),
      amplitudes_(nodes_of(inductance, 0)),
      positions_(nodes_of(inductance, 1)) {}

std::optional<double> SimpleFlux::torque(double amplitude, double phase, double position) const {
    const double theta = travel_.electrical_per_unit * position + travel_.offset;
    const DqCurrent dq = dq_current(amplitude, phase, true);
    const auto on_magnet = spot_on(magnet_positions_, magnet_.cyclic[0] > 0, position);
    const auto on_amplitude = spot_on(amplitudes_, false, amplitude);
    const double half = std::numbers::pi / travel_.electrical_per_unit;
    const bool cyclic = inductance_.cyclic[1] > 0;
    const auto here = spot_on(positions_, cyclic, position);
    const auto opposite = spot_on(positions_, cyclic, position + half);
    if (!on_magnet || !on_amplitude || !here || !opposite) {
        return std::nullopt;
    }
    const double scale = std::sqrt(2.0 / 3.0);
    double cosines[3];
    double sines[3];
    double psi[3];
    for (std::size_t k = 0; k < 3; ++k) {
        cosines[k] = scale * std::cos(theta - third_of_turn * static_cast<double>(k));
        sines[k] = -scale * std::sin(theta - third_of_turn * static_cast<double>(k));
        const double low = magnet_.values[3 * on_magnet->lo + k];
        psi[k] = low + on_magnet->t * (magnet_.values[3 * on_magnet->hi + k] - low);
    }
    for (std::size_t column = 0; column < 3; ++column) {
        const double current = cosines[column] * dq.id + sines[column] * dq.iq;
        const Spot& at = current < 0.0 ? *opposite : *here;
        for (std::size_t row = 0; row < 3; ++row) {
            psi[row] += element(*on_amplitude, at, 3 * column + row) * current;
        }
    }
    double psi_d = 0.0;
    double psi_q = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
        psi_d += cosines[k] * psi[k];
        psi_q += sines[k] * psi[k];
    }
    return travel_.torque_factor * (psi_d * dq.iq - psi_q * dq.id);
}

double SimpleFlux::element(const Spot& amplitude, const Spot& position, std::size_t component) const {
    const auto along = [&](std::size_t i) {
        const double* const line = inductance_.values.data() + i * stride_of(inductance_, 0) + component;
        const double low = line[9 * position.lo];
        return low + position.t * (line[9 * position.hi] - low);
    };
    const double low = along(amplitude.lo);
    return low + amplitude.t * (along(amplitude.hi) - low);
}

}  // namespace kzb::tool
