// Calc_Eq_solenoid: the linear solenoid, one coil and a plunger with a permanent magnet.
//
//   v - e = R i + d/dt (L i),   e = d/dt psi_magnet, taken by the caller from the step before
//   F = k_f * table(position, i) - ((2 i - i') dpsi - i dpsi') / dx
//
// inputs   v - e V, signal (not above 0.0: open)    states      current A
//          position m, time s                       parameters  tables of the file, corrections, temperatures
// outputs  current_output A, force N, flux Vs, inductance H, voltage V (the e of the next step)
// step     implicit in the current, one linear solve per sample, inductance taken at the accepted current
#pragma once

#include "models/coil_machine.h"
#include "models/coil_magnet.h"
#include "store/lookup_front.h"

namespace kzb {

class Calc_Eq_solenoid : public CoilMachine {
  public:
    ~Calc_Eq_solenoid() override = default;

    void reset() override;
    // Takes tables and fixed data from `store`, which the model borrows from now on.
    void bind(KZB_STORE& store);
    void set_correction_force(double factor) { set_correction_torque(factor); }

    // Voltage driven: `d` is the terminal voltage less `voltage(1)`.
    void step(double d, double position, double time, double signal);
    // The force at the current that stands; kept as `force`.
    double evaluate_force();
    void accept() override;

    // The one coil's, whatever `phase` is.
    double induced_voltage(int phase) override;
    double voltage(int phase) const override { return CoilCircuit::of_phase(voltage_, phase); }
    // 180042.0 for a coil other than 1.
    double magnet_flux_of(int coil) const { return magnet_.magnet_flux_of(coil); }
    double force() const { return force_; }
    double coil_flux() const { return coil_flux_; }
    // The stroke that the file states (m); the model keeps to neither.
    double upper_limit() const { return upper_limit_; }
    double lower_limit() const { return lower_limit_; }
    const CoilMagnet& magnet() const { return magnet_; }

  private:
    struct Tables {
        TableRef inductance{"inductance", "inductance"};
        TableRef flux{"distance_flux", "flux"};
        TableRef force{"distance_force", "force"};
        Method linear = Method::named("Linear");
    };

    void update_inductance();
    void update_force(double dx);
    void update_coil_flux();
    void write_dump() const;

    CoilMagnet magnet_;
    std::vector<double> voltage_;           // V
    std::vector<double> current_out_prev_;  // A
    double force_ = 0.0;                    // N
    double position_prev_ = 0.0;            // m
    double upper_limit_ = 0.0;              // m
    double lower_limit_ = 0.0;
    double coil_flux_ = 0.0;  // Vs
    double coil_flux_prev_ = 0.0;
    Tables tables_;
};

}  // namespace kzb
