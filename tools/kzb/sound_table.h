// Whether a table as a file gave it can be worked with: arrays as long as its sizes say, nodes that rise, numbers.
#pragma once

#include <cstddef>

#include "store/store.h"

namespace kzb::tool {

// All arrays stand and are as long as the sizes say; nodes may be missing.
bool has_values(const KZB_TABLE& table);
// Axis `axis`, from 0, has all its nodes.
bool has_nodes(const KZB_TABLE& table, std::size_t axis);
// Not a number, infinite, or so large that lookups take it for a fault.
bool is_unusable(double value);
// Of the usable values of a table that has them.
double largest_magnitude(const KZB_TABLE& table);
// Everything at once: values and nodes stand, are usable numbers, and the nodes rise strictly.
bool is_sound(const KZB_TABLE& table);
// The table when it is there and sound, else null: what is wrong with it is another check's finding.
const KZB_TABLE* sound_table(const KZB_STORE& store, const char* category, const char* key);

inline std::size_t rows_of(const KZB_TABLE& table, std::size_t axis) {
    return static_cast<std::size_t>(table.sizes[axis]);
}
inline std::size_t stride_of(const KZB_TABLE& table, std::size_t axis) {
    return static_cast<std::size_t>(table.strides[axis]);
}

}  // namespace kzb::tool
