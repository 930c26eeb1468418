// The map of a reluctance machine's phase over a whole rotor pitch, and the coupling of neighbours over it.
#pragma once

#include <string>
#include <vector>

#include "kzb/coil_map.h"

namespace kzb::tool {

// Completes half a pitch by mirror symmetry (flux linkage even, torque odd about its ends) and closes an open one.
// Failure(exit_file) for other positions and for a flux linkage that is not above 0. Tells in `notes` what it did.
CoilMap whole_pitch(CoilMap map, double pitch, std::vector<std::string>& notes);

// Torque, Nm, by the derivative of the coenergy at every point; positions in degrees.
std::vector<double> torque_of_coenergy(const CoilMap& map, double pitch);

// Inductance between a phase and the next, by the angle of the first of them.
class SrCoupling {
  public:
    SrCoupling() = default;  // none
    SrCoupling(const CoilMap& mutual, double pitch, double shift, std::vector<std::string>& notes);
    double at(double theta_deg) const;

  private:
    double pitch_ = 0.0;
    std::vector<double> theta_;  // ascending within one pitch
    std::vector<double> value_;
};

}  // namespace kzb::tool
