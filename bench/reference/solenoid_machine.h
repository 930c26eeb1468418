// The plain reference of the linear solenoid: one coil, a plunger, a magnet flux over the position.
//
//   force = F(x, i) * correction - ((2 i - i_prev) * delta - i * delta_prev) / dx,  delta = (1 - factor) * flux(x)
#pragma once

#include "bench/reference/coil_machine.h"

namespace kzb_reference {

class SolenoidMachine : public CoilMachine {
  public:
    SolenoidMachine(Store& store, int calc_mode, Lookup lookup) : CoilMachine(store, 1, calc_mode, lookup) {}

    void set_data() override;
    int set_displacement(double value) override;
    void execute() override;
    void update() override;
    double get_torque() override { return 180034.0; }
    double get_force() override { return evaluate_force(); }
    double get_voltage(int phase) const override;
    double get_induced_voltage(int phase) const override;
    double get_inductance(int row, int column) override;
    double get_mag_flux(int phase) const override;
    double get_upper_limit_displacement() const;
    double get_lower_limit_displacement() const;

  private:
    double evaluate_force();
    void update_magnet_flux();
    void update_inductance();
    void update_force();

    std::vector<double> current_out_prev;
    std::vector<double> magnet_flux;
    std::vector<double> magnet_flux_prev;
    std::vector<double> flux_temperature_delta;
    std::vector<double> flux_temperature_delta_prev;
    std::vector<double> voltage;
    double force = 0.0;
    double position_prev = 0.0;
    double coil_flux = 0.0;
    double coil_flux_prev = 0.0;
};

}  // namespace kzb_reference
