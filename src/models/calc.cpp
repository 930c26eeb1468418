#include "models/calc.h"

namespace kzb {

double Calc::magnet_factor() const {
    if (!temperature_correction_) {
        return 1.0;
    }
    return (magnet_temperature_ - base_magnet_temperature_) * (magnet_temperature_coefficient_ * 0.01) + 1.0;
}

double Calc::coil_factor() const {
    if (!temperature_correction_) {
        return 1.0;
    }
    return (coil_temperature_ - base_coil_temperature_) * (coil_temperature_coefficient_ * 1e-6) + 1.0;
}

}  // namespace kzb
