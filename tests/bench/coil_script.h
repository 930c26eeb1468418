// Random sequences of calls on a machine with separate windings.
#pragma once

#include <random>

#include "coil_pair.h"

namespace kzb_bench_test {

// Samples in the usual order: drive and signals change, the time stands still now and then, a sample is executed once
// or several times, results are read before the sample is accepted.
void run_samples(CoilPair& pair, std::mt19937_64& random, int samples, bool by_current);

// Calls in any order, before and after binding, with numbers that no machine sees.
void run_odd_calls(CoilPair& pair, std::mt19937_64& random, int calls);

// Corrections, temperatures and initial values as a caller sets them before a run.
void configure_at_random(CoilPair& pair, std::mt19937_64& random);

}  // namespace kzb_bench_test
