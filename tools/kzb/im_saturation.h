// The magnetizing curve of an induction machine from CSV: magnetizing current and main flux linkage, or current and
// inductance.
//
// Columns, each with _rms or _peak before the unit (peak where it says nothing): current i_m, i_magnetizing; flux
// linkage psi_m, psi_s; inductance L_m, L_s (flux linkage / current). Rows rise in both; a row of 0, 0 may be left out.
#pragma once

#include "kzb/csv_table.h"
#include "kzb/im_circuit.h"

namespace kzb::tool {

// Peak values. Failure(exit_file) for missing columns and for points that do not rise.
MagnetizingCurve read_magnetizing_curve(const CsvTable& csv);

}  // namespace kzb::tool
