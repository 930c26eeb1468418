#include "store/table_calls.h"

namespace kzb {

double axis_value_or_error(KZB_STORE& store, const KZB_TABLE* table, int axis, int index) {
    const double value = table_get_axis_value(table, axis, index);
    if (value == KZB_NO_VALUE) {
        store.error = outside_of_table;
    }
    return value;
}

double axis_value_or_error(KZB_STORE& store, std::string_view category, std::string_view key, int axis, int index) {
    const KZB_CATEGORY* found = find_category(store, category);
    if (axis < 1 || found == nullptr) {
        return 0.0;
    }
    return axis_value_or_error(store, found->tables.find(key), axis, index);
}

double value_or_absent(const KZB_STORE& store, std::string_view category, std::string_view key, const int* indices) {
    return indices == nullptr ? 0.0 : table_get_value(find_table(store, category, key), indices);
}

int set_value(KZB_STORE& store, std::string_view category, std::string_view key, const int* indices, double value) {
    return indices == nullptr ? 1 : table_set_value(find_table(store, category, key), indices, value);
}

}  // namespace kzb
