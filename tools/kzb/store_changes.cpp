#include "kzb/store_changes.h"

#include <algorithm>
#include <cstring>

namespace kzb::tool {

namespace {

bool same(int a, int b) {
    return a == b;
}

bool same(const std::string& a, const std::string& b) {
    return a == b;
}

// Bit for bit: a value that is not a number is the same as itself.
bool same(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool same(const ZeroedArray& a, const ZeroedArray& b) {
    return static_cast<bool>(a) == static_cast<bool>(b) && a.size() == b.size() &&
           (a.size() == 0 || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

template <class Value>
bool same_record(const Named<Value>& a, const Named<Value>& b) {
    return same(a.value, b.value);
}

bool same_record(const KZB_TABLE& a, const KZB_TABLE& b) {
    return a.sizes == b.sizes && a.cyclic == b.cyclic && same(a.values, b.values) &&
           std::equal(a.axes.begin(), a.axes.end(), b.axes.begin(), b.axes.end(),
                      [](const ZeroedArray& p, const ZeroedArray& q) { return same(p, q); });
}

// Calls visit(list of `category`, list of the same kind of `other` or null) for the four kinds.
template <class Visit>
void each_list(const KZB_CATEGORY& category, const KZB_CATEGORY* other, Visit visit) {
    visit(category.ints, other == nullptr ? nullptr : &other->ints);
    visit(category.doubles, other == nullptr ? nullptr : &other->doubles);
    visit(category.strings, other == nullptr ? nullptr : &other->strings);
    visit(category.tables, other == nullptr ? nullptr : &other->tables);
}

}  // namespace

bool StoreChanges::touches(const std::string& name) const {
    return std::find(added.begin(), added.end(), name) != added.end() ||
           std::find(changed.begin(), changed.end(), name) != changed.end();
}

StoreChanges changes_between(const KZB_STORE& before, const KZB_STORE& after) {
    StoreChanges changes;
    for (const KZB_CATEGORY& category : after.categories) {
        each_list(category, find_category(before, category.name), [&](const auto& list, const auto* old_list) {
            for (const auto& record : list) {
                const auto* old = old_list == nullptr ? nullptr : old_list->find(record.keyword);
                if (old == nullptr) {
                    changes.added.push_back(category.name + '/' + record.keyword);
                } else if (!same_record(*old, record)) {
                    changes.changed.push_back(category.name + '/' + record.keyword);
                }
            }
        });
    }
    for (const KZB_CATEGORY& category : before.categories) {
        each_list(category, find_category(after, category.name), [&](const auto& list, const auto* new_list) {
            for (const auto& record : list) {
                if (new_list == nullptr || new_list->find(record.keyword) == nullptr) {
                    changes.removed.push_back(category.name + '/' + record.keyword);
                }
            }
        });
    }
    return changes;
}

}  // namespace kzb::tool
