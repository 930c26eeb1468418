// The plain reference of the switched reluctance machine with 3, 4 or 5 phases.
//
//   torque = (sum over k of T(ang + k * (360 / poles) / n, i_k)) * correction,   ang in degrees
//   L[r][c] = table(|i_r|, ang, n c + r), at the accepted currents
#pragma once

#include "bench/reference/coil_machine.h"

namespace kzb_reference {

class SrMachine : public CoilMachine {
  public:
    SrMachine(Store& store, int calc_mode, Lookup lookup);

    void set_data() override;
    void execute() override;
    void update() override;
    double get_torque() override;
    double get_force() override { return 180035.0; }
    double get_voltage(int phase) const override { return has_phase(phase) ? 0.0 : 180031.0; }
    double get_induced_voltage(int phase) const override;
    double get_inductance(int row, int column) override;
    double get_mag_flux(int) const override { return 180039.0; }

  private:
    double evaluate_torque();
    void update_torque(double ang);
    void update_flux(double ang);

    double torque = 0.0;
    std::vector<double> flux;
    std::vector<double> flux_prev;
};

}  // namespace kzb_reference
