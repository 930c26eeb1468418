// The debug files of the induction model, one stream per subject. Every failure is silent.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "models/debug_file.h"

namespace kzb {

struct ImDebug {
    // Creates the files where DORN_KZ_DEBUG_OUTPUT is 1.
    void open();
    bool on() const { return debug_output; }

    bool debug_output = false;
    DebugFile current_voltage;
    DebugFile inductance;
    DebugFile resistance;
    DebugFile equivalent_circuit;  // its header and nothing else
    DebugFile derivative;
    DebugFile current_derivative;

    // Fields as "%20.10e" with ", " between them.
    void resistance_row(std::initializer_list<double> fields);
    // Fields as "%10.5e" with commas between them.
    void derivative_row(std::initializer_list<double> fields) { short_row(derivative, fields); }
    void current_derivative_row(std::initializer_list<double> fields) { short_row(current_derivative, fields); }

  private:
    static void short_row(DebugFile& file, std::initializer_list<double> fields);
};

}  // namespace kzb
