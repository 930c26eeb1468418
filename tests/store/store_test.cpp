#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_store.h"

using kzb_test::TestStore;

namespace {

constexpr double no_value = 1.7976931348623157e308;

TEST(Store, query_on_an_empty_store_gives_the_absent_value_and_no_error) {
    TestStore store;
    const int first[1] = {0};
    EXPECT_EQ(kzb_get_category_num(store), 0);
    EXPECT_EQ(kzb_get_category_name(0, store), nullptr);
    EXPECT_EQ(kzb_has_category("control", store), 0);
    EXPECT_EQ(kzb_has_parameter("control", "motor_type", store), 0);
    EXPECT_EQ(kzb_get_int("control", "motor_type", store), 0);
    EXPECT_EQ(kzb_get_double("control", "beta_zero", store), 0.0);
    EXPECT_EQ(kzb_get_string("information", "title", store), nullptr);
    EXPECT_EQ(kzb_get_int_num("control", store), 0);
    EXPECT_EQ(kzb_get_double_num("control", store), 0);
    EXPECT_EQ(kzb_get_string_num("control", store), 0);
    EXPECT_EQ(kzb_get_table_num("control", store), 0);
    EXPECT_EQ(kzb_get_int_keyword("control", 0, store), nullptr);
    EXPECT_EQ(kzb_get_double_keyword("control", 0, store), nullptr);
    EXPECT_EQ(kzb_get_string_keyword("control", 0, store), nullptr);
    EXPECT_EQ(kzb_get_table_keyword("control", 0, store), nullptr);
    EXPECT_EQ(kzb_get_table_dim("a", "t", store), 0);
    EXPECT_EQ(kzb_get_table_num_rows("a", "t", 1, store), 0);
    EXPECT_EQ(kzb_get_table_axis_value("a", "t", 1, 0, store), 0.0);
    EXPECT_EQ(kzb_set_table_axis_value("a", "t", 1, 0, 1.0, store), 1);
    EXPECT_EQ(kzb_get_table_value("a", "t", first, store), 0.0);
    EXPECT_EQ(kzb_set_table_value("a", "t", first, 1.0, store), 1);
    EXPECT_EQ(kzb_get_table_cyclic_flag("a", "t", 1, store), 2147483647);
    EXPECT_EQ(kzb_set_table_cyclic_flag("a", "t", 1, 1, store), 1);
    EXPECT_EQ(kzb_has_error(store), 0);
    EXPECT_EQ(kzb_has_warning(store), 0);
    EXPECT_EQ(kzb_get_category_num(store), 0);
}

TEST(Store, null_handle_and_null_texts_give_the_absent_value) {
    TestStore store;
    const double at[1] = {0.0};
    const int one[1] = {1};
    kzb_initialize(nullptr);
    kzb_finish(nullptr);
    EXPECT_EQ(kzb_reader("file", nullptr), 1);
    kzb_writer("file", nullptr);
    kzb_writer(nullptr, store);
    EXPECT_EQ(kzb_get_time(nullptr, 0), 0.0);
    EXPECT_EQ(kzb_get_time(store, -1), 0.0);
    EXPECT_EQ(kzb_get_time(store, 20), 0.0);
    EXPECT_EQ(kzb_put_int("a", "b", 1, nullptr), 1);
    EXPECT_EQ(kzb_put_int(nullptr, "b", 1, store), 1);
    EXPECT_EQ(kzb_put_double("a", nullptr, 1.0, store), 1);
    EXPECT_EQ(kzb_put_string("a", "b", nullptr, store), 1);
    EXPECT_EQ(kzb_create_table("a", "b", 1, nullptr, store), 1);
    EXPECT_EQ(kzb_create_table("a", "b", 1, one, nullptr), 1);
    EXPECT_EQ(kzb_get_category_num(store), 0);
    EXPECT_EQ(kzb_get_table_interpolated_value("a", "b", at, "Linear", nullptr), no_value);
    EXPECT_EQ(kzb_get_table_interpolated_value("a", "b", nullptr, "Linear", store), no_value);
    EXPECT_EQ(kzb_get_table_interpolated_value(nullptr, nullptr, nullptr, nullptr, store), no_value);
    EXPECT_EQ(kzb_get_int(nullptr, nullptr, store), 0);
    EXPECT_EQ(kzb_get_subcategory_num(nullptr, nullptr, store), 0);
    EXPECT_STREQ(kzb_get_child_subcategory_name(nullptr, nullptr, 0, store), "");
    EXPECT_EQ(kzb_has_application(nullptr, nullptr, store), 0);
    EXPECT_EQ(kzb_get_application(nullptr, 0).first, nullptr);
    EXPECT_STREQ(kzb_get_basic_information(nullptr, 0).first, "");
    EXPECT_EQ(kzb_has_error(nullptr), 0);
    EXPECT_EQ(kzb_has_warning(nullptr), 0);
    kzb_reset_error(nullptr);
    kzb_reset_warning(nullptr);
    kzb_set_application(nullptr, nullptr, store);
    EXPECT_EQ(kzb_make_dq0_from_UVW(nullptr), 0);
    EXPECT_EQ(kzb_make_dq0_from_UVW_current(nullptr), 0);
    EXPECT_EQ(kzb_make_UVW_from_dq0(nullptr), 0);
    EXPECT_EQ(kzb_make_UVW_from_dq0_current(nullptr), 0);
    EXPECT_EQ(kzb_make_LdLq(nullptr), 0);
    EXPECT_EQ(kzb_apply_skew(0, 0, 0, 0, 0, 0, nullptr, nullptr), 1);
}

TEST(Store, null_path_reads_like_a_file_that_cannot_be_opened) {
    TestStore store;
    EXPECT_EQ(kzb_reader(nullptr, store), 1);
    EXPECT_EQ(kzb_has_error(store), 90001);
}

TEST(Store, two_puts_with_one_key_leave_one_entry_with_the_second_value) {
    TestStore store;
    EXPECT_EQ(kzb_put_int("control", "a", 1, store), 0);
    EXPECT_EQ(kzb_put_int("control", "b", 2, store), 0);
    EXPECT_EQ(kzb_put_int("control", "a", 3, store), 0);
    EXPECT_EQ(kzb_get_int_num("control", store), 2);
    EXPECT_STREQ(kzb_get_int_keyword("control", 0, store), "a");
    EXPECT_STREQ(kzb_get_int_keyword("control", 1, store), "b");
    EXPECT_EQ(kzb_get_int("control", "a", store), 3);
}

TEST(Store, lists_of_the_four_kinds_are_apart) {
    TestStore store;
    kzb_put_int("c", "k", 7, store);
    kzb_put_double("c", "k", 2.5, store);
    kzb_put_string("c", "k", "text", store);
    store.line("c", "k", {0.0, 1.0}, {4.0, 6.0});
    EXPECT_EQ(kzb_get_int("c", "k", store), 7);
    EXPECT_EQ(kzb_get_double("c", "k", store), 2.5);
    EXPECT_STREQ(kzb_get_string("c", "k", store), "text");
    EXPECT_EQ(kzb_get_table_dim("c", "k", store), 1);
    EXPECT_EQ(kzb_get_table_num("c", store), 1);
    EXPECT_STREQ(kzb_get_table_keyword("c", 0, store), "k");
    EXPECT_EQ(kzb_get_table_keyword("c", 1, store), nullptr);
    EXPECT_EQ(kzb_get_table_keyword("c", -1, store), nullptr);
}

TEST(Store, shorter_text_keeps_the_buffer_of_the_longer_one) {
    TestStore store;
    kzb_put_string("information", "title", "a title of some length, beyond any small buffer", store);
    const char* earlier = kzb_get_string("information", "title", store);
    kzb_put_string("information", "title", "short", store);
    EXPECT_EQ(kzb_get_string("information", "title", store), earlier);
    EXPECT_STREQ(earlier, "short");
}

TEST(Store, has_parameter_finds_a_key_of_any_kind) {
    TestStore store;
    kzb_put_int("c", "i", 0, store);
    kzb_put_double("c", "d", 0.0, store);
    kzb_put_string("c", "s", "", store);
    store.line("c", "t", {0.0}, {0.0});
    for (const char* key : {"i", "d", "s", "t"}) {
        EXPECT_EQ(kzb_has_parameter("c", key, store), 1) << key;
    }
    EXPECT_EQ(kzb_has_parameter("c", "I", store), 0);
    EXPECT_EQ(kzb_has_parameter("C", "i", store), 0);
}

TEST(Store, names_of_256_bytes_are_refused_and_nothing_is_created) {
    TestStore store;
    const std::string limit(256, 'n');
    const std::string longest(255, 'n');
    const int one[1] = {1};
    EXPECT_EQ(kzb_put_int(limit.c_str(), "k", 1, store), 1);
    EXPECT_EQ(kzb_put_double("c", limit.c_str(), 1.0, store), 1);
    EXPECT_EQ(kzb_create_table(limit.c_str(), "k", 1, one, store), 1);
    EXPECT_EQ(kzb_create_table("c", limit.c_str(), 1, one, store), 1);
    EXPECT_EQ(kzb_get_category_num(store), 0);
    EXPECT_EQ(kzb_put_int(longest.c_str(), longest.c_str(), 5, store), 0);
    EXPECT_EQ(kzb_get_int(longest.c_str(), longest.c_str(), store), 5);
}

TEST(Store, categories_keep_the_order_of_first_insertion) {
    TestStore store;
    kzb_put_int("z", "k", 1, store);
    kzb_put_int("a", "k", 1, store);
    kzb_put_double("z", "d", 1.0, store);
    ASSERT_EQ(kzb_get_category_num(store), 2);
    EXPECT_STREQ(kzb_get_category_name(0, store), "z");
    EXPECT_STREQ(kzb_get_category_name(1, store), "a");
    EXPECT_EQ(kzb_get_category_name(-1, store), nullptr);
    EXPECT_EQ(kzb_get_category_name(2, store), nullptr);
}

TEST(Store, version_of_the_store) {
    EXPECT_STREQ(kzb_get_filehandler_version(), "19.12.18");
}

}  // namespace
