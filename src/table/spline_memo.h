// What the whole-axis splines of a table keep from one lookup to the next: working memory, and the coefficients of the
// lines of a small table.
//
// Beside the coefficients of a line stand the nodes and values they were formed of; they serve again only where these
// are the same to the last bit. So nobody has to tell the memo that a table has changed, and no result depends on it.
#pragma once

#include <cstddef>
#include <vector>

#include "table/zeroed_array.h"

struct KZB_TABLE;

namespace kzb {

class SplineMemo {
  public:
    // Lines longer than this, or tables larger, are not kept.
    static constexpr int most_rows = 256;
    static constexpr int most_values = 4096;

    // Coefficients [rows] of the natural spline through `values` [rows], the line of `table` along axis `a` that begins
    // at `first`; null where the table is too large or memory ran out.
    const double* coefficients(const KZB_TABLE& table, std::size_t a, const double* first, const double* values);

    // Working memory for `count` doubles, grown and kept with the table; null when memory ran out.
    double* work(std::size_t count);

  private:
    bool make_room(const KZB_TABLE& table, std::size_t a);

    std::size_t axis_ = 0;
    int rows_ = 0;
    int total_ = -1;
    std::vector<double> store_;  // per line: nodes, values, coefficients [rows] each
    std::vector<char> formed_;   // per line
    ZeroedArray work_;
};

}  // namespace kzb
