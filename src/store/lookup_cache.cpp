#include "store/lookup_cache.h"

#include <cstdint>
#include <cstring>

#include "store/store.h"

namespace kzb {

ResolvedTable resolve_table(const KZB_STORE& store, std::string_view category, std::string_view key) {
    ResolvedTable resolved;
    resolved.revision = store.revision;
    resolved.category_exists = has_category(store, category);
    resolved.key_exists = has_parameter(store, category, key);
    resolved.table = find_table(store, category, key);
    resolved.fold = phase_fold_of(store, category, key, resolved.table);
    return resolved;
}

const ResolvedTable& LookupCache::find(const KZB_STORE& store, const char* category, const char* key) {
    const auto mixed = reinterpret_cast<std::uintptr_t>(category) * 31 + reinterpret_cast<std::uintptr_t>(key);
    Entry& entry = entries_[((mixed >> 3) ^ (mixed >> 11)) % entry_count];
    const bool same_texts = entry.category_address == category && entry.key_address == key &&
                            std::strcmp(entry.category.c_str(), category) == 0 &&
                            std::strcmp(entry.key.c_str(), key) == 0;
    if (!same_texts) {
        entry.resolved.revision = 0;
        entry.category = category;
        entry.key = key;
        entry.category_address = category;
        entry.key_address = key;
    }
    if (entry.resolved.revision != store.revision) {
        entry.resolved = resolve_table(store, category, key);
    }
    return entry.resolved;
}

}  // namespace kzb
