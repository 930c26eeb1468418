// "Spline" by its definition: axis after axis, each turns the table into one of an axis less.
//
// The smaller tables are never held. Values are read with axis 0 fastest, and each axis has one line: what completes a
// line of one axis is an entry in the line of the next.
#include "table/kernels.h"
#include "table/plain_block.h"
#include "table/plain_lookup.h"
#include "table/scratch.h"

namespace kzb {

namespace {

struct AxisLine {
    double* values = nullptr;
    int filled = 0;
    int status = 0;  // of its lines; all of them have the same
};

void close_line(const KZB_TABLE& table, std::size_t axis, double q, AxisLine& line, double& value, double* timing) {
    const double* nodes = table.axes[axis].data();
    int status = 0;
    value = nodes != nullptr
                ? global_spline(nodes, line.values, table.sizes[axis], q, status, table.cyclic[axis], timing)
                : KZB_NO_VALUE;
    if (status > 0) {
        line.status = status;
    }
    line.filled = 0;
}

double reduce_table(const KZB_TABLE& table, const PlainPoint& point, PerAxis<AxisLine>& lines, double* timing) {
    std::size_t position = 0;
    for (;;) {
        double value = table.values[position];
        std::size_t a = 0;
        // Up through the lines that this value completes.
        for (; a < lines.size(); ++a) {
            const auto stride = static_cast<std::size_t>(table.strides[a]);
            AxisLine& line = lines[a];
            line.values[line.filled++] = value;
            if (line.filled < table.sizes[a]) {
                position += stride;
                break;
            }
            position -= stride * static_cast<std::size_t>(table.sizes[a] - 1);
            close_line(table, a, point.x[a], line, value, timing);
        }
        if (a == lines.size()) {
            return value;
        }
    }
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
    std::size_t rows = 0;
    for (std::size_t a = 0; a < point.x.size(); ++a) {
        rows += static_cast<std::size_t>(table.sizes[a]);
    }
    Scratch<8192> scratch;
    double* memory = scratch.take(rows);
    if (memory == nullptr) {
        return lookup_no_memory;
    }
    PerAxis<AxisLine> lines(point.x.size());
    for (std::size_t a = 0; a < lines.size(); ++a) {
        lines[a].values = memory;
        memory += table.sizes[a];
    }
    result = reduce_table(table, point, lines, timing);
    // The last axis with a status decides.
    for (const AxisLine& line : lines) {
        status = line.status > 0 ? line.status : status;
    }
    return status;
}

}  // namespace kzb
