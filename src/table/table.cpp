// Creation and release of the table record, its grids and flags.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <new>

#include "table/table_shape.h"

namespace kzb {

namespace {

constexpr int highest = std::numeric_limits<int>::max();

// The leading axes with good row counts whose product an int holds, and that product.
struct GoodAxes {
    int count = 0;
    std::int64_t values = 1;
};

GoodAxes good_axes(int dim, const int* rows) {
    GoodAxes good;
    for (; good.count < dim && rows[good.count] >= 1; ++good.count) {
        const std::int64_t values = good.values * rows[good.count];
        if (values > highest) {
            break;
        }
        good.values = values;
    }
    return good;
}

// Sizes and flags of `axes` axes, the sizes of those from `rows` as far as they are 1 or greater.
void set_axes(KZB_TABLE& table, int axes, int walked, const int* rows) {
    const auto count = static_cast<std::size_t>(axes);
    table.sizes.assign(count, 0);
    table.cyclic.assign(count, 0);
    table.strides.assign(count, 0);
    for (std::size_t a = 0; a < static_cast<std::size_t>(walked); ++a) {
        table.sizes[a] = std::max(rows[a], 0);
    }
    table.dim = axes;
}

bool has_axis(const KZB_TABLE* table, int axis_no) {
    return table != nullptr && axis_no >= 1 && axis_no <= table->dim;
}

}  // namespace

bool table_shape(KZB_TABLE& table, int dim, const int* rows) {
    table_free(table);
    if (dim < 0 || (dim > 0 && rows == nullptr)) {
        return false;
    }
    const GoodAxes good = good_axes(dim, rows);
    try {
        if (good.count < dim) {
            if (rows[good.count] < 1) {
                std::perror("The num of row is zero.\n");
            }
            // The record of a failed creation has its axes, but no more of them than the rows were looked at and a few.
            constexpr int few_axes = 64;
            set_axes(table, std::min(dim, std::max(good.count + 1, few_axes)), good.count + 1, rows);
            return false;
        }
        set_axes(table, dim, dim, rows);
        int stride = 1;
        for (std::size_t a = table.sizes.size(); a-- > 0;) {
            table.strides[a] = stride;
            stride *= table.sizes[a];
        }
        table.axes.resize(table.sizes.size());
        table.memos.assign(table.sizes.size(), AxisMemo{});
    } catch (const std::exception&) {
        table_free(table);
        throw std::bad_alloc();
    }
    table.total = static_cast<int>(good.values);
    return true;
}

int table_create(KZB_TABLE& table, int dim, const int* rows) {
    if (!table_shape(table, dim, rows)) {
        return 1;
    }
    if (!table.values.allocate(static_cast<std::size_t>(table.total))) {
        table.total = 0;
        throw std::bad_alloc();
    }
    return 0;
}

void table_free(KZB_TABLE& table) {
    table.axes.clear();
    table.memos.clear();
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
    if (axis >= table->axes.size()) {
        std::perror("memory allocation error");
        return 1;
    }
    if (!table->axes[axis] && !table->axes[axis].allocate(static_cast<std::size_t>(table->sizes[axis]))) {
        std::perror("memory allocation error");
        throw std::bad_alloc();
    }
    table->axes[axis][static_cast<std::size_t>(index)] = value;
    table->memos[axis] = AxisMemo{};
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
