// The rows of a CSV table as a full grid: each combination of coordinates once, in any order of rows.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kzb/csv_table.h"

namespace kzb::tool {

// A coordinate of every row. `name` and `unit` stand in messages.
struct Coordinate {
    std::string name;
    std::string unit;
    std::vector<double> values;
};

struct RowGrid {
    std::vector<std::vector<double>> nodes;  // by axis, ascending
    std::vector<std::size_t> rows;           // of the table, for each point of the grid, the last axis fastest

    // A column in the order of the grid; empty for an empty one.
    std::vector<double> field(const std::vector<double>& column) const;
};

// Failure(exit_file) for scattered points, for a point given twice and for one that is missing.
RowGrid rows_on_grid(const CsvTable& csv, const std::vector<Coordinate>& axes);

// Failure(exit_file) when an axis has fewer nodes than `least`; `what` as in "the d current".
void require_nodes(const CsvTable& csv, const std::string& what, const std::vector<double>& nodes, std::size_t least);

}  // namespace kzb::tool
