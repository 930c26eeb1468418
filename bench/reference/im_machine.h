// Induction machines for the benchmarks and their tests, as constants or as tables filled by formula.
//
//   M(I) = M0 / (1 + I / I_s),  L = M + leakage,  R2(f) = R2 (1 + k |f|)
//
// The numbers are those of a motor of some 4 kW with four poles; nothing is fitted, the tables only need a real shape.
#pragma once

#include "bench/reference/store.h"

namespace kzb_reference {

struct SampleInduction {
    bool tables = false;  // over slip frequency and current; else constants of the equivalent circuit
    int connection = 0;   // 0 star, 1 delta
    int poles = 4;
    double r1 = 1.2;
    double g0 = 0.0;
    bool ironloss_table = false;     // over slip frequency and current; with tables only
    bool loss_table = false;         // over current, slip, speed, DC voltage, carrier
    bool copper_loss_table = false;  // over the same
    bool temperature_data = false;   // of both windings, in "control"
};

// The categories of such a file.
void make_sample_induction(const SampleInduction& machine, Store& store);

}  // namespace kzb_reference
