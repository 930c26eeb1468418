// What kzbcalcInitialize hands from the file's control record to a new model.
#pragma once

#include "interface/motor_types.h"
#include "models/calc.h"
#include "models/control_record.h"
#include "store/store.h"

namespace kzb {

void set_start_values(const MotorType& type, Calc& model, const ControlRecord& record, const KZB_STORE& store);

}  // namespace kzb
