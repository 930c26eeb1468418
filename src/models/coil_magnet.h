// Magnet flux of separate coils, from a table over position and coil.
//
//   psi_k  = f_m * table(position, k) * k_f          f_m  magnet factor of the temperature
//   dpsi_k = (1 - f_m) * table(position, k) * k_f    k_f  flux correction
//
// dpsi is what the temperature took; torque and force give up its part.
#pragma once

#include <vector>

#include "store/lookup_front.h"

namespace kzb {

struct CoilMagnet {
    // Answer for a coil that the machine does not have, kept though the number means another complaint elsewhere.
    static constexpr double no_such_coil = 180042.0;

    std::vector<double> magnet_flux;  // Vs
    std::vector<double> magnet_flux_prev;
    std::vector<double> flux_temperature_delta;  // Vs
    std::vector<double> flux_temperature_delta_prev;

    void resize(std::size_t coils);
    // Looks up every coil at `position`, in the table's unit; the statistics of the store count a lookup for each
    // of psi and dpsi.
    void update(KZB_STORE& store, TableRef& table, double position, double magnet_factor, double correction);
    // The previous values of a first step are those of the step itself.
    void keep_first();
    void accept();
    // (psi - psi_prev) / dt of coil k from 0.
    double voltage(std::size_t k, double dt) const { return (magnet_flux[k] - magnet_flux_prev[k]) / dt; }
    // Coils from 1.
    double magnet_flux_of(int coil) const;
};

}  // namespace kzb
