// Point, brackets and block of a plain lookup.
#include "table/plain_block.h"

namespace kzb {

PlainPoint::PlainPoint(const KZB_TABLE& table)
    : x(static_cast<std::size_t>(table.dim)), brackets(static_cast<std::size_t>(table.dim)) {}

bool PlainPoint::locate(const KZB_TABLE& table, const double* coordinates, bool with_brackets) {
    if (!table_wrap_cyclic_axes(table, coordinates, x.data())) {
        return false;
    }
    if (with_brackets) {
        status = table_find_bracket(table, x.data(), brackets.data());
    }
    return true;
}

bool PlainPoint::block_fits(int axes, int entries_per_axis) {
    std::size_t values = 1;
    for (int a = 0; a < axes; ++a) {
        values *= static_cast<std::size_t>(entries_per_axis);
        if (values > most_block_values) {
            return false;
        }
    }
    return true;
}

bool has_all_grids(const KZB_TABLE& table) {
    for (int a = 0; a < table.dim; ++a) {
        if (grid_of(table, a) == nullptr) {
            return false;
        }
    }
    return table.dim > 0;
}

bool next_combination(const std::vector<int>& counts, std::vector<int>& entries) {
    for (std::size_t a = counts.size(); a-- > 0;) {
        if (++entries[a] < counts[a]) {
            return true;
        }
        entries[a] = 0;
    }
    return false;
}

bool gather_block(const KZB_TABLE& table, const std::vector<Stencil>& stencils, ZeroedArray& block) {
    std::size_t values = 1;
    std::vector<int> counts;
    for (const Stencil& stencil : stencils) {
        values *= static_cast<std::size_t>(stencil.count);
        counts.push_back(stencil.count);
    }
    if (!block.allocate(values)) {
        return false;
    }
    std::vector<int> entries(stencils.size());
    std::vector<int> indices(stencils.size());
    std::size_t k = 0;
    do {
        for (std::size_t a = 0; a < stencils.size(); ++a) {
            indices[a] = stencils[a].index[entries[a]];
        }
        block[k++] = table_value_at(table, indices.data());
    } while (next_combination(counts, entries));
    return true;
}

}  // namespace kzb
