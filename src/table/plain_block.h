// Working set of a plain lookup: wrapped point, brackets, and a block of values that is reduced axis by axis.
#pragma once

#include <cstddef>
#include <vector>

#include "table/lookup.h"
#include "table/stencil.h"

namespace kzb {

// Values of one lookup before reduction; more would be an absurd table.
inline constexpr std::size_t most_block_values = std::size_t{1} << 27;

struct PlainPoint {
    explicit PlainPoint(const KZB_TABLE& table);
    // False when a coordinate has no place on its cyclic axis.
    bool locate(const KZB_TABLE& table, const double* coordinates, bool with_brackets);
    // A position with this many entries per axis, or more, fits no block.
    static bool block_fits(int axes, int entries_per_axis);

    std::vector<double> x;
    std::vector<Bracket> brackets;
    int status = 0;
};

inline const double* grid_of(const KZB_TABLE& table, int axis) {
    const auto a = static_cast<std::size_t>(axis);
    return a < table.axes.size() ? table.axes[a].data() : nullptr;
}

bool has_all_grids(const KZB_TABLE& table);

// Next combination of entry numbers, last axis fastest; false after the last one.
bool next_combination(const std::vector<int>& counts, std::vector<int>& entries);

// The values at all combinations of the stencils' entries.
bool gather_block(const KZB_TABLE& table, const std::vector<Stencil>& stencils, ZeroedArray& block);

}  // namespace kzb
