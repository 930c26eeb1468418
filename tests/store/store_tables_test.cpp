// Tables of the store: creation, grids, values, flags by category and key.
#include <gtest/gtest.h>

#include "test_store.h"

using kzb_test::TestStore;

namespace {

constexpr double no_value = 1.7976931348623157e308;

TEST(StoreTables, axis_allocated_by_one_node_shows_zero_for_the_others) {
    TestStore store;
    const int sizes[1] = {3};
    kzb_create_table("c", "t", 1, sizes, store);
    EXPECT_EQ(kzb_get_table_axis_value("c", "t", 1, 0, store), no_value);
    EXPECT_EQ(kzb_has_error(store), 90010);
    kzb_reset_error(store);
    EXPECT_EQ(kzb_set_table_axis_value("c", "t", 1, 1, 5.0, store), 0);
    EXPECT_EQ(kzb_get_table_axis_value("c", "t", 1, 0, store), 0.0);
    EXPECT_EQ(kzb_get_table_axis_value("c", "t", 1, 1, store), 5.0);
    EXPECT_EQ(kzb_has_error(store), 0);
}

TEST(StoreTables, invalid_axis_access_inside_a_category_is_error_90010) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {0.0, 0.0});
    struct Case {
        const char* key;
        int axis;
        int index;
    };
    for (const Case& c : {Case{"x", 1, 0}, Case{"t", 2, 0}, Case{"t", 1, 2}, Case{"t", 1, -1}}) {
        kzb_reset_error(store);
        EXPECT_EQ(kzb_get_table_axis_value("c", c.key, c.axis, c.index, store), no_value);
        EXPECT_EQ(kzb_has_error(store), 90010);
    }
    kzb_reset_error(store);
    EXPECT_EQ(kzb_get_table_axis_value("c", "t", 0, 0, store), 0.0);
    EXPECT_EQ(kzb_has_error(store), 0);
}

TEST(StoreTables, re_creation_keeps_the_position_and_clears_the_body) {
    TestStore store;
    store.line("c", "first", {0.0, 1.0}, {3.0, 4.0});
    store.line("c", "second", {0.0}, {9.0});
    const int sizes[2] = {2, 2};
    EXPECT_EQ(kzb_create_table("c", "first", 2, sizes, store), 0);
    EXPECT_STREQ(kzb_get_table_keyword("c", 0, store), "first");
    EXPECT_EQ(kzb_get_table_dim("c", "first", store), 2);
    const int corner[2] = {1, 1};
    EXPECT_EQ(kzb_get_table_value("c", "first", corner, store), 0.0);
    EXPECT_EQ(kzb_get_table_num_rows("c", "first", 2, store), 2);
    EXPECT_EQ(kzb_get_table_num_rows("c", "first", 0, store), 0);
    EXPECT_EQ(kzb_get_table_num_rows("c", "first", 3, store), 0);
}

TEST(StoreTables, size_below_one_stops_the_creation) {
    TestStore store;
    const int sizes[2] = {2, 0};
    testing::internal::CaptureStderr();
    EXPECT_EQ(kzb_create_table("c", "t", 2, sizes, store), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("The num of row is zero.\n", 0), 0U);
    EXPECT_EQ(kzb_has_category("c", store), 1);
    EXPECT_EQ(kzb_get_table_num("c", store), 1);
    // The partly made record is safe to use.
    const int corner[2] = {0, 0};
    const double at[2] = {0.0, 0.0};
    testing::internal::CaptureStderr();
    kzb_get_table_value("c", "t", corner, store);
    kzb_set_table_value("c", "t", corner, 1.0, store);
    for (const char* method : {"Linear", "Spline", "Cubic", "Spline6", "Spline4"}) {
        EXPECT_EQ(kzb_get_table_interpolated_value("c", "t", at, method, store), no_value) << method;
    }
    testing::internal::GetCapturedStderr();
}

TEST(StoreTables, value_at_an_invalid_index_is_one) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {3.0, 4.0});
    int index = 2;
    testing::internal::CaptureStderr();
    EXPECT_EQ(kzb_get_table_value("c", "t", &index, store), 1.0);
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("index is invalid: ", 0), 0U);
    testing::internal::CaptureStderr();
    EXPECT_EQ(kzb_set_table_value("c", "t", &index, 1.0, store), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("index is invalid\n: ", 0), 0U);
    EXPECT_EQ(kzb_get_table_value("c", "absent", &index, store), 0.0);
}

TEST(StoreTables, cyclic_flags_are_kept_as_given) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {3.0, 4.0});
    EXPECT_EQ(kzb_get_table_cyclic_flag("c", "t", 1, store), 0);
    EXPECT_EQ(kzb_set_table_cyclic_flag("c", "t", 1, -3, store), 0);
    EXPECT_EQ(kzb_get_table_cyclic_flag("c", "t", 1, store), -3);
    EXPECT_EQ(kzb_set_table_cyclic_flag("c", "t", 2, 1, store), 1);
    EXPECT_EQ(kzb_get_table_cyclic_flag("c", "t", 2, store), 2147483647);
}

}  // namespace
