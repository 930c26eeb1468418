// Categories and parameters of the store.
#include "store/store.h"

#include <utility>

#include "store/category_rollback.h"

namespace kzb {

namespace {

bool is_name(std::string_view text) {
    return text.size() < name_limit;
}

// Replaces or appends a parameter of the list that `list` names.
template <class List, class Value>
int put(KZB_STORE& store, std::string_view category, std::string_view key, List list, const Value& value) {
    if (!is_name(category) || !is_name(key)) {
        return 1;
    }
    KZB_CATEGORY* found = find_category(store, category);
    if (auto* record = found == nullptr ? nullptr : (found->*list).find(key)) {
        record->value = value;
    } else {
        // The texts may stand in this store, in a list that grows now.
        const std::string own_key(key);
        auto own_value = decltype(record->value)(value);
        CategoryRollback rollback(store);
        (require_category(store, category)->*list).require(own_key).value = std::move(own_value);
        rollback.keep();
    }
    ++store.revision;
    return 0;
}

template <class List>
auto find(const KZB_STORE& store, std::string_view category, std::string_view key, List list) {
    const KZB_CATEGORY* found = find_category(store, category);
    return found == nullptr ? nullptr : (found->*list).find(key);
}

}  // namespace

const KZB_CATEGORY* find_category(const KZB_STORE& store, std::string_view name) {
    const auto at = store.category_index.find(name);
    return at == store.category_index.end() ? nullptr : &store.categories[at->second];
}

KZB_CATEGORY* find_category(KZB_STORE& store, std::string_view name) {
    return const_cast<KZB_CATEGORY*>(find_category(std::as_const(store), name));
}

KZB_CATEGORY* require_category(KZB_STORE& store, std::string_view name) {
    if (KZB_CATEGORY* found = find_category(store, name)) {
        return found;
    }
    if (!is_name(name)) {
        return nullptr;
    }
    KZB_CATEGORY category;
    category.name = name;
    store.categories.push_back(std::move(category));
    try {
        store.category_index.emplace(store.categories.back().name,
                                     static_cast<std::uint32_t>(store.categories.size() - 1));
    } catch (...) {
        store.categories.pop_back();
        throw;
    }
    ++store.revision;
    return &store.categories.back();
}

bool has_category(const KZB_STORE& store, std::string_view name) {
    return find_category(store, name) != nullptr;
}

bool has_parameter(const KZB_STORE& store, std::string_view category, std::string_view key) {
    const KZB_CATEGORY* found = find_category(store, category);
    return found != nullptr && (found->ints.find(key) != nullptr || found->doubles.find(key) != nullptr ||
                                found->strings.find(key) != nullptr || found->tables.find(key) != nullptr);
}

int get_int(const KZB_STORE& store, std::string_view category, std::string_view key) {
    const auto* found = find(store, category, key, &KZB_CATEGORY::ints);
    return found == nullptr ? 0 : found->value;
}

double get_double(const KZB_STORE& store, std::string_view category, std::string_view key) {
    const auto* found = find(store, category, key, &KZB_CATEGORY::doubles);
    return found == nullptr ? 0.0 : found->value;
}

const char* get_string(const KZB_STORE& store, std::string_view category, std::string_view key) {
    const auto* found = find(store, category, key, &KZB_CATEGORY::strings);
    return found == nullptr ? nullptr : found->value.c_str();
}

int put_int(KZB_STORE& store, std::string_view category, std::string_view key, int value) {
    return put(store, category, key, &KZB_CATEGORY::ints, value);
}

int put_double(KZB_STORE& store, std::string_view category, std::string_view key, double value) {
    return put(store, category, key, &KZB_CATEGORY::doubles, value);
}

int put_string(KZB_STORE& store, std::string_view category, std::string_view key, std::string_view value) {
    // Assigning keeps the buffer where the new text fits: an earlier pointer then shows the new text.
    return put(store, category, key, &KZB_CATEGORY::strings, value);
}

}  // namespace kzb
