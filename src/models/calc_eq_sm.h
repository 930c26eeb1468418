// Calc_Eq_sm: the two-phase stepping motor, four half coils A+, A-, B+, B-.
//
//   v - e = R i + d/dt (L i),   e = d/dt psi_magnet, taken by the caller from the accepted step
//   T = k_t * table(i_A, angle, i_B) - temperature term,   i_A = i_A+ - i_A-,  i_B = i_B+ - i_B-
//
// inputs   v - e [4] V, signal [4] (not above 0.0: open)    states      currents A
//          position mechanical rad, time s                  parameters  tables of the file, corrections, temperatures
// outputs  current_output A, torque N*m, fluxes Vs, inductances H, voltage V (e of the accepted step)
// step     implicit in the current, one linear solve per sample, inductances taken at the accepted currents
#pragma once

#include "models/coil_machine.h"
#include "models/coil_magnet.h"
#include "store/lookup_front.h"

namespace kzb {

class Calc_Eq_sm : public CoilMachine {
  public:
    ~Calc_Eq_sm() override = default;

    void reset() override;
    // Takes tables and fixed data from `store`, which the model borrows from now on.
    void bind(KZB_STORE& store);

    // Voltage driven: d0 to d3 are the terminal voltages less `voltage` of the coil.
    void step(double d0, double d1, double d2, double d3, double position, double time, double signal0, double signal1,
              double signal2, double signal3);
    // Current driven: the torque at the currents that stand; kept as `torque`.
    double evaluate_torque();
    void accept() override;

    double induced_voltage(int phase) override;
    double voltage(int phase) const override { return CoilCircuit::of_phase(voltage_, phase); }
    double inductance_element(int row, int column) const override;
    // 180042.0 for a coil outside 1 to 4.
    double magnet_flux_of(int coil) const { return magnet_.magnet_flux_of(coil); }
    double torque() const { return torque_; }
    int pole_pairs() const { return pole_pairs_; }
    double phase_current_memo() const { return phase_current_memo_; }
    const CoilMagnet& magnet() const { return magnet_; }
    const std::vector<double>& voltage_new() const { return voltage_new_; }

  private:
    struct Tables {
        TableRef inductance{"inductance", "inductance"};
        TableRef flux{"mag_flux", "flux"};
        TableRef torque{"torque", "torque_ibeta"};
    };

    double angle() const;
    void update_inductance(double angle);
    double temperature_torque(const std::vector<double>& current) const;
    void update_torque(double angle, double temperature_term);
    void write_dump() const;

    CoilMagnet magnet_;
    std::vector<double> voltage_;      // V, of the accepted step
    std::vector<double> voltage_new_;  // V, of the present step
    double torque_ = 0.0;              // N*m
    int pole_pairs_ = 0;
    double phase_current_memo_ = 0.0;  // A, the last phase current that the inductances were taken at
    Tables tables_;
};

}  // namespace kzb
