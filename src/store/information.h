// Rows that a file offers to a user interface: category, key and kind of the parameters present and not hidden.
#pragma once

#include "store/store.h"

namespace kzb {

enum class InformationRows { basic, motor };

// Number of visible rows.
int information_count(const KZB_STORE& store, InformationRows rows);

// The `index`-th visible row; two empty texts beyond the last.
KZB_INFORMATION information_at(const KZB_STORE& store, InformationRows rows, int index);

}  // namespace kzb
