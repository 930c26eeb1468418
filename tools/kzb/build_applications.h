// The tables of each application, formed from a machine map.
//
// Axes (in this order), with `phase` and `position` as in build_grids.h and components counted from 0:
//   Harmonic             current_flux/flux (amplitude, phase, position, phase winding), current_flux/mag_flux
//   (position,
//                        winding), harmonic_inductance/inductance (amplitude, phase, position, element),
//                        harmonic_torque/torque_ibeta (phase, position, amplitude)
//   SimpleHarmonic       mag_flux/flux (position, winding), inductance/inductance (amplitude, position, element),
//                        torque/torque_ibeta (phase, position, amplitude)
//   LdLq                 d_flux/d_flux, dq_inductance/d_inductance and q_inductance, dq_torque/torque_ibeta
//                        (phase, amplitude)
//   FluxIntegralDQTheta  current_table/id, iq (flux d, flux q, position), flux_table/fd_noload, fq_noload, f0_noload
//                        (position), flux_table/f0_ibeta (amplitude, phase, position), harmonic_torque/torque_ibeta
// Element 3 * column + row of an inductance is that of the phase matrix at (row, column). The dq quantities of
// FluxIntegralDQTheta and d_flux are power-invariant: sqrt(3/2) times the peak values, zero sequence sqrt(3) times the
// mean of the three windings.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "kzb/build_grids.h"
#include "kzb/build_machine_map.h"

namespace kzb::tool {

// An axis of the written table that counts components: 0, 1 .. count - 1.
TableAxis component_axis(std::size_t count);
// Creates category/key with these axes; values with the last axis fastest.
void put_table(KZB_STORE* store, const char* category, const char* key, const std::vector<TableAxis>& axes,
               const std::vector<double>& values);

// Flux linkage of the three windings at the electrical angle theta.
std::array<double, 3> winding_flux(const MachinePoint& point, double theta_deg);
// Incremental inductance matrix of the windings, element 3 * column + row; `zero_inductance` is that of the
// zero-sequence current.
std::array<double, 9> winding_inductance(const MachinePoint& point, double theta_deg, double zero_inductance);

struct ApplicationOptions {
    double zero_inductance = 0.0;  // H, of the current common to the three windings
};

void put_harmonic(KZB_STORE* store, const MachineMap& map, const TableGrids& grids, const ApplicationOptions& options);
void put_simple_harmonic(KZB_STORE* store, const MachineMap& map, const TableGrids& grids,
                         const ApplicationOptions& options);
void put_ldlq(KZB_STORE* store, const MachineMap& map, const TableGrids& grids);

struct FluxRange {
    double d_low, d_high, q_low, q_high;  // power-invariant, Vs
    std::size_t nodes = 0;                // of the flux plane, all positions
    std::size_t beyond_map = 0;           // of these, currents beyond the flux map
};
// `source_name` stands for the map in messages. Failure(exit_file) when the map cannot be inverted.
FluxRange put_flux_integral(KZB_STORE* store, const MachineMap& map, const TableGrids& grids,
                            const std::string& source_name);

// category/torque_ibeta (phase, position, amplitude).
void put_torque(KZB_STORE* store, const char* category, const MachineMap& map, const TableGrids& grids);

}  // namespace kzb::tool
