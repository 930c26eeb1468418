// A table seen along one or two of its axes, the others held at a value.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "table/table.h"

namespace kzb::tool {

struct TableView {
    const KZB_TABLE* table = nullptr;
    std::string name;           // "category/key"
    int x = 1;                  // axes count from 1
    std::optional<int> y;       // curve family, or second axis of a map
    std::vector<double> fixed;  // coordinate per axis, those of x and y unused

    int nodes(int axis) const { return table->sizes[static_cast<std::size_t>(axis - 1)]; }
    double node(int axis, int index) const;
    // The table at a node of x and, if there is a y, of y; linear between the nodes of the axes held.
    double at(int x_index, int y_index) const;
};

// `axes` as "1" or "1,3"; each of `held` as "2=45.0", or "2=#3" for a node by index from 0. An axis that is not told is
// held at its first node. Failure(exit_usage) for anything that does not fit the table.
TableView view_of(const KZB_TABLE& table, const std::string& name, const std::string& axes,
                  const std::vector<std::string>& held);

}  // namespace kzb::tool
