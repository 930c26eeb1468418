// The tables that the wound-field model looks up.
#pragma once

#include "store/lookup_front.h"

namespace kzb {

struct WfsmTables {
    TableRef flux{"current_flux", "flux"};
    TableRef inductance{"harmonic_inductance", "inductance"};
    TableRef torque{"harmonic_torque", "torque_ibeta"};
};

}  // namespace kzb
