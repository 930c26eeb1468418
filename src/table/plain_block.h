// Working set of a plain lookup: wrapped point, brackets, and the reduction of a block of values line by line.
//
// The block itself is never held: values are read in its order, the last axis fastest, and a line is reduced as soon as
// it is full. Up to eight axes nothing is taken from the heap.
#pragma once

#include <boost/container/small_vector.hpp>
#include <cstddef>

#include "table/lookup.h"
#include "table/stencil.h"

namespace kzb {

// Values that a lookup may read; more would be an absurd table.
inline constexpr std::size_t most_block_values = std::size_t{1} << 27;
// Axes that a lookup serves without the heap.
inline constexpr std::size_t common_axes = 8;

template <class T>
using PerAxis = boost::container::small_vector<T, common_axes>;

struct PlainPoint {
    explicit PlainPoint(const KZB_TABLE& table);
    // False when a coordinate has no place on its cyclic axis.
    bool locate(const KZB_TABLE& table, const double* coordinates, bool with_brackets);
    // A position with this many entries per axis, or more, fits no block.
    static bool block_fits(int axes, int entries_per_axis);

    PerAxis<double> x;
    PerAxis<Bracket> brackets;
    int status = 0;
};

inline const double* grid_of(const KZB_TABLE& table, int axis) {
    const auto a = static_cast<std::size_t>(axis);
    return a < table.axes.size() ? table.axes[a].data() : nullptr;
}

bool has_all_grids(const KZB_TABLE& table);

// Reduces the block of the stencils' entries, the last axis first; kernel(axis, line) gives the value of one line.
template <class Kernel>
double reduce_block(const KZB_TABLE& table, const PerAxis<Stencil>& stencils, Kernel kernel) {
    struct Line {
        int filled = 0;
        double value[6];
    };
    PerAxis<Line> lines(stencils.size());
    PerAxis<int> indices;
    for (const Stencil& stencil : stencils) {
        indices.push_back(stencil.index[0]);
    }
    for (;;) {
        double value = table_value_at(table, indices.data());
        std::size_t a = stencils.size();
        // Up through the lines that this value completes.
        for (; a > 0; --a) {
            const Stencil& stencil = stencils[a - 1];
            Line& line = lines[a - 1];
            line.value[line.filled++] = value;
            if (line.filled < stencil.count) {
                indices[a - 1] = stencil.index[line.filled];
                break;
            }
            value = kernel(a - 1, line.value);
            line.filled = 0;
            indices[a - 1] = stencil.index[0];
        }
        if (a == 0) {
            return value;
        }
    }
}

}  // namespace kzb
