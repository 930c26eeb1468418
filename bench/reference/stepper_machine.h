// The plain reference of the two-phase stepping motor: four half coils A+, A-, B+, B-.
//
//   torque = T(jA, ang, jB) * correction - sum over k of sin((th - pi / (2 P) o_k) P) P g_k delta_k i_k
#pragma once

#include "bench/reference/coil_machine.h"

namespace kzb_reference {

class StepperMachine : public CoilMachine {
  public:
    StepperMachine(Store& store, int calc_mode, Lookup lookup) : CoilMachine(store, 4, calc_mode, lookup) {}

    void set_data() override;
    void execute() override;
    void update() override;
    double get_torque() override;
    double get_force() override { return 180035.0; }
    double get_voltage(int phase) const override;
    double get_induced_voltage(int phase) const override;
    double get_inductance(int row, int column) override;
    double get_mag_flux(int phase) const override;

  private:
    double evaluate_torque();
    void update_magnet_flux(double ang);
    void update_inductance(double ang);
    void update_torque(double ang, const std::vector<double>& term_current);

    int pole_pairs = 0;
    std::vector<double> magnet_flux;
    std::vector<double> magnet_flux_prev;
    std::vector<double> flux_temperature_delta;
    std::vector<double> voltage;
    std::vector<double> voltage_new;
    double torque = 0.0;
};

}  // namespace kzb_reference
