// Tables of the store: found, created and deleted by category and key.
#include <utility>

#include "store/category_rollback.h"

namespace kzb {

const KZB_TABLE* find_table(const KZB_STORE& store, std::string_view category, std::string_view key) {
    const KZB_CATEGORY* found = find_category(store, category);
    return found == nullptr ? nullptr : found->tables.find(key);
}

KZB_TABLE* find_table(KZB_STORE& store, std::string_view category, std::string_view key) {
    return const_cast<KZB_TABLE*>(find_table(std::as_const(store), category, key));
}

int table_dim(const KZB_STORE& store, std::string_view category, std::string_view key) {
    const KZB_TABLE* table = find_table(store, category, key);
    return table == nullptr ? 0 : table->dim;
}

int table_rows(const KZB_STORE& store, std::string_view category, std::string_view key, int axis) {
    const KZB_TABLE* table = find_table(store, category, key);
    if (table == nullptr || axis < 1 || static_cast<std::size_t>(axis) > table->sizes.size()) {
        return 0;
    }
    return table->sizes[static_cast<std::size_t>(axis) - 1];
}

KZB_TABLE* table_create_in_category(KZB_STORE& store, KZB_CATEGORY& category, std::string_view key, int dim,
                                    const int* rows, int& status) {
    status = 1;
    if (key.size() >= name_limit) {
        return nullptr;
    }
    ++store.revision;
    KZB_TABLE& table = category.tables.require(key);
    status = table_create(table, dim, rows);
    return &table;
}

int create_table(KZB_STORE& store, std::string_view category, std::string_view key, int dim, const int* sizes) {
    if (category.size() >= name_limit || key.size() >= name_limit) {
        return 1;
    }
    // The key may be the name of a category, which moves when one is added.
    const std::string own_key(key);
    int status = 1;
    CategoryRollback rollback(store);
    table_create_in_category(store, *require_category(store, category), own_key, dim, sizes, status);
    rollback.keep();
    return status;
}

void delete_table(KZB_STORE& store, std::string_view category, std::string_view key) {
    if (KZB_CATEGORY* found = find_category(store, category)) {
        ++store.revision;
        found->tables.erase(key);
    }
}

}  // namespace kzb
