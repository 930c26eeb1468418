// Loss table files: points of a full grid, a line each, that become a table of the store.
#pragma once

#include "store/store.h"

namespace kzb {

// Iron loss: `loss_table`/`iron_loss` of a machine of application PMSM Harmonic or IM, `ironloss`/`table` of a generic
// model. 0, or 1 with the cause in the store's error; the store is then as it was.
int add_loss_table(KZB_STORE& store, const char* path);

// Equivalent resistance of the copper loss: `equivalent_resistance_table`/`copper_loss` of a machine of application
// PMSM Harmonic. As above.
int add_copper_loss_table(KZB_STORE& store, const char* path);

}  // namespace kzb
