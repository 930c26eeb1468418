// One sample of the flux integral as its functions pass it on: terminal voltages, fluxes, angle, time and speed.
#pragma once

#include <cmath>
#include <cstddef>

#include "models/park.h"

namespace kzb {

// Whether a multiplier moves the tables' values at all. One that is no number neither deviates nor stays.
inline bool deviates(double multiplier) {
    return std::fabs(multiplier - 1.0) >= 1e-8;
}
inline bool stays(double multiplier) {
    return std::fabs(multiplier - 1.0) < 1e-8;
}

// Which terminals are driven; a single open phase goes on as an induced voltage.
enum class Drive { all_on, one_off, off };

struct FluxInputs {
    Phases voltages;
    const double* state;  // d, q, zero flux
    double theta_e;
    double angle;
    PhaseAngles at;
    double time;
    double dt;
    double omega = 0.0;  // electrical rad/s
    Drive drive = Drive::off;
    std::size_t open_phase = 0;  // with one_off

    FluxInputs(const Phases& v, const double* fluxes, double theta, double table_position, double now, double step)
        : voltages(v), state(fluxes), theta_e(theta), angle(table_position), at(theta), time(now), dt(step) {}

    bool dt_valid() const { return std::fabs(dt) > 1e-12; }

    void classify(const int* signals) {
        int off = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            if (signals[k] == 0) {
                ++off;
                open_phase = k;
            }
        }
        drive = off == 0 ? Drive::all_on : off == 1 ? Drive::one_off : Drive::off;
    }
};

}  // namespace kzb
