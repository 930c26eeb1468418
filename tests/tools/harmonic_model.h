// A Harmonic model, and one over flux, whose transformed tables follow from closed forms.
#pragma once

#include <cmath>
#include <numbers>

#include "tools/models.h"

namespace kzb::test {

inline double sine_of_deg(double angle_deg) {
    return std::sin(angle_deg * std::numbers::pi / 180.0);
}
inline double cosine_of_deg(double angle_deg) {
    return std::cos(angle_deg * std::numbers::pi / 180.0);
}

inline constexpr double harmonic_inductance = 3e-3;  // H, of every phase, without coupling: Ld is the same
inline constexpr double harmonic_q_inductance = 4e-3;

// Four poles; the flux of a phase is harmonic_q_inductance times its current. The current of amplitude I and phase beta
// is -I sin(theta_e + beta - k 120 degrees) in phase k. Torque: I * (1 + position / 90), mean over the positions 2 I.
inline void fill_harmonic_machine(KZB_STORE* store) {
    kzb_put_int("control", "motor_type", 10000, store);
    kzb_put_int("control", "accuracy_type", 3, store);
    kzb_put_int("control", "number_of_poles", 4, store);
    kzb_put_double("control", "beta_zero", 0.0, store);
    kzb_put_double("parameter", "RU", 0.5, store);
    const std::vector<double> amplitudes = {0.0, 10.0, 20.0};
    const std::vector<double> phases = {-180.0, -90.0, 0.0, 90.0, 180.0};
    const std::vector<double> positions = {0.0, 90.0, 180.0};
    put_table(store, "harmonic_inductance", "inductance", {amplitudes, phases, positions, {0, 1, 2, 3, 4, 5, 6, 7, 8}},
              [](const auto& p) { return static_cast<int>(p[3]) % 4 == 0 ? harmonic_inductance : 0.0; });
    put_table(store, "current_flux", "flux", {amplitudes, phases, positions, {0, 1, 2}}, [](const auto& p) {
        return -harmonic_q_inductance * p[0] * sine_of_deg(2.0 * p[2] + p[1] - 120.0 * p[3]);
    });
    put_table(store, "current_flux", "mag_flux", {positions, {0, 1, 2}},
              [](const auto& p) { return 0.1 * cosine_of_deg(2.0 * p[0] - 120.0 * p[1]); });
    put_table(store, "harmonic_torque", "torque_ibeta", {phases, positions, amplitudes},
              [](const auto& p) { return p[2] * (1.0 + p[1] / 90.0); });
}

// No-load flux of 0.1 Vs along d at every position; currents in proportion to the flux.
inline void fill_flux_integral_machine(KZB_STORE* store) {
    kzb_put_int("control", "motor_type", 10000, store);
    kzb_put_int("control", "number_of_poles", 4, store);
    kzb_put_double("control", "beta_zero", 0.0, store);
    kzb_put_double("parameter", "RU", 0.5, store);
    const std::vector<double> positions = {0.0, 45.0, 180.0};
    for (const char* key : {"fd_noload", "fq_noload", "f0_noload"}) {
        put_table(store, "flux_table", key, {positions}, [key](const auto&) { return key[1] == 'd' ? 0.1 : 0.0; });
    }
    const std::vector<double> fluxes = {-1.0, 1.0};
    put_table(store, "current_table", "id", {fluxes, fluxes, positions}, [](const auto& p) { return 5.0 * p[0]; });
    put_table(store, "current_table", "iq", {fluxes, fluxes, positions}, [](const auto& p) { return 7.0 * p[1]; });
    put_table(store, "harmonic_torque", "torque_ibeta", {{-180.0, 180.0}, positions, {0.0, 10.0}},
              [](const auto& p) { return p[2]; });
}

}  // namespace kzb::test
