// Exported calls: subcategories. Each builds the flat name and does what the plain call does.
#include <iterator>

#include "store/export_guard.h"
#include "store/lookup_front.h"
#include "store/subcategory.h"
#include "store/table_calls.h"

using kzb::with_store;

namespace {

// As with_store, with the flat name as the body's second argument; `absent` for a path or indices that give none.
template <class Result, class Body, class... Texts>
Result with_subcategory(Result absent, const char* path, const int* indices, KZB_STORE* handle, Body&& body,
                        const Texts*... texts) noexcept {
    return with_store(
        absent, handle,
        [&](KZB_STORE& store) -> Result {
            const std::string name = kzb::subcategory_name(path, indices);
            return name.empty() ? absent : static_cast<Result>(body(store, name));
        },
        path, indices, texts...);
}

}  // namespace

int kzb_has_subcategory(const char* path, const int* indices, KZB_STORE* handle) {
    return with_subcategory(0, path, indices, handle,
                            [](KZB_STORE& store, const std::string& name) { return kzb::has_category(store, name); });
}

int kzb_has_subcategory_parameter(const char* path, const int* indices, const char* key, KZB_STORE* handle) {
    return with_subcategory(
        0, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::has_parameter(store, name, key); }, key);
}

int kzb_get_subcategory_num(const char* path, const int* indices, KZB_STORE* handle) {
    return with_store(
        0, handle, [&](KZB_STORE& store) { return kzb::subcategory_indices(store, path, indices).size(); }, path);
}

int kzb_get_child_subcategory_num(const char* path, const int* indices, KZB_STORE* handle) {
    return with_store(
        0, handle, [&](KZB_STORE& store) { return kzb::child_subcategories(store, path, indices).size(); }, path,
        indices);
}

const char* kzb_get_child_subcategory_name(const char* path, const int* indices, int index, KZB_STORE* handle) {
    return with_store(
        "", handle,
        [&](KZB_STORE& store) {
            const std::vector<std::string> children = kzb::child_subcategories(store, path, indices);
            if (index < 0 || static_cast<std::size_t>(index) >= children.size()) {
                return "";
            }
            store.child_name = children[static_cast<std::size_t>(index)];
            return store.child_name.c_str();
        },
        path, indices);
}

int kzb_get_subcategory_int(const char* path, const int* indices, const char* key, KZB_STORE* handle) {
    return with_subcategory(
        0, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::get_int(store, name, key); }, key);
}

double kzb_get_subcategory_double(const char* path, const int* indices, const char* key, KZB_STORE* handle) {
    return with_subcategory(
        0.0, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::get_double(store, name, key); }, key);
}

const char* kzb_get_subcategory_string(const char* path, const int* indices, const char* key, KZB_STORE* handle) {
    return with_subcategory(
        "", path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            // A missing category gives the empty text, a missing key null.
            return kzb::has_category(store, name) ? kzb::get_string(store, name, key) : "";
        },
        key);
}

int kzb_put_subcategory_int(const char* path, const int* indices, const char* key, int value, KZB_STORE* handle) {
    return with_subcategory(
        1, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::put_int(store, name, key, value); }, key);
}

int kzb_put_subcategory_double(const char* path, const int* indices, const char* key, double value, KZB_STORE* handle) {
    return with_subcategory(
        1, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::put_double(store, name, key, value); }, key);
}

int kzb_put_subcategory_string(const char* path, const int* indices, const char* key, const char* value,
                               KZB_STORE* handle) {
    return with_subcategory(
        1, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::put_string(store, name, key, value); }, key,
        value);
}

int kzb_create_subcategory_table(const char* path, const int* indices, const char* key, int dim, const int* sizes,
                                 KZB_STORE* handle) {
    return with_subcategory(
        1, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::create_table(store, name, key, dim, sizes); }, key,
        sizes);
}

int kzb_get_subcategory_table_dim(const char* path, const int* indices, const char* key, KZB_STORE* handle) {
    return with_subcategory(
        0, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::table_dim(store, name, key); }, key);
}

int kzb_get_subcategory_table_num_rows(const char* path, const int* indices, const char* key, int axis,
                                       KZB_STORE* handle) {
    return with_subcategory(
        0, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) { return kzb::table_rows(store, name, key, axis); }, key);
}

double kzb_get_subcategory_table_axis_value(const char* path, const int* indices, const char* key, int axis, int index,
                                            KZB_STORE* handle) {
    return with_subcategory(
        0.0, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            return kzb::axis_value_or_error(store, name, key, axis, index);
        },
        key);
}

int kzb_set_subcategory_table_axis_value(const char* path, const int* indices, const char* key, int axis, int index,
                                         double value, KZB_STORE* handle) {
    return with_subcategory(
        1, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            return kzb::table_set_axis_value(kzb::find_table(store, name, key), axis, index, value);
        },
        key);
}

double kzb_get_subcategory_table_value(const char* path, const int* indices, const char* key, const int* table_indices,
                                       KZB_STORE* handle) {
    return with_subcategory(
        0.0, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            return kzb::value_or_absent(store, name, key, table_indices);
        },
        key);
}

int kzb_set_subcategory_table_value(const char* path, const int* indices, const char* key, const int* table_indices,
                                    double value, KZB_STORE* handle) {
    return with_subcategory(
        1, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            return kzb::set_value(store, name, key, table_indices, value);
        },
        key);
}

int kzb_get_subcategory_table_cyclic_flag(const char* path, const int* indices, const char* key, int axis,
                                          KZB_STORE* handle) {
    return with_subcategory(
        kzb::KZB_NO_FLAG, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            return kzb::table_get_cyclic_flag(kzb::find_table(store, name, key), axis);
        },
        key);
}

int kzb_set_subcategory_table_cyclic_flag(const char* path, const int* indices, const char* key, int axis, int flag,
                                          KZB_STORE* handle) {
    return with_subcategory(
        1, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            return kzb::table_set_cyclic_flag(kzb::find_table(store, name, key), axis, flag);
        },
        key);
}

double kzb_get_subcategory_table_interpolated_value(const char* path, const int* indices, const char* key,
                                                    const double* values, const char* method, KZB_STORE* handle) {
    return with_subcategory(
        kzb::KZB_NO_VALUE, path, indices, handle,
        [&](KZB_STORE& store, const std::string& name) {
            kzb::read_lookup_switches(store);
            const KZB_TABLE* const table = kzb::find_table(store, name, key);
            return kzb::look_up_plain(store, kzb::has_category(store, name), table, kzb::scheme_of(method), values,
                                      table == nullptr ? 0 : table->dim);
        },
        key, values, method);
}
