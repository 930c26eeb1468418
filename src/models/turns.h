// Turns of a coil and the corrections of a machine of separate coils, as a model uses them.
//
//   ratio       n = turns / turns_in_coil, 1.0 where either is 0.0
//   flux        k_f = n2 * k_flux * n1 * k_magnet * k_steel
//   inductance  k_l = k_steel * k_inductance * n1
//   torque      k_t = k_magnet * k_torque * k_steel^2 * n1
//
// n1 belongs to what a table gives, n2 to the current it is asked at.
#pragma once

#include "store/store.h"

namespace kzb {

// Number of turns that the tables of the file belong to; 0.0 where the file does not tell.
double turns_in_coil(const KZB_STORE& store);

// A number of turns as ratio to the file's.
double turns_ratio(double turns, double file_turns);

// Plain factors until they are folded, what the formulas above give from then on.
struct CoilCorrections {
    double correction_flux = 1.0;
    double correction_magnet = 1.0;
    double correction_steel = 1.0;
    double correction_inductance = 1.0;
    double correction_torque = 1.0;  // or of force
    double turns1 = 0.0;             // turns, then ratio
    double turns2 = 0.0;

    // In place: a correction set afterwards acts as it is.
    void fold(double file_turns);
};

// What a model with such corrections takes before it is bound.
template <class Corrections>
class CorrectionSetters {
  public:
    void set_correction_flux(double factor) { corrections_.correction_flux = factor; }
    void set_correction_magnet(double factor) { corrections_.correction_magnet = factor; }
    void set_correction_steel(double factor) { corrections_.correction_steel = factor; }
    void set_correction_inductance(double factor) { corrections_.correction_inductance = factor; }
    void set_correction_torque(double factor) { corrections_.correction_torque = factor; }
    void set_turns1(double turns) { corrections_.turns1 = turns; }
    void set_turns2(double turns) { corrections_.turns2 = turns; }
    const Corrections& corrections() const { return corrections_; }

  protected:
    Corrections corrections_;
};

}  // namespace kzb
