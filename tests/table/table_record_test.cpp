// The record: creation, grids, flags.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "printed.h"
#include "table/lookup.h"

namespace {

using table_test::expect_text;
using table_test::printed_by;

TEST(TableCreate, gives_zero_values_no_grids_and_row_major_strides) {
    KZB_TABLE table;
    table.keyword = "flux";
    const int rows[] = {2, 3, 4};
    ASSERT_EQ(kzb::table_create(table, 3, rows), 0);
    EXPECT_EQ(table.keyword, "flux");
    EXPECT_EQ(table.total, 24);
    EXPECT_EQ(table.strides, (std::vector<int>{12, 4, 1}));
    EXPECT_EQ(table.cyclic, (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(table.file_position, 0);
    EXPECT_EQ(table.loaded, 0);
    for (std::size_t i = 0; i < 24; ++i) {
        EXPECT_EQ(table.values[i], 0.0);
    }
    for (const auto& axis : table.axes) {
        EXPECT_FALSE(axis);
    }
}

TEST(TableCreate, row_count_below_one_prints_and_leaves_a_safe_record) {
    for (const int bad : {0, -1, std::numeric_limits<int>::min()}) {
        KZB_TABLE table;
        const int rows[] = {3, bad, 2};
        int result = 0;
        expect_text(printed_by([&] { result = kzb::table_create(table, 3, rows); }), "The num of row is zero.\n");
        EXPECT_EQ(result, 1);
        EXPECT_EQ(table.dim, 3);
        EXPECT_EQ(table.sizes[0], 3);
        EXPECT_EQ(table.sizes[1], 0);
        EXPECT_EQ(table.total, 0);
        EXPECT_FALSE(table.values);
    }
}

TEST(TableCreate, partly_created_record_is_safe_in_every_operation) {
    KZB_TABLE table;
    const int rows[] = {3, 0};
    const int index[] = {1, 0};
    const double x[] = {0.5, 0.5};
    printed_by([&] {
        kzb::table_create(table, 2, rows);
        EXPECT_EQ(kzb::table_set_axis_value(&table, 1, 0, 1.0), 1);
        EXPECT_EQ(kzb::table_set_axis_value(&table, 2, 0, 1.0), 1);
        EXPECT_EQ(kzb::table_get_axis_value(&table, 1, 0), kzb::KZB_NO_VALUE);
        EXPECT_EQ(kzb::table_set_cyclic_flag(&table, 2, 1), 0);
        EXPECT_EQ(kzb::table_get_cyclic_flag(&table, 2), 1);
        EXPECT_EQ(kzb::table_set_value(&table, index, 1.0), 1);
        EXPECT_EQ(kzb::table_get_value(&table, index), 1.0);
        EXPECT_EQ(kzb::table_value_at(table, index), kzb::KZB_NO_VALUE);
        kzb::table_store_at(table, index, 1.0);
        double pair[2] = {};
        kzb::table_pair_at(table, index, pair);
        EXPECT_EQ(pair[0], kzb::KZB_NO_VALUE);
        EXPECT_EQ(pair[1], kzb::KZB_NO_VALUE);
        for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
            double result = 3.0;
            double timing[20] = {};
            kzb::table_lookup(kzb::scheme_of(method), &table, x, result, timing, {});
            EXPECT_EQ(result, kzb::KZB_NO_VALUE) << method;
            double results[2] = {};
            kzb::table_lookup_components(kzb::scheme_of(method), &table, x, 2, results, timing, {});
            EXPECT_EQ(results[1], kzb::KZB_NO_VALUE) << method;
        }
    });
}

TEST(TableCreate, refuses_negative_dim_and_products_beyond_int) {
    KZB_TABLE table;
    const int rows[] = {65536, 65536};
    EXPECT_EQ(kzb::table_create(table, -1, rows), 1);
    EXPECT_EQ(kzb::table_create(table, 2, rows), 1);
    EXPECT_EQ(kzb::table_create(table, 2, nullptr), 1);
    EXPECT_EQ(table.total, 0);
}

// The caller's rows end at the first bad one: no more is read, and no more memory asked for than that needs.
TEST(TableCreate, dim_beyond_all_measure_with_a_bad_row_is_refused_cheaply) {
    for (const int dim : {std::numeric_limits<int>::max(), 1 << 20}) {
        KZB_TABLE table;
        const std::vector<int> rows{2, 0};
        int result = 0;
        expect_text(printed_by([&] { result = kzb::table_create(table, dim, rows.data()); }),
                    "The num of row is zero.\n");
        EXPECT_EQ(result, 1);
        EXPECT_LT(table.sizes.capacity(), 10000U);
        // Its axes are those that it has places for.
        EXPECT_EQ(static_cast<std::size_t>(table.dim), table.sizes.size());
        EXPECT_EQ(table.cyclic.size(), table.sizes.size());
        EXPECT_EQ(table.sizes[0], 2);
        EXPECT_EQ(table.sizes[1], 0);
        EXPECT_EQ(kzb::table_get_axis_value(&table, dim, 0), kzb::KZB_NO_VALUE);
        EXPECT_EQ(kzb::table_set_cyclic_flag(&table, dim, 1), 1);
    }
}

TEST(TableCreate, dim_beyond_all_measure_with_too_many_values_is_refused_cheaply) {
    KZB_TABLE table;
    const std::vector<int> rows{65536, 65536};
    EXPECT_EQ(kzb::table_create(table, std::numeric_limits<int>::max(), rows.data()), 1);
    EXPECT_LT(table.sizes.capacity(), 10000U);
    EXPECT_EQ(table.total, 0);
    EXPECT_FALSE(table.values);
}

TEST(TableCreate, again_in_place_forgets_body_flags_and_place_in_the_file) {
    KZB_TABLE table;
    const int rows[] = {2};
    kzb::table_create(table, 1, rows);
    kzb::table_set_axis_value(&table, 1, 1, 5.0);
    kzb::table_set_cyclic_flag(&table, 1, 1);
    const int index[] = {1};
    kzb::table_set_value(&table, index, 7.0);
    table.file_position = 99;
    table.loaded = 1;
    ASSERT_EQ(kzb::table_create(table, 1, rows), 0);
    EXPECT_EQ(kzb::table_get_value(&table, index), 0.0);
    EXPECT_EQ(kzb::table_get_cyclic_flag(&table, 1), 0);
    EXPECT_EQ(kzb::table_get_axis_value(&table, 1, 1), kzb::KZB_NO_VALUE);
    EXPECT_EQ(table.file_position, 0);
    EXPECT_EQ(table.loaded, 0);
}

TEST(TableFree, keeps_the_keyword_and_may_run_twice) {
    KZB_TABLE table;
    table.keyword = "torque";
    const int rows[] = {2};
    kzb::table_create(table, 1, rows);
    kzb::table_free(table);
    kzb::table_free(table);
    EXPECT_EQ(table.keyword, "torque");
    EXPECT_FALSE(table.values);
}

struct SmallTable : testing::Test {
    SmallTable() {
        const int rows[] = {2, 3};
        kzb::table_create(table, 2, rows);
    }
    KZB_TABLE table;
};

TEST_F(SmallTable, axis_is_allocated_on_first_use_and_its_other_nodes_are_zero) {
    EXPECT_EQ(kzb::table_get_axis_value(&table, 2, 0), kzb::KZB_NO_VALUE);
    EXPECT_EQ(kzb::table_set_axis_value(&table, 2, 2, 4.5), 0);
    EXPECT_EQ(kzb::table_get_axis_value(&table, 2, 2), 4.5);
    EXPECT_EQ(kzb::table_get_axis_value(&table, 2, 0), 0.0);
    EXPECT_FALSE(table.axes[0]);
}

TEST_F(SmallTable, axis_faults_print_and_give_one) {
    const auto set = [&](int axis, int index) {
        return printed_by([&] { EXPECT_EQ(kzb::table_set_axis_value(&table, axis, index, 1.0), 1); });
    };
    expect_text(set(0, 0), "invalid axis no");
    expect_text(set(3, 0), "invalid axis no");
    expect_text(set(1, -1), "invalid axis index");
    expect_text(set(1, 2), "invalid axis index");
    const int places[][2] = {{0, 0}, {3, 0}, {1, -1}, {1, 2}};
    for (const auto& place : places) {
        const auto get = [&] { EXPECT_EQ(kzb::table_get_axis_value(&table, place[0], place[1]), kzb::KZB_NO_VALUE); };
        EXPECT_EQ(printed_by(get), "");
    }
}

TEST_F(SmallTable, flag_faults_are_silent) {
    EXPECT_EQ(printed_by([&] {
                  EXPECT_EQ(kzb::table_set_cyclic_flag(&table, 0, 1), 1);
                  EXPECT_EQ(kzb::table_set_cyclic_flag(&table, 3, 1), 1);
                  EXPECT_EQ(kzb::table_get_cyclic_flag(&table, 0), 0x7fffffff);
                  EXPECT_EQ(kzb::table_get_cyclic_flag(&table, 3), 0x7fffffff);
              }),
              "");
    EXPECT_EQ(kzb::table_set_cyclic_flag(&table, 2, -3), 0);
    EXPECT_EQ(kzb::table_get_cyclic_flag(&table, 2), -3);
}

}  // namespace
