// Iron loss of the materials of a file: one eddy and one hysteresis table per material, over axes
// (|speed| rpm, current phase degrees, current amplitude A), or (|speed| rpm, ...) as the caller's point has them.
//
//   loss = sum over materials of correction * table(point)
//
// Below the first node of the amplitude axis both values shrink in proportion to the amplitude.
#pragma once

#include <cstdint>
#include <vector>

#include "store/lookup_front.h"

namespace kzb {

struct IronLoss {
    double eddy = 0.0;        // W
    double hysteresis = 0.0;  // W
};

class MaterialLosses {
  public:
    // Lookups in order of the materials, eddy first. `amplitude` is held against the axis `amplitude_axis` (from 1).
    IronLoss sum(KZB_STORE& store, const Method& method, const double* point, int count, int amplitude_axis,
                 double amplitude, double correction);

  private:
    struct Material {
        TableRef eddy;
        TableRef hysteresis;
    };
    void resolve(const KZB_STORE& store);

    std::uint64_t revision_ = 0;
    std::vector<Material> materials_;
};

}  // namespace kzb
