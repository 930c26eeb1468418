// The work of `kzb build generic`: description and CSV tables in, KZB model of motor type 10008 out.
#pragma once

#include <string>
#include <vector>

#include "kzb/build_grids.h"
#include "kzb/build_model.h"
#include "kzb/generic_description.h"

namespace kzb::tool {

// A table from the rows of a CSV file: axes as the description gives them, then the columns as last axis.
struct BuiltTable {
    std::vector<TableAxis> axes;
    std::vector<double> values;  // the last axis fastest
};

// `axes` are the columns of the coordinates; a period makes an axis cyclic and closes it with a copy of its first
// values. Failure(exit_file) for what is no full grid.
struct TableColumns {
    ColumnText column;
    std::optional<double> period;
};
BuiltTable read_table(const GenericDescription& description, const TableText& table,
                      const std::vector<TableColumns>& axes);

// Differential inductances of the coil set form by differences of the flux table: of sets of one coil without a motion,
// or of one set of three coils. Failure(exit_file) for other sets, which need a table of their own.
BuiltTable derive_inductances(const GenericDescription& description, const BuiltTable& flux);

struct GenericBuild {
    StorePointer store;
    std::vector<TableAxis> axes;  // of the flux table
    std::vector<std::string> notes;
};

// Failure(exit_file) also for a model that the calculator would refuse.
GenericBuild build_generic(const GenericDescription& description);

}  // namespace kzb::tool
