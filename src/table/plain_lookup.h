// The schemes read off their definitions: any number of axes, any state of the record, one kernel call per line.
//
// They serve tables of more than five axes and whatever the straight-line paths refuse: axes without a grid, records
// whose creation failed, coordinates without a place, nodes that fall together. Each prints what it has to print.
#pragma once

#include "table/lookup.h"

namespace kzb {

int plain_linear(const KZB_TABLE& table, const double* coordinates, double& result, double* timing,
                 const LookupSwitches& switches);
int plain_cubic(const KZB_TABLE& table, const double* coordinates, double& result, double* timing,
                const LookupSwitches& switches);
int plain_local_spline(const KZB_TABLE& table, const double* coordinates, int width, double& result, double* timing,
                       const LookupSwitches& switches);
int plain_spline(const KZB_TABLE& table, const double* coordinates, double& result, double* timing);

}  // namespace kzb
