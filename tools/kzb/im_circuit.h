// The equivalent circuit of an induction machine per phase, with a saturable main inductance.
//
//   V = (R1 + j w L_sigma1) I1 + j w psi_m,   0 = (R2 / s + j w L_sigma2) I2 + j w psi_m,   psi_m = L_m(|I_m|) I_m,
//   I_m = I1 + I2
// All quantities are peak values of a phase, rotor quantities referred to the stator, all currents counted into their
// winding. At the slip angular frequency w_s = s w the rotor equation does not know the stator:
//
//   I1 = I_m (1 + j w_s L_m / (R2 + j w_s L_sigma2))
//   |I1|^2 = (I_m^2 R2^2 + w_s^2 (L_sigma2 I_m + psi_m)^2) / (R2^2 + (w_s L_sigma2)^2)
// which rises with I_m; so the magnetizing current is a function of primary current and slip frequency.
#pragma once

#include <complex>
#include <memory>
#include <vector>

namespace kzb::tool {

// Main flux linkage over magnetizing current: a constant inductance, or points joined by a monotone cubic; beyond the
// last point straight on in the direction of the last two.
class MagnetizingCurve {
  public:
    MagnetizingCurve() = default;
    explicit MagnetizingCurve(double inductance) : inductance_(inductance) {}
    // Both ascending from 0, 0; at least two points.
    MagnetizingCurve(const std::vector<double>& current, const std::vector<double>& flux);

    bool saturates() const { return !current_.empty(); }
    double flux(double current) const;
    double inductance(double current) const;  // flux / current, the initial one at 0
    double current_of(double flux) const;     // the inverse
    double last_current() const { return current_.empty() ? 0.0 : current_.back(); }
    const std::vector<double>& currents() const { return current_; }
    const std::vector<double>& fluxes() const { return flux_; }

  private:
    struct Interpolation;
    double inductance_ = 0.0;
    std::vector<double> current_;
    std::vector<double> flux_;
    std::shared_ptr<const Interpolation> between_;
};

struct ImCircuit {
    double pole_pairs = 1.0;
    double r1 = 0.0;
    double r2 = 0.0;
    double leakage1 = 0.0;  // H
    double leakage2 = 0.0;
    MagnetizingCurve main;
};

double primary_current(const ImCircuit& circuit, double slip_omega, double magnetizing_current);
double magnetizing_current(const ImCircuit& circuit, double slip_omega, double primary_current);

struct ImState {
    std::complex<double> i1;
    std::complex<double> i2;
    double torque = 0.0;
    std::complex<double> i_m() const { return i1 + i2; }
};

// Steady state at the peak phase voltage `voltage`, the real axis; slip 1 is standstill.
ImState steady_state(const ImCircuit& circuit, double voltage, double omega, double slip);

}  // namespace kzb::tool
