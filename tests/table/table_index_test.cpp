// The record: reading and writing by index.
#include <gtest/gtest.h>

#include <vector>

#include "printed.h"
#include "table/lookup.h"

namespace {

using table_test::expect_text;
using table_test::printed_by;

struct SmallTableIndex : testing::Test {
    SmallTableIndex() {
        const int rows[] = {2, 3};
        kzb::table_create(table, 2, rows);
    }
    KZB_TABLE table;
};

TEST_F(SmallTableIndex, values_lie_row_major) {
    const int index[] = {1, 2};
    EXPECT_EQ(kzb::table_set_value(&table, index, 6.5), 0);
    EXPECT_EQ(table.values[5], 6.5);
    EXPECT_EQ(kzb::table_get_value(&table, index), 6.5);
    EXPECT_EQ(kzb::table_value_at(table, index), 6.5);
    kzb::table_store_at(table, index, 7.5);
    EXPECT_EQ(table.values[5], 7.5);
}

TEST_F(SmallTableIndex, index_beyond_the_grid_has_a_result_per_operation) {
    for (const auto& index : {std::vector<int>{0, 3}, {2, 0}, {-1, 0}, {0, -1}}) {
        expect_text(printed_by([&] { EXPECT_EQ(kzb::table_set_value(&table, index.data(), 1.0), 1); }),
                    "index is invalid\n");
        expect_text(printed_by([&] { EXPECT_EQ(kzb::table_get_value(&table, index.data()), 1.0); }),
                    "index is invalid");
        expect_text(printed_by([&] { EXPECT_EQ(kzb::table_value_at(table, index.data()), kzb::KZB_NO_VALUE); }),
                    "index is invalid");
        expect_text(printed_by([&] { kzb::table_store_at(table, index.data(), 1.0); }), "index is invalid");
    }
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(table.values[i], 0.0);
    }
}

TEST_F(SmallTableIndex, position_beyond_the_body_overflows) {
    table.values.reset();
    table.total = 0;
    const int index[] = {0, 0};
    expect_text(printed_by([&] { EXPECT_EQ(kzb::table_set_value(&table, index, 1.0), 1); }), "index is overflow");
    expect_text(printed_by([&] { EXPECT_EQ(kzb::table_get_value(&table, index), 1.0); }), "index is overflow");
    double pair[2] = {};
    expect_text(printed_by([&] { kzb::table_pair_at(table, index, pair); }), "index is overflow");
}

TEST(AbsentTable, every_operation_has_its_not_found_result) {
    const int index[] = {0};
    const double x[] = {0.0};
    EXPECT_EQ(printed_by([&] {
                  EXPECT_EQ(kzb::table_set_axis_value(nullptr, 1, 0, 1.0), 1);
                  EXPECT_EQ(kzb::table_get_axis_value(nullptr, 1, 0), kzb::KZB_NO_VALUE);
                  EXPECT_EQ(kzb::table_set_cyclic_flag(nullptr, 1, 1), 1);
                  EXPECT_EQ(kzb::table_get_cyclic_flag(nullptr, 1), 0x7fffffff);
                  EXPECT_EQ(kzb::table_set_value(nullptr, index, 1.0), 1);
                  EXPECT_EQ(kzb::table_get_value(nullptr, index), 0.0);
                  double result = 3.0;
                  double timing[20] = {};
                  EXPECT_EQ(kzb::table_lookup(kzb::Scheme::linear, nullptr, x, result, timing, {}), 90006);
                  EXPECT_EQ(result, 3.0);
              }),
              "");
}

TEST(NegativeDim, prints_its_own_text) {
    KZB_TABLE table;
    table.dim = -1;
    const int index[] = {0};
    expect_text(printed_by([&] { EXPECT_EQ(kzb::table_set_value(&table, index, 1.0), 1); }), "invalid dimension table");
    expect_text(printed_by([&] { EXPECT_EQ(kzb::table_get_value(&table, index), 1.0); }), "invalid dimension table");
    expect_text(printed_by([&] { EXPECT_EQ(kzb::table_value_at(table, index), kzb::KZB_NO_VALUE); }),
                "invalid dimension table");
    double pair[2] = {};
    expect_text(printed_by([&] { kzb::table_pair_at(table, index, pair); }), "invalid dimension table");
}

TEST(TablePair, full_turn_counts_as_its_start_on_cyclic_axes) {
    KZB_TABLE table;
    const int rows[] = {3, 2};
    kzb::table_create(table, 2, rows);
    for (std::size_t i = 0; i < 6; ++i) {
        table.values[i] = 10.0 * static_cast<double>(i);
    }
    kzb::table_set_axis_value(&table, 1, 1, 180.0);
    kzb::table_set_axis_value(&table, 1, 2, 360.0 + 5e-11);
    const int index[] = {2, 0};
    double pair[2] = {};
    kzb::table_pair_at(table, index, pair);
    EXPECT_EQ(pair[0], 40.0);
    EXPECT_EQ(pair[1], 50.0);
    kzb::table_set_cyclic_flag(&table, 1, 1);
    kzb::table_pair_at(table, index, pair);
    EXPECT_EQ(pair[0], 0.0);
    EXPECT_EQ(pair[1], 10.0);
    // No neighbour behind the last one.
    const int end[] = {0, 1};
    expect_text(printed_by([&] { kzb::table_pair_at(table, end, pair); }), "index is invalid");
    EXPECT_EQ(pair[0], kzb::KZB_NO_VALUE);
}

}  // namespace
