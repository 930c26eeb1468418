// Tables that a model looks up one after the other at one point: with the same axes they are searched once.
//
// What the lookups leave behind is what single ones leave. Nodes are compared when the store's `revision` has changed;
// whoever moves nodes of a table that a model has bound counts as one who changes the store.
#pragma once

#include <array>
#include <cstdint>

#include "store/lookup_front.h"

namespace kzb {

template <std::size_t Count>
class SiblingTables {
  public:
    using Refs = std::array<TableRef*, Count>;
    using Values = std::array<double, Count>;

    // Values of `refs`, in this order, at point[0..axes-1].
    void look_up(KZB_STORE& store, const Method& method, const Refs& refs, const double* point, int axes,
                 Values& values) {
        if (!store.keep_time && !store.debug_lines && agree(store, refs, axes)) {
            std::array<int, Count> statuses{};
            if (table_lookup_siblings(method.scheme, tables_.data(), static_cast<int>(Count), point, values.data(),
                                      statuses.data(), store.timing, store.switches)) {
                for (std::size_t k = 0; k < Count; ++k) {
                    if (statuses[k] > 0) {
                        keep_status(store, tables_[k], statuses[k], point, axes);
                    }
                }
                return;
            }
        }
        for (std::size_t k = 0; k < Count; ++k) {
            values[k] = refs[k]->at(store, method, point, axes);
        }
    }

  private:
    bool agree(const KZB_STORE& store, const Refs& refs, int axes) {
        if (revision_ != store.revision) {
            revision_ = store.revision;
            agree_ = true;
            for (std::size_t k = 0; k < Count; ++k) {
                tables_[k] = refs[k]->table(store);
                agree_ = agree_ && tables_[k] != nullptr && tables_[k]->dim == axes && !refs[k]->folds(store) &&
                         table_has_same_axes(*tables_[0], *tables_[k]);
            }
        }
        return agree_;
    }

    std::uint64_t revision_ = 0;
    bool agree_ = false;
    std::array<const KZB_TABLE*, Count> tables_{};
};

}  // namespace kzb
