#include "store/measured/correction_merge.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "store/measured/correction_block.h"
#include "store/messages.h"

namespace kzb {

namespace {

double factor_at(KZB_STORE& store, const KZB_TABLE& earlier, const double (&point)[2]) {
    // An earlier table that was not read from a correction file may have other axes; those beyond the second see 0.0.
    std::vector<double> coordinates(point, point + 2);
    coordinates.resize(static_cast<std::size_t>(std::max(earlier.dim, 2)), 0.0);
    double factor = KZB_NO_VALUE;
    const int status = table_lookup(Scheme::linear, &earlier, coordinates.data(), factor, store.timing, store.switches);
    return status == lookup_below_range || status == lookup_above_range ? 1.0 : factor;
}

void multiply(KZB_STORE& store, KZB_TABLE& table, const KZB_TABLE& earlier) {
    int at[2];
    for (at[0] = 0; at[0] < table.sizes[0]; ++at[0]) {
        for (at[1] = 0; at[1] < table.sizes[1]; ++at[1]) {
            const double point[2] = {table_get_axis_value(&table, 1, at[0]), table_get_axis_value(&table, 2, at[1])};
            const double factor = factor_at(store, earlier, point);
            table_set_value(&table, at, table_get_value(&table, at) * factor);
        }
    }
}

}  // namespace

void merge_block(KZB_STORE& store, TextLines& lines, std::string_view head, const std::string& key) {
    const std::string temporary = key + "_dummy";
    if (!read_block(store, lines, head, temporary)) {
        if (store.error == corrupt_correction_file) {
            std::perror(error_text(corrupt_correction_file));
        }
        return;
    }
    // By name, so that the table keeps the place of the block in the list.
    find_category(store, correction_category)->tables.swap_names(key, temporary);
    ++store.revision;
    multiply(store, *find_table(store, correction_category, key), *find_table(store, correction_category, temporary));
    delete_table(store, correction_category, temporary);
}

}  // namespace kzb
