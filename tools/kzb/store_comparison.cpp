#include "kzb/store_comparison.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "fmt/format.h"

namespace kzb::tool {

namespace {

void compare_value(double original, double copy, StoreComparison& result) {
    ++result.values;
    if (std::bit_cast<std::uint64_t>(original) == std::bit_cast<std::uint64_t>(copy)) {
        return;
    }
    if (std::isnan(original) && std::isnan(copy)) {
        return;
    }
    ++result.values_changed;
    if (original != 0.0 && std::isfinite(original) && std::isfinite(copy)) {
        result.largest_relative_change =
            std::max(result.largest_relative_change, std::fabs(copy - original) / std::fabs(original));
    }
}

bool compare_arrays(const ZeroedArray& original, const ZeroedArray& copy, StoreComparison& result) {
    if (static_cast<bool>(original) != static_cast<bool>(copy) || original.size() != copy.size()) {
        return false;
    }
    for (std::size_t i = 0; i < original.size(); ++i) {
        compare_value(original[i], copy[i], result);
    }
    return true;
}

void compare_tables(const std::string& name, const KZB_TABLE& original, const KZB_TABLE& copy,
                    StoreComparison& result) {
    if (original.sizes != copy.sizes || original.cyclic != copy.cyclic) {
        result.lost.push_back(fmt::format("table {}: another shape", name));
        return;
    }
    if (!compare_arrays(original.values, copy.values, result)) {
        result.lost.push_back(fmt::format("table {}: its values", name));
    }
    for (std::size_t axis = 0; axis < original.axes.size(); ++axis) {
        if (!compare_arrays(original.axes[axis], copy.axes[axis], result)) {
            result.lost.push_back(fmt::format("table {}: the nodes of axis {}", name, axis + 1));
        }
    }
}

// compare(name, original value, copy value) for each pair of records; a missing record goes to `lost`.
template <class List, class Compare>
void each_pair(const std::string& category, const char* kind, const List& original, const List& copy,
               StoreComparison& result, Compare compare) {
    for (const auto& record : original) {
        const std::string name = category + '/' + record.keyword;
        const auto* other = copy.find(record.keyword);
        if (other == nullptr) {
            result.lost.push_back(fmt::format("{} {}", kind, name));
        } else {
            compare(name, record, *other);
        }
    }
}

}  // namespace

StoreComparison compare_stores(const KZB_STORE& original, const KZB_STORE& copy) {
    StoreComparison result;
    for (const KZB_CATEGORY& category : original.categories) {
        const KZB_CATEGORY* other = find_category(copy, category.name);
        if (other == nullptr) {
            result.lost.push_back(fmt::format("category {}", category.name));
            continue;
        }
        each_pair(category.name, "int", category.ints, other->ints, result,
                  [&result](const std::string& name, const auto& a, const auto& b) {
                      if (a.value != b.value) {
                          result.lost.push_back(fmt::format("int {}: {} became {}", name, a.value, b.value));
                      }
                  });
        each_pair(
            category.name, "double", category.doubles, other->doubles, result,
            [&result](const std::string&, const auto& a, const auto& b) { compare_value(a.value, b.value, result); });
        each_pair(category.name, "string", category.strings, other->strings, result,
                  [&result](const std::string& name, const auto& a, const auto& b) {
                      if (a.value != b.value) {
                          result.strings_changed.push_back(name);
                      }
                  });
        each_pair(
            category.name, "table", category.tables, other->tables, result,
            [&result](const std::string& name, const auto& a, const auto& b) { compare_tables(name, a, b, result); });
    }
    return result;
}

}  // namespace kzb::tool
