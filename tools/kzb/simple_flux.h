// The flux linkage that the model of SimpleHarmonic adds up,
//
//   psi = magnet(position) + sum over columns c of  L_c(amplitude, position) i_c
//
// with the column taken half an electrical period further on where its phase current i_c is negative.
#pragma once

#include <optional>
#include <vector>

#include "kzb/mean_torque.h"

namespace kzb::tool {

class SimpleFlux {
  public:
    // `magnet` over position and phase; `inductance` over amplitude, position and the nine elements by columns.
    SimpleFlux(const KZB_TABLE& magnet, const KZB_TABLE& inductance, const TravelScale& travel);

    // k (psi_d i_q - psi_q i_d) at one position; nothing outside the tables, or below the first amplitude, where the
    // model blends.
    std::optional<double> torque(double amplitude, double phase, double position) const;

  private:
    double element(const Spot& amplitude, const Spot& position, std::size_t component) const;

    const KZB_TABLE& magnet_;
    const KZB_TABLE& inductance_;
    TravelScale travel_;
    std::vector<double> magnet_positions_;
    std::vector<double> amplitudes_;
    std::vector<double> positions_;
};

}  // namespace kzb::tool
