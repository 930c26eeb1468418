// KZB_TABLE: a dense array of doubles over the grids of its axes, and the operations that fill and read it by index.
//
//   position(i0 .. iN-1) = sum of i[a] * strides[a],  strides[a] = product of sizes[b] for b > a
//
// Values are row-major, the last axis varies fastest. Axes count from 1 in these operations, indices inside an axis
// from 0. An axis has no grid until its first node is set. A null table stands for an absent keyword: each operation
// then gives its own not-found result. Faults of an index print through perror and set no code.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "table/spline_memo.h"
#include "table/zeroed_array.h"

namespace kzb {

// What a lookup yields when no value could be formed: the largest finite double.
inline constexpr double KZB_NO_VALUE = 1.7976931348623157e308;
// Node tolerance of the table code, absolute, in axis units.
inline constexpr double KZB_AXIS_TOL = 1e-10;
// What table_get_cyclic_flag yields for an absent table or axis.
inline constexpr int KZB_NO_FLAG = 0x7fffffff;

}  // namespace kzb

namespace kzb {

// Where the last search on an axis ended, and whether its nodes are known to ascend; nodes written anew forget both.
// A memo alone: no result depends on it. Who writes nodes other than through table_set_axis_value does so on a table
// just created, before its first lookup.
struct AxisMemo {
    enum class Order : char { unknown, ascending, other };
    Order order = Order::unknown;
    int cell = 0;
};

}  // namespace kzb

struct KZB_TABLE {
    std::string keyword;
    int dim = 0;
    std::vector<int> sizes;
    kzb::ZeroedArray values;             // `total` doubles
    std::vector<kzb::ZeroedArray> axes;  // one per axis, null until its first node is set
    std::vector<int> cyclic;             // 1 or greater: cyclic
    std::vector<int> strides;
    std::int64_t file_position = 0;            // where the body lies in the file while it is not read yet, else 0
    int loaded = 0;                            // 1 once the body was read from the file
    int total = 0;                             // product of sizes
    mutable std::vector<kzb::AxisMemo> memos;  // one per axis
    mutable kzb::SplineMemo spline_memo;
};

namespace kzb {

// Gives `table` the shape `rows` with zero values and no grids; keeps its keyword. Result 1 for a row count below 1
// ("The num of row is zero.\n"), a negative dim or a product beyond int; the record then stays as far as it had come.
// Throws bad_alloc for want of memory, with a record that has no values.
int table_create(KZB_TABLE& table, int dim, const int* rows);
// Releases all arrays; keeps the keyword.
void table_free(KZB_TABLE& table);

// Throws bad_alloc where the grid finds no memory ("memory allocation error").
int table_set_axis_value(KZB_TABLE* table, int axis_no, int index, double value);
double table_get_axis_value(const KZB_TABLE* table, int axis_no, int index);
int table_set_cyclic_flag(KZB_TABLE* table, int axis_no, int flag);
int table_get_cyclic_flag(const KZB_TABLE* table, int axis_no);
int table_set_value(KZB_TABLE* table, const int* indices, double value);
double table_get_value(const KZB_TABLE* table, const int* indices);

// Reads and writes inside the schemes: KZB_NO_VALUE where the index is invalid.
double table_value_at(const KZB_TABLE& table, const int* indices);
void table_store_at(KZB_TABLE& table, const int* indices, double value);
// Two neighbours along the last axis; on a cyclic axis an index whose node lies at 360.0 counts as index 0.
void table_pair_at(const KZB_TABLE& table, const int* indices, double pair[2]);

}  // namespace kzb
