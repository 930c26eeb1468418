// The debug files of the wound-field model, one stream per subject; the `iteration` streams get a row per pass.
#pragma once

#include "models/debug_file.h"

namespace kzb {

struct WfsmDebug {
    // Creates the nine files where the environment asks for them.
    void open();
    bool on() const { return debug_output; }

    bool debug_output = false;
    DebugFile current_voltage;
    DebugFile flux;
    DebugFile inductance;
    DebugFile torque;
    DebugFile current_polar;
    DebugFile iteration_current_voltage;
    DebugFile iteration_flux;
    DebugFile iteration_inductance;
    DebugFile iteration_current_polar;
};

}  // namespace kzb
