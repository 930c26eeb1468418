// The tables that the induction model looks up, and what of the file decides between them.
#pragma once

#include <cstdint>

#include "store/lookup_front.h"

namespace kzb {

inline constexpr const char* im_constants = "InductionParam";
inline constexpr const char* im_tables = "InductionParam_HigherAccuracy";

struct ImTables {
    TableRef l11{im_tables, "L11_table"};
    TableRef m12{im_tables, "M12_table"};
    TableRef m21{im_tables, "M21_table"};
    TableRef l22{im_tables, "L22_table"};
    TableRef r2{im_tables, "R2_table"};
    TableRef ironloss{im_tables, "ironloss_table"};
    TableRef iron_loss{"loss_table", "iron_loss"};
    TableRef copper_loss{"equivalent_resistance_table", "copper_loss"};

    bool has_equivalent_resistance(const KZB_STORE& store) {
        refresh(store);
        return has_equivalent_resistance_;
    }
    // "R2_table" for writing; null where absent.
    KZB_TABLE* secondary_resistance(KZB_STORE& store) {
        refresh(store);
        if (secondary_revision_ != store.revision) {
            secondary_revision_ = store.revision;
            secondary_ = find_table(store, im_tables, "R2_table");
        }
        return secondary_;
    }

  private:
    void refresh(const KZB_STORE& store) {
        if (revision_ != store.revision) {
            revision_ = store.revision;
            has_equivalent_resistance_ = has_category(store, "equivalent_resistance_table");
        }
    }

    std::uint64_t revision_ = 0;
    std::uint64_t secondary_revision_ = 0;
    bool has_equivalent_resistance_ = false;
    KZB_TABLE* secondary_ = nullptr;
};

}  // namespace kzb
