#include "models/calc_eq_im_flat.h"

#include <algorithm>
#include <cmath>

namespace kzb {

namespace {

constexpr double largest = 1e100;  // values beyond are no values of a lookup

bool by_neighbours(Scheme scheme) {
    return scheme == Scheme::linear || scheme == Scheme::cubic || scheme == Scheme::spline4;
}

}  // namespace

bool ImFlatTables::has_flat_shape(const KZB_TABLE& table) {
    if (table.dim != 2 || table.total != 4 || table.sizes[0] != 2 || !table.values) {
        return false;
    }
    for (std::size_t a = 0; a < 2; ++a) {
        const ZeroedArray& nodes = table.axes[a];
        if (!nodes || nodes[0] != lower_end || nodes[1] != upper_end || table.cyclic[a] >= 1) {
            return false;
        }
    }
    return true;
}

bool ImFlatTables::is_inside(const double* point) {
    constexpr double margin = 1e-6;
    return std::fabs(point[0]) < upper_end - margin && std::fabs(point[1]) < upper_end - margin;
}

// A zero's sign and a number that is none get lost in the interpolation.
bool ImFlatTables::read(Values& values) const {
    for (std::size_t k = 0; k < count; ++k) {
        const double* const v = tables_[k]->values.data();
        if (v[0] == 0.0 || !(std::fabs(v[0]) < largest) || v[1] != v[0] || v[2] != v[0] || v[3] != v[0]) {
            return false;
        }
        values[k] = v[0];
    }
    return true;
}

bool ImFlatTables::look_up(KZB_STORE& store, Scheme scheme, const double* point, Values& values) {
    if (!known_ || revision_ != store.revision || scheme != scheme_ || generic_path_ != store.switches.generic_path ||
        store.keep_time || store.debug_lines || !is_inside(point) || !read(values)) {
        return false;
    }
    for (std::size_t k = 0; k < slots.size(); ++k) {
        store.timing[slots[k]] += calls_[k];
    }
    return true;
}

void ImFlatTables::begin(const KZB_STORE& store) {
    for (std::size_t k = 0; k < slots.size(); ++k) {
        calls_[k] = store.timing[slots[k]];
    }
}

void ImFlatTables::end(KZB_STORE& store, Scheme scheme, const double* point, const Refs& tables, const Values& values) {
    known_ = by_neighbours(scheme) && is_inside(point);
    for (std::size_t k = 0; known_ && k < count; ++k) {
        tables_[k] = tables[k]->table(store);
        known_ = tables_[k] != nullptr && has_flat_shape(*tables_[k]) && !tables[k]->folds(store);
    }
    Values flat{};
    known_ = known_ && read(flat) && flat == values;
    for (std::size_t k = 0; k < slots.size(); ++k) {
        calls_[k] = store.timing[slots[k]] - calls_[k];
    }
    scheme_ = scheme;
    generic_path_ = store.switches.generic_path;
    revision_ = store.revision;
}

}  // namespace kzb
