// Resistances and inductances from a text file: lines of a name and a decimal value, blank-separated.
//
//   R1 R2 Ls Msr Mrs Lr    set Rs_DC, Rr_base, m_Ls, m_Msr, m_Mrs, m_Lr
//
// Other names, and values that are no number, leave everything. So does a file that can't be opened. No more than the
// first `parameter_file_lines` lines count.
#pragma once

#include "models/calc_eq_im_data.h"

namespace kzb {

inline constexpr int parameter_file_lines = 1000;

void read_parameter_file(const char* path, ImResistances& resistances, ImInductances& inductances);

}  // namespace kzb
