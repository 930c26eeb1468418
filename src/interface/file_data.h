// What the file offers beside the machine's main tables: iron loss and user copper loss data.
#pragma once

#include "interface/model_dispatch.h"

namespace kzb {

// The iron loss as one table, which depends on the supply.
inline bool has_loss_table(const KZB_CALC& handle) {
    return serves(handle, generic) ? has_parameter(*handle.store, "ironloss", "table")
                                   : has_parameter(*handle.store, "loss_table", "iron_loss");
}

inline bool has_user_copperloss(const KZB_CALC& handle) {
    return has_parameter(*handle.store, "equivalent_resistance_table", "copper_loss");
}

// Whether the file has iron loss data for its motor type.
inline bool has_ironloss(const KZB_CALC& handle) {
    const KZB_STORE& store = *handle.store;
    if (serves(handle, rotary_pm | wound_field) &&
        (has_category(store, "hysloss") || has_category(store, "eddyloss"))) {
        return true;
    }
    if (serves(handle, induction) && table_dim(store, "InductionParam_HigherAccuracy", "ironloss_table") > 0) {
        return true;
    }
    return serves(handle, rotary_pm | induction | generic) && has_loss_table(handle);
}

// Whether a loss that depends on the supply (DC voltage, carrier frequency) is in use.
inline bool supply_in_use(const KZB_CALC& handle, bool user_copperloss_on, bool ironloss_on) {
    return (has_user_copperloss(handle) && user_copperloss_on) || (has_loss_table(handle) && ironloss_on);
}

}  // namespace kzb
