// Transforms of a loaded model's tables: change of frame, LdLq from Harmonic, skew, expansion of phase symmetry.
//
// Angles on table axes and of the skew are in degrees. Faults of single table operations print and the transform goes
// on; nothing is read or written outside a table.
#pragma once

struct KZB_STORE;

namespace kzb {

// Flux of the magnet, current_flux/mag_flux [position, phase] <-> flux_table/fd_noload, fq_noload, f0_noload
// [position]; current, current_flux/iuvw [.., .., position, phase] <-> current_table/id, iq [.., .., position]. 0
// always; nothing happens unless PMSM FluxIntegralDQTheta is offered.
int make_dq0_from_UVW(KZB_STORE& store);
int make_dq0_from_UVW_current(KZB_STORE& store);
int make_UVW_from_dq0(KZB_STORE& store);
int make_UVW_from_dq0_current(KZB_STORE& store);

// Builds the tables of an LdLq model from those of a Harmonic one: 1, or 0 when the file does not allow it. Selects the
// application PMSM Harmonic.
int make_LdLq(KZB_STORE& store);

// Replaces the tables by their mean over the slices of a skewed stack: 0, or 1 when nothing was done. Types: 0 none,
// 1 and 2 continuous, 3 in `steps` steps. Angles in mechanical degrees. An unknown method has
// no value at any sample.
int apply_skew(int type_a, int type_b, double angle_a, double angle_b, int steps_a, int steps_b, const char* method,
               KZB_STORE& store);

// Replaces tables that hold the current phases -90 to 90 degrees, half their range, by full ones and clears
// control/use_phase_symmetry. 0, or 1 for a failure, which leaves the flag and the tables as they are (error 90030
// clears the flag).
int expand_table_considering_phase_symmetry(KZB_STORE& store);

}  // namespace kzb
