// A machine at constant speed between balanced sinusoidal voltages: by the model, and by an independent integration of
//   d psi / dt = v - R i      in the stator's frame, psi the state, i from psi through the machine's tables
// with the classical Runge-Kutta method of fourth order.
#pragma once

#include <string>
#include <vector>

#include "models_physics/machine_tables.h"

namespace kzb::physics {

struct Drive {
    double speed_rpm = 0.0;
    double pole_pairs = 1.0;
    double resistance = 0.0;
    Dq voltage;        // in the rotor's frame, peak: constant there
    Dq start_current;  // in the rotor's frame
    double end_time = 0.0;
    double theta(double time) const { return 6.0 * speed_rpm * pole_pairs * time; }  // electrical degrees
};

struct Sample {
    double time;
    double current[3];
    double torque;
};

struct Recording {
    std::vector<Sample> samples;
    bool left_table = false;
};

// Through the public calls, one sample per dt. The first current that the voltage makes is that of `first_solved`.
Recording run_model(const std::string& path, const Drive& drive, double dt);
// From `start_time` on, one sample per dt, each in `substeps` steps. The flux starts as that of `start_current`, or
// that of no current when the tables go from flux to current.
Recording run_reference(const MachineTables& machine, const Drive& drive, double start_time, double dt, int substeps);

}  // namespace kzb::physics
