// Reading, writing and copying of whole tables, as the transforms need it.
//
// A pointer to a table dies with the next insertion into its category: create all tables first, then take pointers.
#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include "table/table.h"

struct KZB_STORE;

namespace kzb {

// Rows of an axis from 1 of a table that has values; 0 for any other table or axis.
int filled_rows(const KZB_TABLE* table, int axis);

// The nodes of an axis from 1. On an axis without a grid each is KZB_NO_VALUE, and the store's error is 90010.
std::vector<double> nodes_of(KZB_STORE& store, const KZB_TABLE* table, int axis);

void set_nodes(KZB_TABLE* table, int axis, const std::vector<double>& nodes);
void copy_axis(KZB_STORE& store, const KZB_TABLE* from, int from_axis, KZB_TABLE* to, int to_axis);
void set_cyclic_flags(KZB_TABLE* table, std::initializer_list<int> flags);

// Values of a table by index. Axes beyond the given indices are taken at 0, so that a table of more axes than its user
// expects is read within its bounds.
class Cells {
  public:
    Cells(KZB_TABLE* table, std::size_t given);
    double get(std::initializer_list<int> indices);
    void set(std::initializer_list<int> indices, double value);
    void set(const std::vector<int>& indices, double value);

  private:
    const int* padded(std::initializer_list<int> indices);
    KZB_TABLE* table_;
    std::vector<int> indices_;
};

// Copies shape, values, grids and cyclic flags of category/from to category/to. An absent table is copied as one of no
// axes; an axis without a grid gets one of KZB_NO_VALUE, as it reads. 0, or 1 when the copy could not be made.
int copy_table(KZB_STORE& store, std::string_view category, std::string_view from, std::string_view to);

// Steps an index vector through a table, last axis fastest; false after the last point.
bool next_point(std::vector<int>& indices, const std::vector<int>& sizes);

}  // namespace kzb
