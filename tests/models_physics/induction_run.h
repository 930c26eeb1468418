// An induction machine connected to a sinusoidal supply, free to turn: by the model through the public calls, and by an
// independent integration of
//   d psi_s / dt = v - R_s i_s,   d psi_r / dt = -R_r i_r + j w psi_r,   J d(w / p) / dt = torque - load
//   torque = 1.5 p Im(i_s conj(psi_s))           peak space vectors in the stator's frame, w electrical rotor speed
// with the classical Runge-Kutta method of fourth order.
#pragma once

#include <complex>
#include <functional>
#include <string>
#include <vector>

namespace kzb::physics {

using Complex = std::complex<double>;

struct InductionMachine {
    double pole_pairs = 1.0;
    double r_s = 0.0;
    double r_r = 0.0;
    // Currents of the windings that belong to flux linkages.
    std::function<void(Complex psi_s, Complex psi_r, Complex& i_s, Complex& i_r)> currents;
};

struct InductionRun {
    double voltage = 0.0;    // peak, of a phase
    double frequency = 0.0;  // Hz
    double inertia = 1e30;
    double start_speed = 0.0;  // rad/s, mechanical
    double load = 0.0;         // N*m, from load_time on
    double load_time = 0.0;
    double end_time = 0.0;
};

struct InductionSample {
    double time = 0.0;
    double current[3] = {};
    double torque = 0.0;
    double speed = 0.0;  // rad/s
};

// The rotor moves on by the torque of each sample; `with_slip` hands over the slip frequency that goes with its speed.
std::vector<InductionSample> run_induction_model(const std::string& path, const InductionRun& run, double pole_pairs,
                                                 double dt, int keep_every, bool with_slip);
std::vector<InductionSample> run_induction_reference(const InductionMachine& machine, const InductionRun& run,
                                                     double dt, int keep_every);

}  // namespace kzb::physics
