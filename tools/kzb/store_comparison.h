// What differs between a store and its copy that went through a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "store/store.h"

namespace kzb::tool {

struct StoreComparison {
    std::uint64_t values = 0;          // doubles compared: parameters, table values, axis nodes
    std::uint64_t values_changed = 0;  // not the same bit for bit
    double largest_relative_change = 0.0;
    std::vector<std::string> strings_changed;  // "category/key"
    std::vector<std::string> lost;             // whatever else is missing or of another shape, in words
};

StoreComparison compare_stores(const KZB_STORE& original, const KZB_STORE& copy);

}  // namespace kzb::tool
