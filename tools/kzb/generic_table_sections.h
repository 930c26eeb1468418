// Parts of a generic description that tell of its tables, in the order in which they are read.
#pragma once

#include <string>
#include <vector>

#include "kzb/generic_description.h"
#include "kzb/generic_reader.h"

namespace kzb::tool {

// column and scale.
ColumnText read_column(Section& section);

void read_coil_sets(Section& root, GenericDescription& description);

// Variables of expressions and parameters of corrections, then the axes, which name them.
void read_variables(Section& root, GenericDescription& description);
void read_axes(Section& root, GenericDescription& description);

// Flux, force, inductance, outputs, iron loss.
void read_value_tables(Section& root, GenericDescription& description);

}  // namespace kzb::tool
