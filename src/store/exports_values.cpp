// Exported calls: queries and values of categories.
#include "store/export_guard.h"

using kzb::with_store;

namespace {

// Number of entries of one of the four lists; 0 without the category.
template <class List>
int list_size(const char* category, KZB_STORE* handle, List list) {
    return with_store(
        0, handle,
        [&](KZB_STORE& store) {
            const KZB_CATEGORY* found = kzb::find_category(store, category);
            return found == nullptr ? std::size_t{0} : (found->*list).size();
        },
        category);
}

// Key of the index-th entry of one of the four lists; null outside or without the category.
template <class List>
const char* list_keyword(const char* category, int index, KZB_STORE* handle, List list) {
    return with_store(
        static_cast<const char*>(nullptr), handle,
        [&](KZB_STORE& store) -> const char* {
            const KZB_CATEGORY* found = kzb::find_category(store, category);
            if (found == nullptr || index < 0 || static_cast<std::size_t>(index) >= (found->*list).size()) {
                return nullptr;
            }
            return (found->*list)[static_cast<std::size_t>(index)].keyword.c_str();
        },
        category);
}

}  // namespace

int kzb_has_category(const char* category, KZB_STORE* handle) {
    return with_store(
        0, handle, [&](KZB_STORE& store) { return kzb::has_category(store, category); }, category);
}

int kzb_has_parameter(const char* category, const char* key, KZB_STORE* handle) {
    return with_store(
        0, handle, [&](KZB_STORE& store) { return kzb::has_parameter(store, category, key); }, category, key);
}

int kzb_get_category_num(KZB_STORE* handle) {
    return with_store(0, handle, [](KZB_STORE& store) { return store.categories.size(); });
}

const char* kzb_get_category_name(int index, KZB_STORE* handle) {
    return with_store(static_cast<const char*>(nullptr), handle, [&](KZB_STORE& store) -> const char* {
        const bool inside = index >= 0 && static_cast<std::size_t>(index) < store.categories.size();
        return inside ? store.categories[static_cast<std::size_t>(index)].name.c_str() : nullptr;
    });
}

int kzb_get_int(const char* category, const char* key, KZB_STORE* handle) {
    return with_store(
        0, handle, [&](KZB_STORE& store) { return kzb::get_int(store, category, key); }, category, key);
}

double kzb_get_double(const char* category, const char* key, KZB_STORE* handle) {
    return with_store(
        0.0, handle, [&](KZB_STORE& store) { return kzb::get_double(store, category, key); }, category, key);
}

const char* kzb_get_string(const char* category, const char* key, KZB_STORE* handle) {
    return with_store(
        static_cast<const char*>(nullptr), handle,
        [&](KZB_STORE& store) { return kzb::get_string(store, category, key); }, category, key);
}

int kzb_get_int_num(const char* category, KZB_STORE* handle) {
    return list_size(category, handle, &KZB_CATEGORY::ints);
}

int kzb_get_double_num(const char* category, KZB_STORE* handle) {
    return list_size(category, handle, &KZB_CATEGORY::doubles);
}

int kzb_get_string_num(const char* category, KZB_STORE* handle) {
    return list_size(category, handle, &KZB_CATEGORY::strings);
}

int kzb_get_table_num(const char* category, KZB_STORE* handle) {
    return list_size(category, handle, &KZB_CATEGORY::tables);
}

const char* kzb_get_int_keyword(const char* category, int index, KZB_STORE* handle) {
    return list_keyword(category, index, handle, &KZB_CATEGORY::ints);
}

const char* kzb_get_double_keyword(const char* category, int index, KZB_STORE* handle) {
    return list_keyword(category, index, handle, &KZB_CATEGORY::doubles);
}

const char* kzb_get_string_keyword(const char* category, int index, KZB_STORE* handle) {
    return list_keyword(category, index, handle, &KZB_CATEGORY::strings);
}

const char* kzb_get_table_keyword(const char* category, int index, KZB_STORE* handle) {
    return list_keyword(category, index, handle, &KZB_CATEGORY::tables);
}

int kzb_put_int(const char* category, const char* key, int value, KZB_STORE* handle) {
    return with_store(
        1, handle, [&](KZB_STORE& store) { return kzb::put_int(store, category, key, value); }, category, key);
}

int kzb_put_double(const char* category, const char* key, double value, KZB_STORE* handle) {
    return with_store(
        1, handle, [&](KZB_STORE& store) { return kzb::put_double(store, category, key, value); }, category, key);
}

int kzb_put_string(const char* category, const char* key, const char* value, KZB_STORE* handle) {
    return with_store(
        1, handle, [&](KZB_STORE& store) { return kzb::put_string(store, category, key, value); }, category, key,
        value);
}
