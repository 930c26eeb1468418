// What kzbcalcInitialize hands from the file's control record to a new model.
#pragma once

#include "interface/kzbcalc_handle.h"
#include "models/control_record.h"

namespace kzb {

// Also sizes the integrator state that the handle keeps for the model.
void set_start_values(KZB_CALC& handle, Calc& model, const ControlRecord& record);

}  // namespace kzb
