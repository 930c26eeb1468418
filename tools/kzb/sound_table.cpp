#include "kzb/sound_table.h"

#include <algorithm>
#include <cmath>

namespace kzb::tool {

namespace {

constexpr double largest_usable = 1e100;  // lookups report a larger result as a fault

}  // namespace

bool has_values(const KZB_TABLE& table) {
    const auto dim = static_cast<std::size_t>(std::max(table.dim, 0));
    if (dim == 0 || table.sizes.size() != dim || table.strides.size() != dim || table.axes.size() != dim ||
        table.cyclic.size() != dim || !table.values) {
        return false;
    }
    std::size_t total = 1;
    for (const int size : table.sizes) {
        if (size < 1) {
            return false;
        }
        total *= static_cast<std::size_t>(size);
        if (total > table.values.size()) {
            return false;
        }
    }
    return total == table.values.size() && table.total == static_cast<int>(total);
}

bool has_nodes(const KZB_TABLE& table, std::size_t axis) {
    return axis < table.axes.size() && axis < table.sizes.size() && table.axes[axis] && table.sizes[axis] > 0 &&
           table.axes[axis].size() == static_cast<std::size_t>(table.sizes[axis]);
}

bool is_unusable(double value) {
    return !(std::abs(value) <= largest_usable);
}

double largest_magnitude(const KZB_TABLE& table) {
    double largest = 0.0;
    for (std::size_t i = 0; i < table.values.size(); ++i) {
        if (!is_unusable(table.values[i])) {
            largest = std::max(largest, std::abs(table.values[i]));
        }
    }
    return largest;
}

bool is_sound(const KZB_TABLE& table) {
    if (!has_values(table) ||
        std::any_of(table.values.data(), table.values.data() + table.values.size(), is_unusable)) {
        return false;
    }
    for (std::size_t axis = 0; axis < table.axes.size(); ++axis) {
        if (!has_nodes(table, axis)) {
            return false;
        }
        const double* const first = table.axes[axis].data();
        const double* const last = first + table.axes[axis].size();
        // Written so that nodes which are no numbers fail.
        const auto not_rising = [](double a, double b) { return !(a < b); };
        if (std::any_of(first, last, is_unusable) || std::adjacent_find(first, last, not_rising) != last) {
            return false;
        }
    }
    return true;
}

const KZB_TABLE* sound_table(const KZB_STORE& store, const char* category, const char* key) {
    const KZB_TABLE* table = find_table(store, category, key);
    return table != nullptr && is_sound(*table) ? table : nullptr;
}

}  // namespace kzb::tool
