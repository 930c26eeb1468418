// Reading and writing table values by index.
#include <cmath>
#include <cstdio>

#include "table/table.h"

namespace kzb {

namespace {

enum class Place { good, bad_dim, bad_index, overflow };

bool in_rows(const KZB_TABLE& table, const int* indices) {
    if (indices == nullptr) {
        return table.dim == 0;
    }
    for (int a = 0; a < table.dim; ++a) {
        if (indices[a] < 0 || indices[a] >= table.sizes[static_cast<std::size_t>(a)]) {
            return false;
        }
    }
    return true;
}

Place find_place(const KZB_TABLE& table, const int* indices, std::size_t& position) {
    if (table.dim < 0) {
        return Place::bad_dim;
    }
    if (!in_rows(table, indices)) {
        return Place::bad_index;
    }
    std::int64_t flat = 0;
    for (int a = 0; a < table.dim; ++a) {
        flat += std::int64_t{indices[a]} * table.strides[static_cast<std::size_t>(a)];
    }
    if (!table.values || flat >= table.total) {
        return Place::overflow;
    }
    position = static_cast<std::size_t>(flat);
    return Place::good;
}

// Says what is wrong; true for a good place. Writing by keyword has an index text of its own.
bool report(Place place, const char* index_text = "index is invalid") {
    switch (place) {
        case Place::good:
            return true;
        case Place::bad_dim:
            std::perror("invalid dimension table");
            return false;
        case Place::bad_index:
            std::perror(index_text);
            return false;
        case Place::overflow:
            std::perror("index is overflow");
            return false;
    }
    return false;
}

}  // namespace

int table_set_value(KZB_TABLE* table, const int* indices, double value) {
    if (table == nullptr) {
        return 1;
    }
    std::size_t position = 0;
    if (!report(find_place(*table, indices, position), "index is invalid\n")) {
        return 1;
    }
    table->values[position] = value;
    return 0;
}

double table_get_value(const KZB_TABLE* table, const int* indices) {
    if (table == nullptr) {
        return 0.0;
    }
    std::size_t position = 0;
    // 1.0 on a failure is the established result.
    return report(find_place(*table, indices, position)) ? table->values[position] : 1.0;
}

double table_value_at(const KZB_TABLE& table, const int* indices) {
    std::size_t position = 0;
    return report(find_place(table, indices, position)) ? table.values[position] : KZB_NO_VALUE;
}

void table_store_at(KZB_TABLE& table, const int* indices, double value) {
    std::size_t position = 0;
    if (report(find_place(table, indices, position))) {
        table.values[position] = value;
    }
}

void table_pair_at(const KZB_TABLE& table, const int* indices, double pair[2]) {
    pair[0] = KZB_NO_VALUE;
    pair[1] = KZB_NO_VALUE;
    if (table.dim < 0) {
        report(Place::bad_dim);
        return;
    }
    const auto last = static_cast<std::size_t>(table.dim) - 1;
    if (table.dim == 0 || !in_rows(table, indices) || indices[last] + 1 >= table.sizes[last]) {
        report(Place::bad_index);
        return;
    }
    std::int64_t flat = 0;
    for (std::size_t a = 0; a <= last; ++a) {
        // The end of a full turn counts as its start; 360 is a fixed number here, whatever the axis.
        const bool full_turn = table.cyclic[a] >= 1 && a < table.axes.size() && table.axes[a] &&
                               std::fabs(table.axes[a][static_cast<std::size_t>(indices[a])] - 360.0) < KZB_AXIS_TOL;
        flat += full_turn ? 0 : std::int64_t{indices[a]} * table.strides[a];
    }
    if (!table.values || flat + 1 >= table.total) {
        report(Place::overflow);
        return;
    }
    pair[0] = table.values[static_cast<std::size_t>(flat)];
    pair[1] = table.values[static_cast<std::size_t>(flat) + 1];
}

}  // namespace kzb
