// Lookup of one point in tables with the same axes: these are searched once.
#include <cstring>

#include "table/lookup.h"
#include "table/straight_lookup.h"

namespace kzb {

namespace {

bool shared_search(Scheme scheme, const KZB_TABLE* const* tables, int count, const double* coordinates, double* results,
                   int& status, double* timing, const LookupSwitches& switches) {
    switch (scheme) {
        case Scheme::linear:
            return straight_linear_siblings(tables, count, coordinates, results, status, timing, switches);
        case Scheme::cubic:
            return straight_block_siblings(tables, count, coordinates, 0, results, status, timing, switches);
        case Scheme::spline4:
        case Scheme::spline6:
            return straight_block_siblings(tables, count, coordinates, scheme == Scheme::spline4 ? 4 : 6, results,
                                           status, timing, switches);
        case Scheme::spline:
        case Scheme::unknown:
            return false;
    }
    return false;
}

}  // namespace

bool table_has_same_axes(const KZB_TABLE& table, const KZB_TABLE& other) {
    if (!is_whole(table) || !is_whole(other) || table.sizes != other.sizes) {
        return false;
    }
    for (std::size_t a = 0; a < table.axes.size(); ++a) {
        const double* const nodes = table.axes[a].data();
        const double* const other_nodes = other.axes[a].data();
        const std::size_t bytes = static_cast<std::size_t>(table.sizes[a]) * sizeof(double);
        if (table.cyclic[a] >= 1 || other.cyclic[a] >= 1 || nodes == nullptr || other_nodes == nullptr ||
            std::memcmp(nodes, other_nodes, bytes) != 0) {
            return false;
        }
    }
    return true;
}

bool table_lookup_siblings(Scheme scheme, const KZB_TABLE* const* tables, int count, const double* coordinates,
                           double* results, int* statuses, double* timing, const LookupSwitches& switches) {
    int status = 0;
    if (switches.measure_time ||
        !shared_search(scheme, tables, count, coordinates, results, status, timing, switches)) {
        return false;
    }
    for (int k = 0; k < count; ++k) {
        // "Linear" hands on values of any size.
        const bool beyond = scheme != Scheme::linear && results[k] > 1e100;
        statuses[k] = beyond ? lookup_beyond_limit : status;
    }
    return true;
}

}  // namespace kzb
