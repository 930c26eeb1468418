// Calc_Eq_sr: the switched reluctance motor of three, four or five phases.
//
//   v = R i + d/dt (L i),   T = k_t * sum over phases k of table(angle + k * 360 / (poles * n), i_k)
//
// inputs   v [n] V, signal [n] (not above 0.0: open)    states      currents A
//          position mechanical rad, time s              parameters  tables of the file, corrections, temperatures
// outputs  current_output A, torque N*m, fluxes Vs, inductances H
// step     implicit in the current, one linear solve per sample, inductances taken at the accepted currents
//
// There is no magnet. Row r of the inductance matrix depends on the current of phase r alone.
#pragma once

#include <cstdint>
#include <vector>

#include "models/coil_machine.h"
#include "store/lookup_front.h"

namespace kzb {

class Calc_Eq_sr : public CoilMachine {
  public:
    ~Calc_Eq_sr() override = default;

    void reset() override;
    // Takes tables and fixed data from `store`, which the model borrows from now on. A machine of other than 3, 4 or 5
    // `phases` has no coil.
    void bind(KZB_STORE& store, int phases);

    // Voltage driven: `voltages` and `signals` [phases].
    void step(const double* voltages, double position, double time, const double* signals);
    // Current driven: the torque at the currents that stand; kept as `torque`.
    double evaluate_torque();
    void accept() override;

    double induced_voltage(int phase) override;
    double voltage(int) const override { return 0.0; }
    double torque() const { return torque_; }
    int phases() const { return phases_; }
    const std::vector<double>& flux() const { return flux_; }

  private:
    struct Tables {
        TableRef inductance{"inductance", "inductance"};
        TableRef torque{"torque", "torque_ibeta"};
        Method linear = Method::named("Linear");
    };

    double angle() const;
    void look_up_row(const Method& method, std::size_t r, double current, double angle, double* row);
    void update_inductance(double angle);
    void update_torque(double angle);
    void update_flux(double angle);
    int number_of_poles();
    void write_dump() const;

    int phases_ = 0;
    double torque_ = 0.0;       // N*m
    std::vector<double> flux_;  // Vs
    std::vector<double> flux_prev_;
    Tables tables_;
    std::uint64_t poles_revision_ = 0;  // of the store when `poles_` was read
    int poles_ = 0;
};

}  // namespace kzb
