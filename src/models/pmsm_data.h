// What the permanent-magnet synchronous model holds, by kind of data. Names with `_previous` hold the value at the
// accepted previous step, names with `_older` that of the step before. Three-phase groups are ordered u, v, w.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "models/loss_filter.h"
#include "models/park.h"

namespace kzb {

// Which tables of the file the model uses.
enum PmsmApplication { simple_harmonic = 0, harmonic = 1, ld_lq = 2, flux_integral = 3 };

enum PmsmConnection { connection_unset = -1, connection_star = 0, connection_delta = 1 };

struct PmsmMachine {
    int number_of_poles = 0;
    double beta_zero = 0.0;          // degrees
    double angle_offset = 0.0;       // mechanical degrees, or m
    double electrical_length = 0.0;  // m, linear machines
    int is_linear = 0;
    int connection = connection_unset;
    int application = simple_harmonic;
    int inductance_dim = 0;
    int torque_dim = 0;
    std::string torque_category;
    std::string torque_table;
    double minimum_current = 0.0;  // A, first node of the amplitude axis of kind 0
    double d_flux = 0.0;           // Vs, magnet flux of kind 2
    Phases leakage_inductance{};   // H
    double resistance_base = 0.0;  // Ohm
};

struct PmsmCorrections {
    double correction_flux = 1.0;
    double correction_magnet = 1.0;
    double correction_steel = 1.0;
    double correction_inductance = 1.0;
    double correction_torque = 1.0;
    double correction_ironloss = 1.0;
    double turns1 = 0.0;  // turns until the model is bound, then ratios to the file's turns
    double turns2 = 0.0;
    double flux_multiplier = 1.0;
    double flux_multiplier_previous = 1.0;
    double inductance_multiplier = 1.0;
    double inductance_multiplier_previous = 1.0;
    double torque_multiplier = 1.0;
};

struct PmsmTemperatures {
    double base_coil_temperature = 293.15;    // K
    double base_magnet_temperature = 293.15;  // K
    double coil_coefficient = 1.0;            // ppm per K
    double magnet_coefficient = 1.0;          // percent per K
    double coil_temperature = 293.15;         // K
    double magnet_temperature = 293.15;       // K
    double magnet_temperature_previous = 293.15;
};

struct PmsmStep {
    Phases resistance{};  // Ohm, effective in this step
    Phases current{};
    Phases current_previous{};
    Phases current_older{};
    Phases current_output{};
    double current_amplitude = 0.0;
    double current_amplitude_previous = 0.0;
    double current_phase = 0.0;  // degrees
    double current_phase_previous = 0.0;
    double torque = 0.0;    // N*m, or N of a linear machine
    double force = 0.0;     // N, attraction of a linear machine
    double position = 0.0;  // mechanical rad, or m
    double position_previous = 0.0;
    double coenergy = 0.0;
    double coenergy_previous = 0.0;
    Phases magnet_flux{};
    Phases magnet_flux_previous{};
    Phases total_flux{};
    Phases total_flux_previous{};
    Phases flux_temperature_delta{};
    Phases coil_flux{};
    Phases coil_flux_previous{};
    Phases induced_voltage{};
    Phases induced_voltage_previous{};
    double neutral_voltage = 0.0;
    Matrix3 inductance{};
    Matrix3 inductance_previous{};
    double d_inductance = 0.0;
    double q_inductance = 0.0;
    int step_count = 1;
    double time = 0.0;  // s
    double time_previous = 0.0;
    double time_older = 0.0;
    std::array<bool, 3> initial_current_set{};
    bool initial_time_set = false;
};

struct PmsmLosses {
    bool ironloss_on = false;
    bool user_copperloss_on = false;
    std::vector<double> eddy_loss{0.0};  // W, one element
    std::vector<double> hysteresis_loss{0.0};
    double ac_resistance = 0.0;   // Ohm
    double dc_copper_loss = 0.0;  // W
    double ac_copper_loss = 0.0;
    double dc_voltage = 0.0;         // V
    double carrier_frequency = 0.0;  // Hz
};

// State of kind 3, where flux is integrated in the d, q, zero frame.
struct FluxIntegralState {
    Dq0 current_dq0{};
    Dq0 current_dq0_previous{};
    Dq0 flux_derivative_dq0{};
    Dq0 air_gap_flux_dq0{};
    Dq0 table_current_dq0{};
    LossFilter loss_current_filter_d;
    LossFilter loss_current_filter_q;
    double filtered_d = 0.0;
    double filtered_q = 0.0;
    Dq0 noload_flux{};
    Dq0 noload_flux_previous{};
    double zero_voltage = 0.0;
    double d_inductance_kept = 0.0;
    double q_inductance_kept = 0.0;
};

// The six numbers of a skew, kept until the model is bound.
struct SkewParameters {
    int type_a = 0;
    int type_b = 0;
    double angle_a = 0.0;  // mechanical degrees
    double angle_b = 0.0;
    int steps_a = 0;
    int steps_b = 0;
};

}  // namespace kzb
