// Skew of a machine: the mean over sample slices of a stack whose two sides, a and b, are displaced along its length.
#pragma once

#include <string_view>
#include <vector>

#include "store/lookup_front.h"

struct KZB_STORE;

namespace kzb {

struct SkewSide {
    int type = 0;        // 0 none, 1 and 2 continuous, 3 in steps
    double angle = 0.0;  // mechanical deg, over the whole stack
    int steps = 0;       // of type 3
};

struct Skew {
    SkewSide a;
    SkewSide b;
};

// How many slices are sampled, at most 24; below 2 there is no skew.
int skew_sample_count(const Skew& skew);

// Displacement (mechanical deg) of side a against side b at each of `count` slices.
std::vector<double> skew_displacements(const Skew& skew, int count);

// Skews category/key along a current phase axis and a position axis (from 1; 0: none). 0, or 1 when not done.
int skew_table(KZB_STORE& store, std::string_view category, std::string_view key, int phase_axis, int position_axis,
               const Skew& skew, const Method& method);

// Skews the double category/key by the mean of the cosines of the displacements. 0, or 1 when not done.
int skew_scalar(KZB_STORE& store, std::string_view category, std::string_view key, const Skew& skew);

}  // namespace kzb
