// The store's part of the runs: lookups, transforms and what they leave behind.
#include <iterator>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "same_bits/runs.h"

namespace kzb_test {
namespace {

constexpr const char* schemes[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline", "no scheme"};

struct TableName {
    std::string category;
    std::string key;
};

std::vector<TableName> tables_of(KZB_STORE* store) {
    std::vector<TableName> names;
    for (int c = 0; c < kzb_get_category_num(store); ++c) {
        const char* const category = kzb_get_category_name(c, store);
        for (int t = 0; t < kzb_get_table_num(category, store); ++t) {
            names.push_back({category, kzb_get_table_keyword(category, t, store)});
        }
    }
    return names;
}

// Visits every index of the table.
template <class Visit>
void for_each_index(const TableName& name, int dim, KZB_STORE* store, Visit visit) {
    std::vector<int> index(static_cast<std::size_t>(dim), 0);
    for (;;) {
        visit(index);
        int axis = dim;
        while (axis > 0 && ++index[static_cast<std::size_t>(axis - 1)] ==
                               kzb_get_table_num_rows(name.category.c_str(), name.key.c_str(), axis, store)) {
            index[static_cast<std::size_t>(--axis)] = 0;
        }
        if (axis == 0) {
            return;
        }
    }
}

void add_tables(KZB_STORE* store, Bits& bits) {
    for (const TableName& name : tables_of(store)) {
        const char* const category = name.category.c_str();
        const char* const key = name.key.c_str();
        const int dim = kzb_get_table_dim(category, key, store);
        bits.add(dim);
        for (int axis = 1; axis <= dim; ++axis) {
            const int rows = kzb_get_table_num_rows(category, key, axis, store);
            bits.add(rows);
            bits.add(kzb_get_table_cyclic_flag(category, key, axis, store));
            for (int i = 0; i < rows; ++i) {
                bits.add(kzb_get_table_axis_value(category, key, axis, i, store));
            }
        }
        for_each_index(name, dim, store, [&](const std::vector<int>& index) {
            bits.add(kzb_get_table_value(category, key, index.data(), store));
        });
    }
}

// Points inside, on the nodes and outside of every axis.
void add_lookups(KZB_STORE* store, Bits& bits) {
    constexpr double places[] = {0.31, 0.0, 1.0, -0.2, 1.3, 0.505, 0.77};
    constexpr std::size_t place_count = std::size(places);
    for (const TableName& name : tables_of(store)) {
        const char* const category = name.category.c_str();
        const char* const key = name.key.c_str();
        const int dim = kzb_get_table_dim(category, key, store);
        for (std::size_t point = 0; point < place_count; ++point) {
            std::vector<double> x;
            for (int axis = 1; axis <= dim; ++axis) {
                const int last = kzb_get_table_num_rows(category, key, axis, store) - 1;
                const double from = kzb_get_table_axis_value(category, key, axis, 0, store);
                const double to = kzb_get_table_axis_value(category, key, axis, last, store);
                x.push_back(from + (to - from) * places[(point + static_cast<std::size_t>(axis)) % place_count]);
            }
            for (const char* const scheme : schemes) {
                bits.add(kzb_get_table_interpolated_value(category, key, x.data(), scheme, store));
                bits.add(kzb_has_error(store));
                kzb_reset_error(store);
            }
        }
    }
    for (int slot = 0; slot < 20; ++slot) {
        bits.add(kzb_get_time(store, slot));
    }
}

}  // namespace

Bits store_results(const char* path) {
    Bits bits;
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    bits.add(kzb_reader(path, store));
    kzb_set_application("ALL", "", store);
    add_lookups(store, bits);
    bits.add(kzb_apply_skew(1, 1, 5.0, 3.0, 3, 2, "Linear", store));
    bits.add(kzb_make_LdLq(store));
    bits.add(kzb_make_dq0_from_UVW(store));
    bits.add(kzb_make_dq0_from_UVW_current(store));
    add_tables(store, bits);
    add_lookups(store, bits);
    bits.add(kzb_make_UVW_from_dq0(store));
    bits.add(kzb_make_UVW_from_dq0_current(store));
    bits.add(kzb_expand_table_considering_phase_symmetry(store));
    add_tables(store, bits);
    bits.add(kzb_has_error(store));
    kzb_finish(store);
    return bits;
}

}  // namespace kzb_test
