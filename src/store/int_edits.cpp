#include "store/int_edits.h"

#include <optional>
#include <utility>

#include "store/category_rollback.h"

namespace kzb {
namespace {

Named<int>* find_int(KZB_STORE& store, std::string_view category, std::string_view key) {
    KZB_CATEGORY* const found = find_category(store, category);
    return found == nullptr ? nullptr : found->ints.find(key);
}

void take_back(KZB_STORE& store, std::string_view category, std::string_view key, const std::optional<int>& before) {
    Named<int>* const entry = find_int(store, category, key);
    if (entry == nullptr) {
        return;
    }
    if (before) {
        entry->value = *before;
    } else {
        find_category(store, category)->ints.erase(key);
    }
}

}  // namespace

void IntEdits::add(std::string category, const char* key, int value) {
    edits_.push_back({std::move(category), key, value});
}

void IntEdits::apply(KZB_STORE& store, const std::function<void()>& last) const {
    std::vector<std::optional<int>> before;
    before.reserve(edits_.size());
    for (const Edit& edit : edits_) {
        const Named<int>* const entry = find_int(store, edit.category, edit.key);
        before.push_back(entry == nullptr ? std::nullopt : std::optional<int>(entry->value));
    }
    CategoryRollback rollback(store);
    try {
        for (const Edit& edit : edits_) {
            put_int(store, edit.category, edit.key, edit.value);
        }
        last();
    } catch (...) {
        for (std::size_t i = 0; i < edits_.size(); ++i) {
            take_back(store, edits_[i].category, edits_[i].key, before[i]);
        }
        throw;
    }
    rollback.keep();
}

}  // namespace kzb
