// Plan of a block reduction over at most five axes, and its evaluation.
//
// Axes that only select an entry, or have one node, move the base; the others are steps. The last step is reduced
// first. Lines are taken in pairs.
#pragma once

#include "table/line_step.h"
#include "table/table.h"

namespace kzb {

struct BlockPlan {
    const double* base = nullptr;
    int steps = 0;
    int status = 0;
    // Bit k: a single-node axis of "Cubic" lies before step k and after step k - 1. It hands on (y + y) * 0.5.
    unsigned doubled = 0;
    LineStep step[5];
};

double evaluate(const BlockPlan& plan);

}  // namespace kzb
