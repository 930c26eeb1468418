// What the wound-field synchronous model holds, by kind of data. Names with `_previous` hold the value at the accepted
// previous step. Groups of four are ordered u, v, w, f (field coil).
#pragma once

#include <array>
#include <cstddef>

#include "models/park.h"

namespace kzb {

using WfsmCoils = std::array<double, 4>;    // u, v, w, f
using WfsmMatrix = std::array<double, 16>;  // row by row

// What the first two axes of the tables are.
enum WfsmCurrentType { wfsm_axes_none = -1, wfsm_axes_dq = 0, wfsm_axes_polar = 1 };

enum WfsmConnection { wfsm_connection_unset = -1, wfsm_star = 0, wfsm_delta = 1 };

struct WfsmMachine {
    int current_type = wfsm_axes_none;
    int connection_type = wfsm_connection_unset;
    int axis_count = 0;         // 4 when the file offers the application
    double R = 0.0;             // Ohm, armature phase at base temperature
    double Rf = 0.0;            // Ohm, field coil at base temperature
    double beta_zero = 0.0;     // degrees
    double angle_offset = 0.0;  // mechanical degrees
    double number_of_poles = 0.0;
    double field_axis_floor = 0.0;  // A; field currents below it are looked up mirrored
};

struct WfsmCorrections {
    double coef_flux = 1.0;
    double coef_flux_fieldcoil = 1.0;
    double turns_coil2 = 1.0;  // turns until the model is bound, then ratios to the file's turns
    double turns_coil2_fieldcoil = 1.0;
    double coef_torque = 1.0;
    double coef_material = 1.0;
    double flux_scale = 1.0;  // computed in each pass of the iteration
    double field_flux_scale = 1.0;
    double torque_scale = 1.0;
};

struct WfsmTemperatures {
    double coil_temperature = 293.15;  // K
    double field_coil_temperature = 293.15;
    double base_coil_temperature = 293.15;
    double base_field_coil_temperature = 293.15;
    double coil_coefficient = 1.0;  // ppm per K
    double field_coil_coefficient = 1.0;
};

struct WfsmStep {
    static constexpr std::size_t initial_time = 4;  // its place in `initial_set`

    bool mirrored = false;  // the present lookup sees the negative field mirrored
    double time = 0.0;      // s
    double time_previous = 0.0;
    double position = 0.0;  // mechanical rad
    double position_previous = 0.0;
    double Iamp = 0.0;  // A, peak phase current
    double Iamp_previous = 0.0;
    double beta = 0.0;  // degrees
    double beta_previous = 0.0;
    WfsmCoils current{};  // of the iteration, and coil currents after the step
    WfsmCoils current_previous{};
    double Id = 0.0;
    double Iq = 0.0;
    double Id_previous = 0.0;
    double Iq_previous = 0.0;
    WfsmCoils flux{};  // Vs
    WfsmCoils flux_previous{};
    WfsmMatrix inductance{};            // H
    std::array<bool, 5> initial_set{};  // currents u, v, w, f and the time
    double torque = 0.0;                // N*m
    WfsmCoils terminal_current{};       // A
    double neutral_voltage = 0.0;       // V
    WfsmCoils induced{};                // V, flux change over dt of the last pass
    double d_inductance = 0.0;          // H
    double q_inductance = 0.0;
    double field_inductance = 0.0;
    int step_count = 1;
};

}  // namespace kzb
