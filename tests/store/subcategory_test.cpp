#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <locale>

#include "test_store.h"

using kzb_test::TestStore;

namespace {

TEST(Subcategory, flat_name_joins_path_and_indices) {
    TestStore store;
    const int indices[3] = {0, 3, 1};
    EXPECT_EQ(kzb_put_subcategory_int("element_type_list;element_type;interacted_coil", indices, "id", 5, store), 0);
    EXPECT_STREQ(kzb_get_category_name(0, store), "element_type_list;0;element_type;3;interacted_coil;1;");
    // The three separators are alike.
    EXPECT_EQ(kzb_get_subcategory_int("element_type_list,element_type:interacted_coil", indices, "id", store), 5);
    EXPECT_EQ(kzb_has_subcategory("element_type_list;element_type;interacted_coil", indices, store), 1);
    EXPECT_EQ(kzb_has_subcategory_parameter("element_type_list;element_type;interacted_coil", indices, "id", store), 1);
    EXPECT_EQ(kzb_has_subcategory_parameter("element_type_list;element_type;interacted_coil", indices, "x", store), 0);
}

TEST(Subcategory, number_ignores_the_last_index_and_counts_distinct_texts) {
    TestStore store;
    for (const int second : {0, 4, 9}) {
        const int indices[2] = {0, second};
        kzb_put_subcategory_int("list;item", indices, "k", second, store);
    }
    const int deeper[3] = {0, 4, 2};
    kzb_put_subcategory_int("list;item;part", deeper, "k", 1, store);
    const int other[2] = {1, 7};
    kzb_put_subcategory_int("list;item", other, "k", 1, store);
    const int any_last[2] = {0, 12345};
    EXPECT_EQ(kzb_get_subcategory_num("list;item", any_last, store), 3);  // 0, 4 and 9 below list;0
    const int second_list[2] = {1, 0};
    EXPECT_EQ(kzb_get_subcategory_num("list;item", second_list, store), 1);
    EXPECT_EQ(kzb_get_subcategory_num("list", nullptr, store), 2);
    EXPECT_EQ(kzb_get_subcategory_num("absent", nullptr, store), 0);
}

TEST(Subcategory, a_list_is_found_wherever_its_name_first_occurs_in_that_of_a_category) {
    TestStore store;
    kzb_put_int("list;0;item;7;", "k", 1, store);
    kzb_put_int("xlist;0;item;7;", "k", 1, store);               // x7
    kzb_put_int("deep;1;list;0;item;3;", "k", 1, store);         // deep
    kzb_put_int("list;0;item;7;list;0;item;8;", "k", 1, store);  // 7 again
    kzb_put_int("list;0;item;", "k", 1, store);                  // an empty text
    kzb_put_int("ylist;0;item;", "k", 1, store);                 // y
    const int first[2] = {0, 0};
    EXPECT_EQ(kzb_get_subcategory_num("list;item", first, store), 5);
}

TEST(Subcategory, children_are_sorted_distinct_names_behind_the_whole_path) {
    TestStore store;
    const int zero[2] = {0, 0};
    const int one[2] = {0, 1};
    kzb_put_subcategory_int("root;zeta", zero, "k", 1, store);
    kzb_put_subcategory_int("root;alpha", zero, "k", 1, store);
    kzb_put_subcategory_int("root;alpha", one, "k", 1, store);
    EXPECT_EQ(kzb_get_child_subcategory_num("root", zero, store), 2);
    EXPECT_STREQ(kzb_get_child_subcategory_name("root", zero, 0, store), "alpha");
    EXPECT_STREQ(kzb_get_child_subcategory_name("root", zero, 1, store), "zeta");
    EXPECT_STREQ(kzb_get_child_subcategory_name("root", zero, 2, store), "");
    EXPECT_STREQ(kzb_get_child_subcategory_name("root", zero, -1, store), "");
}

TEST(Subcategory, absent_string_is_empty_without_the_category_and_null_without_the_key) {
    TestStore store;
    const int indices[1] = {2};
    EXPECT_STREQ(kzb_get_subcategory_string("a", indices, "s", store), "");
    kzb_put_subcategory_string("a", indices, "other", "text", store);
    EXPECT_EQ(kzb_get_subcategory_string("a", indices, "s", store), nullptr);
    EXPECT_STREQ(kzb_get_subcategory_string("a", indices, "other", store), "text");
    kzb_put_subcategory_double("a", indices, "d", 0.25, store);
    EXPECT_EQ(kzb_get_subcategory_double("a", indices, "d", store), 0.25);
}

TEST(Subcategory, tables_do_what_plain_tables_do) {
    TestStore store;
    const int indices[1] = {1};
    const int sizes[1] = {2};
    ASSERT_EQ(kzb_create_subcategory_table("a", indices, "t", 1, sizes, store), 0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(kzb_set_subcategory_table_axis_value("a", indices, "t", 1, i, 10.0 * i, store), 0);
        EXPECT_EQ(kzb_set_subcategory_table_value("a", indices, "t", &i, 4.0 + i, store), 0);
    }
    EXPECT_EQ(kzb_set_subcategory_table_cyclic_flag("a", indices, "t", 1, 1, store), 0);
    EXPECT_EQ(kzb_get_subcategory_table_cyclic_flag("a", indices, "t", 1, store), 1);
    EXPECT_EQ(kzb_get_subcategory_table_dim("a", indices, "t", store), 1);
    EXPECT_EQ(kzb_get_subcategory_table_num_rows("a", indices, "t", 1, store), 2);
    EXPECT_EQ(kzb_get_subcategory_table_axis_value("a", indices, "t", 1, 1, store), 10.0);
    const double at[1] = {12.5};  // wraps to 2.5: 4 + 0.25
    EXPECT_EQ(kzb_get_subcategory_table_interpolated_value("a", indices, "t", at, "Linear", store), 4.25);
    const int absent[1] = {2};
    EXPECT_EQ(kzb_set_subcategory_table_value("a", absent, "t", indices, 1.0, store), 1);
    EXPECT_EQ(kzb_set_subcategory_table_axis_value("a", absent, "t", 1, 0, 1.0, store), 1);
    EXPECT_EQ(kzb_set_subcategory_table_cyclic_flag("a", absent, "t", 1, 1, store), 1);
    EXPECT_EQ(kzb_get_subcategory_table_axis_value("a", indices, "t", 1, 7, store), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 90010);
}

TEST(Subcategory, separators_without_an_element_need_no_index) {
    TestStore store;
    const int indices[2] = {3, 4};
    kzb_put_subcategory_int(";a;;b;", indices, "k", 1, store);
    EXPECT_STREQ(kzb_get_category_name(0, store), "a;3;b;4;");
    EXPECT_EQ(kzb_put_subcategory_int(";", indices, "k", 1, store), 1);
    EXPECT_EQ(kzb_put_subcategory_int("", indices, "k", 1, store), 1);
}

// A host that groups thousands.
class Grouping : public std::numpunct<char> {
  protected:
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(Subcategory, indices_are_plain_decimals_under_a_locale_that_groups_digits) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    TestStore store;
    for (const int index : {12345, -1234567, std::numeric_limits<int>::min()}) {
        kzb_put_subcategory_int("a", &index, "k", 1, store);
    }
    std::locale::global(before);
    EXPECT_STREQ(kzb_get_category_name(0, store), "a;12345;");
    EXPECT_STREQ(kzb_get_category_name(1, store), "a;-1234567;");
    EXPECT_STREQ(kzb_get_category_name(2, store), "a;-2147483648;");
}

TEST(Subcategory, null_path_indices_or_key_give_the_absent_value_of_each_call) {
    TestStore store;
    const int zero[1] = {0};
    const double x[1] = {0.0};
    constexpr double no_value = 1.7976931348623157e308;
    ASSERT_EQ(kzb_create_subcategory_table("a", zero, "t", 1, std::array{1}.data(), store), 0);
    struct Names {
        const char* path;
        const int* indices;
        const char* key;
    };
    for (const Names& n : {Names{nullptr, zero, "t"}, {"a", nullptr, "t"}, {"a", zero, nullptr}}) {
        EXPECT_EQ(kzb_has_subcategory_parameter(n.path, n.indices, n.key, store), 0);
        EXPECT_EQ(kzb_get_subcategory_int(n.path, n.indices, n.key, store), 0);
        EXPECT_EQ(kzb_get_subcategory_double(n.path, n.indices, n.key, store), 0.0);
        EXPECT_STREQ(kzb_get_subcategory_string(n.path, n.indices, n.key, store), "");
        EXPECT_EQ(kzb_put_subcategory_int(n.path, n.indices, n.key, 1, store), 1);
        EXPECT_EQ(kzb_put_subcategory_double(n.path, n.indices, n.key, 1.0, store), 1);
        EXPECT_EQ(kzb_put_subcategory_string(n.path, n.indices, n.key, "v", store), 1);
        EXPECT_EQ(kzb_create_subcategory_table(n.path, n.indices, n.key, 1, zero, store), 1);
        EXPECT_EQ(kzb_get_subcategory_table_dim(n.path, n.indices, n.key, store), 0);
        EXPECT_EQ(kzb_get_subcategory_table_num_rows(n.path, n.indices, n.key, 1, store), 0);
        EXPECT_EQ(kzb_get_subcategory_table_axis_value(n.path, n.indices, n.key, 1, 0, store), 0.0);
        EXPECT_EQ(kzb_set_subcategory_table_axis_value(n.path, n.indices, n.key, 1, 0, 1.0, store), 1);
        EXPECT_EQ(kzb_get_subcategory_table_value(n.path, n.indices, n.key, zero, store), 0.0);
        EXPECT_EQ(kzb_set_subcategory_table_value(n.path, n.indices, n.key, zero, 1.0, store), 1);
        EXPECT_EQ(kzb_get_subcategory_table_cyclic_flag(n.path, n.indices, n.key, 1, store), 2147483647);
        EXPECT_EQ(kzb_set_subcategory_table_cyclic_flag(n.path, n.indices, n.key, 1, 1, store), 1);
        EXPECT_EQ(kzb_get_subcategory_table_interpolated_value(n.path, n.indices, n.key, x, "Linear", store), no_value);
    }
    for (const Names& n : {Names{nullptr, zero, ""}, {"a", nullptr, ""}}) {
        EXPECT_EQ(kzb_has_subcategory(n.path, n.indices, store), 0);
        EXPECT_EQ(kzb_get_child_subcategory_num(n.path, n.indices, store), 0);
        EXPECT_STREQ(kzb_get_child_subcategory_name(n.path, n.indices, 0, store), "");
    }
    EXPECT_EQ(kzb_get_subcategory_num(nullptr, zero, store), 0);
    EXPECT_EQ(kzb_get_subcategory_num("a;b", nullptr, store), 0);
    EXPECT_EQ(kzb_put_subcategory_string("a", zero, "s", nullptr, store), 1);
    EXPECT_EQ(kzb_create_subcategory_table("a", zero, "u", 1, nullptr, store), 1);
    EXPECT_EQ(kzb_get_subcategory_table_value("a", zero, "t", nullptr, store), 0.0);
    EXPECT_EQ(kzb_set_subcategory_table_value("a", zero, "t", nullptr, 1.0, store), 1);
    EXPECT_EQ(kzb_get_subcategory_table_interpolated_value("a", zero, "t", nullptr, "Linear", store), no_value);
    EXPECT_EQ(kzb_get_subcategory_table_interpolated_value("a", zero, "t", x, nullptr, store), no_value);
    // Nothing was made on the way, no code set.
    EXPECT_EQ(kzb_get_category_num(store), 1);
    EXPECT_EQ(kzb_get_int_num("a;0;", store) + kzb_get_double_num("a;0;", store) + kzb_get_string_num("a;0;", store),
              0);
    EXPECT_EQ(kzb_get_table_num("a;0;", store), 1);
    EXPECT_EQ(kzb_has_error(store), 0);
}

}  // namespace
