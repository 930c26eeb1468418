// The motion of the machine: locked, at a given speed, at given positions, or a mass that the torque moves.
//
//   inertia * d omega / dt = torque - load - viscous * omega - coulomb * sign(omega) - spring * (x - x_free)
//
// One step from t_k to t_k+1 with the torque of t_k, viscous friction and the change of the spring force implicit,
// Coulomb friction stopping at standstill:
//
//   D = 1 + h * viscous / inertia + h^2 * spring / (4 inertia)
//   omega* = (omega_k + h / inertia * (torque_k - load_k - spring * (x_k - x_free + h * omega_k / 4))) / D
//   omega_k+1 = omega* moved towards 0 by at most h * coulomb / inertia / D
//   x_k+1 = x_k + h * (omega_k + omega_k+1) / 2
//
// so that the spring acts with its mean over the step. At a stop the speed towards it turns back, times the
// restitution.
//
// For a linear machine read mass for inertia, force for torque, metres for radians. Springs and stops are of linear
// machines.
#pragma once

#include <optional>

#include "kzb/waveform.h"

namespace kzb::tool {

struct FreeMotion {
    double inertia = 1.0;         // kg*m^2, or kg
    double viscous = 0.0;         // N*m*s/rad, or N*s/m
    double coulomb = 0.0;         // N*m, or N
    Waveform load;                // N*m, or N; acts against positive motion
    std::optional<double> lower;  // stops of a linear machine, m
    std::optional<double> upper;
    double spring = 0.0;           // N/m, of a linear machine
    double spring_position = 0.0;  // m, where the spring has no force
    double restitution = 0.0;      // speed after a stop per speed before it
};

enum class Motion { locked, speed, positions, free };

struct MotionData {
    Motion kind = Motion::locked;
    double start = 0.0;        // displacement of the first sample: degrees, or metres
    double start_speed = 0.0;  // free motion: rpm, or m/s
    Waveform speed;            // rpm, or m/s
    Waveform position;         // degrees, or metres
    FreeMotion free;
};

class Mechanics {
  public:
    // The first sample is at `time`.
    Mechanics(const MotionData& data, bool linear, double time);

    double displacement() const { return displacement_; }  // degrees, or metres
    double speed() const { return speed_; }                // rpm, or m/s
    // Moves on to the next sample; `torque` (or force) is that of the present one.
    void advance(double next_time, double torque);

  private:
    void advance_free(double h, double torque);
    MotionData data_;
    bool linear_;
    double start_time_;
    double time_;
    double displacement_;
    double speed_;
};

}  // namespace kzb::tool
