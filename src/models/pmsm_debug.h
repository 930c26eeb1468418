// The debug files of the permanent-magnet model, one stream per subject.
#pragma once

#include "models/debug_file.h"

namespace kzb {

struct PmsmDebug {
    // Deletes the files that earlier releases wrote, and creates the present ones where the environment asks for them.
    void open();
    bool on() const { return debug_level != 0; }
    // "%lf" for the time, "%20.20e" for the fields.
    void flux_integral_row(double time, const double* fields, int count);

    int debug_level = 0;
    DebugFile flux;
    DebugFile inductance;
    DebugFile current_polar;
    DebugFile current_voltage;
    DebugFile loss_table;
    DebugFile flux_integral;
    bool flux_integral_header_written = false;
};

}  // namespace kzb
