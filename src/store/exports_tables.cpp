// Exported calls: tables of categories.
#include "store/export_guard.h"
#include "store/lookup_front.h"
#include "store/table_calls.h"

using kzb::with_store;

int kzb_create_table(const char* category, const char* key, int dim, const int* sizes, KZB_STORE* handle) {
    return with_store(
        1, handle, [&](KZB_STORE& store) { return kzb::create_table(store, category, key, dim, sizes); }, category, key,
        sizes);
}

int kzb_get_table_dim(const char* category, const char* key, KZB_STORE* handle) {
    return with_store(
        0, handle, [&](KZB_STORE& store) { return kzb::table_dim(store, category, key); }, category, key);
}

int kzb_get_table_num_rows(const char* category, const char* key, int axis, KZB_STORE* handle) {
    return with_store(
        0, handle, [&](KZB_STORE& store) { return kzb::table_rows(store, category, key, axis); }, category, key);
}

double kzb_get_table_axis_value(const char* category, const char* key, int axis, int index, KZB_STORE* handle) {
    return with_store(
        0.0, handle, [&](KZB_STORE& store) { return kzb::axis_value_or_error(store, category, key, axis, index); },
        category, key);
}

int kzb_set_table_axis_value(const char* category, const char* key, int axis, int index, double value,
                             KZB_STORE* handle) {
    return with_store(
        1, handle,
        [&](KZB_STORE& store) {
            return kzb::table_set_axis_value(kzb::find_table(store, category, key), axis, index, value);
        },
        category, key);
}

double kzb_get_table_value(const char* category, const char* key, const int* indices, KZB_STORE* handle) {
    return with_store(
        0.0, handle, [&](KZB_STORE& store) { return kzb::value_or_absent(store, category, key, indices); }, category,
        key);
}

int kzb_set_table_value(const char* category, const char* key, const int* indices, double value, KZB_STORE* handle) {
    return with_store(
        1, handle, [&](KZB_STORE& store) { return kzb::set_value(store, category, key, indices, value); }, category,
        key);
}

int kzb_get_table_cyclic_flag(const char* category, const char* key, int axis, KZB_STORE* handle) {
    return with_store(
        kzb::KZB_NO_FLAG, handle,
        [&](KZB_STORE& store) { return kzb::table_get_cyclic_flag(kzb::find_table(store, category, key), axis); },
        category, key);
}

int kzb_set_table_cyclic_flag(const char* category, const char* key, int axis, int flag, KZB_STORE* handle) {
    return with_store(
        1, handle,
        [&](KZB_STORE& store) { return kzb::table_set_cyclic_flag(kzb::find_table(store, category, key), axis, flag); },
        category, key);
}

double kzb_get_table_interpolated_value(const char* category, const char* key, const double* values, const char* method,
                                        KZB_STORE* handle) {
    return with_store(
        kzb::KZB_NO_VALUE, handle,
        [&](KZB_STORE& store) {
            kzb::read_lookup_switches(store);
            const kzb::ResolvedTable& resolved = store.lookup_cache.find(store, category, key);
            const int count = resolved.table == nullptr ? 0 : resolved.table->dim;
            return kzb::look_up(store, resolved, kzb::scheme_of(method), {category, key, method}, values, count);
        },
        category, key, values, method);
}
