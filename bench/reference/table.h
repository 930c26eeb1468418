// The plain reference of a table: the record, its filling, and the checked reads that every scheme goes through.
//
//   position(i0 .. iN-1) = sum of i[a] * strides[a],  strides[a] = product of sizes[b] for b > a
//
// Written literally, as a yardstick for speed and as a second derivation of every result; shares nothing with src/.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace kzb_reference {

inline constexpr double no_value = 1.7976931348623157e308;
inline constexpr double axis_tol = 1e-10;

struct Table {
    char keyword[256];
    std::int32_t dim;
    std::int32_t* sizes;
    double* values;
    double** axes;
    std::int32_t* cyclic;
    std::int32_t* strides;
    std::int32_t file_position;
    std::int32_t loaded;
    std::int32_t total;
};

// 0, or 1 for a row count below 1.
int table_create(Table& table, int dim, const int* rows);
void table_free(Table& table);
void table_set_axis_value(Table& table, int axis_no, int index, double value);

// The value at an index vector; no_value where an index is out of range.
inline double table_value_at(const Table& table, const int* index) {
    if (table.dim < 0) {
        std::perror("invalid dimension table");
        return no_value;
    }
    int position = 0;
    for (int a = 0; a < table.dim; ++a) {
        if (index[a] < 0 || index[a] >= table.sizes[a]) {
            std::perror("index is invalid");
            return no_value;
        }
        position += index[a] * table.strides[a];
    }
    if (position >= table.total) {
        std::perror("index is overflow");
        return no_value;
    }
    return table.values[position];
}

inline void table_store_at(Table& table, const int* index, double value) {
    if (table.dim < 0) {
        std::perror("invalid dimension table");
        return;
    }
    int position = 0;
    for (int a = 0; a < table.dim; ++a) {
        if (index[a] < 0 || index[a] >= table.sizes[a]) {
            std::perror("index is invalid");
            return;
        }
        position += index[a] * table.strides[a];
    }
    if (position >= table.total) {
        std::perror("index is overflow");
        return;
    }
    table.values[position] = value;
}

// Two neighbours along the last axis; on a cyclic axis an index whose node lies at 360.0 counts as index 0.
inline void table_pair_at(const Table& table, const int* index, double pair[2]) {
    pair[0] = no_value;
    pair[1] = no_value;
    if (table.dim < 0) {
        std::perror("invalid dimension table");
        return;
    }
    for (int a = 0; a < table.dim; ++a) {
        if (index[a] < 0 || index[a] >= table.sizes[a]) {
            std::perror("index is invalid");
            return;
        }
    }
    if (index[table.dim - 1] + 1 >= table.sizes[table.dim - 1]) {
        std::perror("index is invalid");
        return;
    }
    int position = 0;
    int count = 1;
    for (int a = 0; a < table.dim; ++a) {
        int i = index[a];
        if (table.cyclic[a] >= 1 && table.axes[a] != nullptr && std::fabs(table.axes[a][i] - 360.0) < axis_tol) {
            i = 0;
        }
        position += i * table.strides[a];
        count *= table.sizes[a];
    }
    if (position >= count || position + 1 >= count) {
        std::perror("index is overflow");
        return;
    }
    pair[0] = table.values[position];
    pair[1] = table.values[position + 1];
}

}  // namespace kzb_reference
