// A second, slow derivation of whole lookups: recursion over the axes, vectors, one value at a time. It shares nothing
// with the library but the table record, and is compared with it bit for bit.
#pragma once

#include <string>
#include <vector>

#include "table/table.h"

namespace kzb_test {

struct Outcome {
    int status = -1;
    double value = kzb::KZB_NO_VALUE;
    double timing[20] = {};
    int prints = 0;  // lines on standard error
};

Outcome reference_lookup(const std::string& method, const KZB_TABLE& table, std::vector<double> x, bool generic);

}  // namespace kzb_test
