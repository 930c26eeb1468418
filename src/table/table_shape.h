// The shape of a record apart from its values, for readers that place the values themselves.
#pragma once

#include "table/table.h"

namespace kzb {

// As table_create, but without values: they are null. False where table_create gives 1; throws as it does.
bool table_shape(KZB_TABLE& table, int dim, const int* rows);

}  // namespace kzb
