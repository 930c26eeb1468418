#include "models/turns.h"

namespace kzb {

double turns_in_coil(const KZB_STORE& store) {
    return get_double(store, "control", "turns_in_coil");
}

double turns_ratio(double turns, double file_turns) {
    return file_turns == 0.0 || turns == 0.0 ? 1.0 : turns / file_turns;
}

void CoilCorrections::fold(double file_turns) {
    turns1 = turns_ratio(turns1, file_turns);
    turns2 = turns_ratio(turns2, file_turns);
    correction_flux = turns2 * correction_flux * turns1 * correction_magnet * correction_steel;
    correction_inductance = correction_steel * correction_inductance * turns1;
    correction_torque = correction_magnet * correction_torque * (correction_steel * correction_steel) * turns1;
}

}  // namespace kzb
