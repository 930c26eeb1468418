// Point and brackets of a plain lookup.
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

}  // namespace kzb
