// "Spline" by its definition: axis after axis, each step turns the table into one of an axis less.
#include "table/kernels.h"
#include "table/plain_block.h"
#include "table/plain_lookup.h"

namespace kzb {

namespace {

// One step: `values` holds `rows` slabs of `combinations` values each; the result replaces the first slab.
bool reduce_first_axis(ZeroedArray& values, const double* nodes, int rows, std::size_t combinations, double q,
                       int cyclic, int& status, double* timing) {
    ZeroedArray line;
    if (!line.allocate(static_cast<std::size_t>(rows))) {
        return false;
    }
    for (std::size_t k = 0; k < combinations; ++k) {
        for (int i = 0; i < rows; ++i) {
            line[static_cast<std::size_t>(i)] = values[static_cast<std::size_t>(i) * combinations + k];
        }
        int line_status = 0;
        values[k] =
            nodes != nullptr ? global_spline(nodes, line.data(), rows, q, line_status, cyclic, timing) : KZB_NO_VALUE;
        if (line_status > 0) {
            status = line_status;
        }
    }
    return true;
}

}  // namespace

int plain_spline(const KZB_TABLE& table, const double* coordinates, double& result, double* timing) {
    result = KZB_NO_VALUE;
    // Kept: the status starts as an error and only a positive status of a line replaces it.
    int status = lookup_no_table;
    if (table.dim < 1 || !table.values || table.axes.empty()) {
        return status;
    }
    PlainPoint point(table);
    if (!point.locate(table, coordinates, false)) {
        return table.dim == 1 ? 0 : status;
    }
    if (table.dim == 1) {
        const double* nodes = table.axes[0].data();
        if (nodes != nullptr) {
            result =
                global_spline(nodes, table.values.data(), table.sizes[0], point.x[0], status, table.cyclic[0], timing);
        }
        return status;
    }
    std::size_t left = static_cast<std::size_t>(table.total);
    ZeroedArray values;
    if (!values.allocate(left)) {
        return lookup_no_memory;
    }
    for (std::size_t k = 0; k < left; ++k) {
        values[k] = table.values[k];
    }
    for (std::size_t a = 0; a < point.x.size(); ++a) {
        left /= static_cast<std::size_t>(table.sizes[a]);
        if (!reduce_first_axis(values, table.axes[a].data(), table.sizes[a], left, point.x[a], table.cyclic[a], status,
                               timing)) {
            return lookup_no_memory;
        }
    }
    result = values[0];
    return status;
}

}  // namespace kzb
