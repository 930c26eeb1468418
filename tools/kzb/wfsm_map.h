// The flux map of a wound-field machine from CSV.
//
// Columns i_f_A, i_peak_A (or i_rms_A), beta_deg, psi_d_Vs, psi_q_Vs and, where known, torque_Nm; one row per point of
// a full grid. beta counts from +q towards -d as a negative angle: i_d = i sin(beta), i_q = i cos(beta), from -180 to
// 0.
#pragma once

#include "kzb/csv_table.h"
#include "kzb/wfsm_machine.h"

namespace kzb::tool {

// Peak values. Failure(exit_file) for a missing column or a grid that does not start at current 0 or cover the phases.
WoundFieldMap read_wound_field_map(const CsvTable& csv);

}  // namespace kzb::tool
