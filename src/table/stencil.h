// Stencils: which nodes around the bracket a local scheme takes along one axis, and where these nodes lie.
#pragma once

#include "table/lookup.h"

namespace kzb {

struct Stencil {
    int count = 0;  // entries in use
    int index[6];   // value indices; the cubic stencil of a cyclic axis of one node has invalid ones
    double node[6];
};

// Four nodes of "Cubic": one below, the bracket, one above; beyond the grid a phantom node.
void cubic_stencil(const double* nodes, int rows, bool cyclic, Bracket bracket, Stencil& stencil);

// Up to `width` (4 or 6) nodes of "Spline4" and "Spline6".
void spline_stencil(const double* nodes, int rows, bool cyclic, Bracket bracket, int width, Stencil& stencil);

}  // namespace kzb
