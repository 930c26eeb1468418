#include "bench/reference/table.h"

#include <cstdlib>

namespace kzb_reference {

namespace {

template <class T>
T* zeroed(int count) {
    return static_cast<T*>(std::calloc(static_cast<std::size_t>(count), sizeof(T)));
}

}  // namespace

int table_create(Table& table, int dim, const int* rows) {
    table.dim = dim;
    table.sizes = zeroed<std::int32_t>(dim);
    table.cyclic = zeroed<std::int32_t>(dim);
    table.strides = zeroed<std::int32_t>(dim);
    table.file_position = 0;
    table.loaded = 0;
    int count = 1;
    for (int a = 0; a < dim; ++a) {
        if (rows[a] < 1) {
            std::perror("The num of row is zero.\n");
            return 1;
        }
        table.sizes[a] = rows[a];
        count *= rows[a];
    }
    int stride = 1;
    for (int a = dim - 1; a >= 0; --a) {
        table.strides[a] = stride;
        stride *= rows[a];
    }
    table.total = count;
    table.values = zeroed<double>(count);
    table.axes = zeroed<double*>(dim);
    return 0;
}

void table_free(Table& table) {
    if (table.axes != nullptr) {
        for (int a = 0; a < table.dim; ++a) {
            std::free(table.axes[a]);
        }
    }
    std::free(table.axes);
    std::free(table.values);
    std::free(table.sizes);
    std::free(table.cyclic);
    std::free(table.strides);
}

void table_set_axis_value(Table& table, int axis_no, int index, double value) {
    double*& axis = table.axes[axis_no - 1];
    if (axis == nullptr) {
        axis = zeroed<double>(table.sizes[axis_no - 1]);
    }
    axis[index] = value;
}

}  // namespace kzb_reference
