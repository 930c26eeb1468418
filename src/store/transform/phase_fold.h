// Phase symmetry: a file may hold the current phases -90 to 90 degrees alone, half their range; lookups of certain
// tables then fold their coordinates into it.
//
// The rule of a table depends on category "control" and on the table's names; it is made once per resolved table. The
// fold acts on a caller's copy of the coordinates and gives the factor of the result (1.0, or -1.0 for a torque in the
// flipped half).
#pragma once

#include <string_view>

#include "table/table.h"

struct KZB_STORE;

namespace kzb {

// The shift subtracted from a mirrored position; it depends on the component coordinate, the number of the winding
// phase or of the element of the inductance matrix.
enum class FoldShift { none, flux_of_three, inductance_of_three, flux_of_four, inductance_of_four };

struct PhaseFold {
    bool active = false;    // false: coordinates and result stay as they are
    int phase_axis = 0;     // from 1; 0: no phase axis
    int position_axis = 0;  // from 1; 0: the position stays
    double flip_factor = 1.0;
    FoldShift shift = FoldShift::none;
    double pole_pairs = 1.0;  // number_of_poles * 0.5
    double beta_zero = 0.0;   // beta_zero / pole_pairs, degrees
    double period = 0.0;      // of the position axis
};

PhaseFold phase_fold_of(const KZB_STORE& store, std::string_view category, std::string_view key,
                        const KZB_TABLE* table);

// Folds `x` [table.dim] in place; returns the factor of the result.
double fold_coordinates(const PhaseFold& fold, const KZB_TABLE& table, double* x);

}  // namespace kzb
