// Creation and release of the table record, its grids and flags.
#include "table/table.h"

#include <cstdio>
#include <limits>
#include <new>

namespace kzb {

namespace {

// Sizes and strides; the number of values, 0 when a row count is no good.
std::int64_t shape(KZB_TABLE& table, const int* rows) {
    std::int64_t total = 1;
    for (std::size_t a = 0; a < table.sizes.size(); ++a) {
        if (rows[a] < 1) {
            std::perror("The num of row is zero.\n");
            return 0;
        }
        table.sizes[a] = rows[a];
        total *= rows[a];
        if (total > std::numeric_limits<int>::max()) {
            return 0;
        }
    }
    int stride = 1;
    for (std::size_t a = table.sizes.size(); a-- > 0;) {
        table.strides[a] = stride;
        stride *= table.sizes[a];
    }
    return total;
}

bool has_axis(const KZB_TABLE* table, int axis_no) {
    return table != nullptr && axis_no >= 1 && axis_no <= table->dim;
}

}  // namespace

int table_create(KZB_TABLE& table, int dim, const int* rows) {
    table_free(table);
    if (dim < 0 || (dim > 0 && rows == nullptr)) {
        return 1;
    }
    try {
        const auto axes = static_cast<std::size_t>(dim);
        table.sizes.assign(axes, 0);
        table.cyclic.assign(axes, 0);
        table.strides.assign(axes, 0);
        table.dim = dim;
        const std::int64_t total = shape(table, rows);
        if (total == 0) {
            return 1;
        }
        table.axes.resize(axes);
        if (!table.values.allocate(static_cast<std::size_t>(total))) {
            return 1;
        }
        table.total = static_cast<int>(total);
    } catch (const std::exception&) {
        return 1;
    }
    return 0;
}

void table_free(KZB_TABLE& table) {
    table.axes.clear();
    table.values.reset();
    table.sizes.clear();
    table.cyclic.clear();
    table.strides.clear();
    table.dim = 0;
    table.total = 0;
    table.file_position = 0;
    table.loaded = 0;
}

int table_set_axis_value(KZB_TABLE* table, int axis_no, int index, double value) {
    if (table == nullptr) {
        return 1;
    }
    if (!has_axis(table, axis_no)) {
        std::perror("invalid axis no");
        return 1;
    }
    const auto axis = static_cast<std::size_t>(axis_no - 1);
    if (index < 0 || index >= table->sizes[axis]) {
        std::perror("invalid axis index");
        return 1;
    }
    // A record whose creation failed has no place for grids.
    if (axis >= table->axes.size() ||
        (!table->axes[axis] && !table->axes[axis].allocate(static_cast<std::size_t>(table->sizes[axis])))) {
        std::perror("memory allocation error");
        return 1;
    }
    table->axes[axis][static_cast<std::size_t>(index)] = value;
    return 0;
}

double table_get_axis_value(const KZB_TABLE* table, int axis_no, int index) {
    if (!has_axis(table, axis_no)) {
        return KZB_NO_VALUE;
    }
    const auto axis = static_cast<std::size_t>(axis_no - 1);
    if (index < 0 || index >= table->sizes[axis] || axis >= table->axes.size() || !table->axes[axis]) {
        return KZB_NO_VALUE;
    }
    return table->axes[axis][static_cast<std::size_t>(index)];
}

int table_set_cyclic_flag(KZB_TABLE* table, int axis_no, int flag) {
    if (!has_axis(table, axis_no)) {
        return 1;
    }
    table->cyclic[static_cast<std::size_t>(axis_no - 1)] = flag;
    return 0;
}

int table_get_cyclic_flag(const KZB_TABLE* table, int axis_no) {
    return has_axis(table, axis_no) ? table->cyclic[static_cast<std::size_t>(axis_no - 1)] : KZB_NO_FLAG;
}

}  // namespace kzb
