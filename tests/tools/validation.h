// Models for the tests of kzb validate, and its findings read back.
//
// The machines are linear: psi_d = L_d i_d + psi_m, psi_q = L_q i_q in peak values, so every table has a closed form.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "tools/program.h"

namespace kzb::test {

inline constexpr double l_d = 1e-3;
inline constexpr double l_q = 2e-3;
inline constexpr double psi_m = 0.1;  // peak phase flux linkage, Vs
inline constexpr double pole_pairs = 2.0;

// Flux linkages of the phases U, V, W at peak currents, position in mechanical degrees.
double phase_flux(double i_d, double i_q, double magnet, double position, int phase);
// Element of the matrix of phase inductances, zero-sequence inductance 1 mH.
double phase_inductance(double position, int row, int column);
// 3/2 p (psi_d i_q - psi_q i_d)
double torque_of(double i_d, double i_q, double magnet);

// Peak currents of amplitude and phase (degrees).
double d_of(double amplitude, double phase);
double q_of(double amplitude, double phase);

// Nodes every `step` from `first` to `last`.
std::vector<double> steps(double first, double last, double step);

// The parameters of a rotary machine of four poles, without tables.
void fill_machine(KZB_STORE* store, int motor_type, int accuracy_type);
// Application LdLq, the same inductances at every current.
void fill_ldlq(KZB_STORE* store);
// Application Harmonic; a torque ripple of 10 N m with six periods to an electrical one stands in its torque.
void fill_harmonic(KZB_STORE* store);
// The torque table alone, times `factor`.
void put_harmonic_torque(KZB_STORE* store, const char* category, double factor);
// Application SimpleHarmonic.
void fill_simple(KZB_STORE* store);
// Application FluxIntegralDQTheta.
void fill_flux_integral(KZB_STORE* store);
// A wound-field machine over amplitude, phase and field current; magnet flux 0.05 Vs/A times the field current.
void fill_wound_field(KZB_STORE* store);
// An induction machine with tables of its own.
void fill_induction(KZB_STORE* store);

// m.kzb in `folder`: what `fill` makes, after the change.
void write_changed(const Folder& folder, void (*fill)(KZB_STORE*), const std::function<void(KZB_STORE*)>& change);

// What kzb validate --json tells of m.kzb in `folder`; the exit code is checked against it.
nlohmann::json findings_of(const Folder& folder);
// The one finding there is; fails the test for any other number.
nlohmann::json only_finding(const Folder& folder);
// "severity check category/key place" of a finding.
std::string told(const nlohmann::json& finding);

}  // namespace kzb::test
