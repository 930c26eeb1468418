// Arguments that point into the store itself: a list that grows must not pull them away.
//
// Texts below 16 bytes live inside their records and move with them; longer ones have a buffer of their own.
#include <gtest/gtest.h>

#include <string>

#include "test_store.h"

using kzb_test::TestStore;

namespace {

const char* const lengths[] = {"short", "a text that is longer than any record would hold inside itself"};

// Enough new entries for a list to have moved several times, whatever its growth.
constexpr int growth = 40;

std::string numbered(const char* stem, int i) {
    return std::string(stem).append(std::to_string(i));
}

TEST(OwnTexts, string_value_copied_to_new_keys_of_its_own_list) {
    for (const char* text : lengths) {
        TestStore store;
        kzb_put_string("c", "a", text, store);
        for (int i = 0; i < growth; ++i) {
            EXPECT_EQ(kzb_put_string("c", numbered("k", i).c_str(), kzb_get_string("c", "a", store), store), 0);
        }
        for (int i = 0; i < growth; ++i) {
            EXPECT_STREQ(kzb_get_string("c", numbered("k", i).c_str(), store), text);
        }
    }
}

TEST(OwnTexts, string_value_put_over_itself_or_its_own_suffix) {
    for (const char* text : lengths) {
        TestStore store;
        kzb_put_string("c", "a", text, store);
        EXPECT_EQ(kzb_put_string("c", "a", kzb_get_string("c", "a", store), store), 0);
        EXPECT_STREQ(kzb_get_string("c", "a", store), text);
        EXPECT_EQ(kzb_put_string("c", "a", kzb_get_string("c", "a", store) + 3, store), 0);
        EXPECT_STREQ(kzb_get_string("c", "a", store), text + 3);
    }
}

TEST(OwnTexts, string_value_as_the_key_of_a_new_entry) {
    for (const char* text : lengths) {
        TestStore store;
        for (int i = 0; i < growth; ++i) {
            kzb_put_string("c", "a", numbered(text, i).c_str(), store);
            EXPECT_EQ(kzb_put_string("c", kzb_get_string("c", "a", store), "v", store), 0);
            EXPECT_EQ(kzb_put_string(kzb_get_string("c", "a", store), kzb_get_string("c", "a", store),
                                     kzb_get_string("c", "a", store), store),
                      0);
        }
        for (int i = 0; i < growth; ++i) {
            const std::string name = numbered(text, i);
            EXPECT_STREQ(kzb_get_string("c", name.c_str(), store), "v");
            EXPECT_STREQ(kzb_get_string(name.c_str(), name.c_str(), store), name.c_str());
        }
    }
}

TEST(OwnTexts, key_of_an_entry_names_new_entries_of_the_same_list) {
    for (const char* text : lengths) {
        TestStore store;
        const std::string first = std::string("prefix").append(text);
        kzb_put_int("c", first.c_str(), 7, store);
        // Each suffix of the key is a key of its own.
        for (std::size_t i = 1; i < first.size(); ++i) {
            EXPECT_EQ(kzb_put_int("c", kzb_get_int_keyword("c", 0, store) + i, static_cast<int>(i), store), 0);
        }
        EXPECT_EQ(kzb_get_int_num("c", store), static_cast<int>(first.size()));
        EXPECT_EQ(kzb_get_int("c", first.c_str(), store), 7);
        for (std::size_t i = 1; i < first.size(); ++i) {
            EXPECT_EQ(kzb_get_int("c", first.c_str() + i, store), static_cast<int>(i));
        }
    }
}

TEST(OwnTexts, name_of_a_category_as_key_and_value_while_categories_are_added) {
    for (const char* text : lengths) {
        TestStore store;
        kzb_put_int(text, "k", 1, store);
        for (int i = 0; i < growth; ++i) {
            const std::string added = numbered("e", i);
            EXPECT_EQ(kzb_put_int(added.c_str(), kzb_get_category_name(0, store), i, store), 0);
            const std::string third = numbered("s", i);
            EXPECT_EQ(
                kzb_put_string(third.c_str(), kzb_get_category_name(0, store), kzb_get_category_name(0, store), store),
                0);
            EXPECT_EQ(kzb_get_int(added.c_str(), text, store), i);
            EXPECT_STREQ(kzb_get_string(third.c_str(), text, store), text);
        }
    }
}

TEST(OwnTexts, suffix_of_a_category_name_makes_a_category) {
    for (const char* text : lengths) {
        TestStore store;
        kzb_put_double(text, "k", 1.0, store);
        const std::string name(text);
        for (std::size_t i = 1; i < name.size(); ++i) {
            EXPECT_EQ(kzb_put_double(kzb_get_category_name(0, store) + i, "k", 2.0, store), 0);
        }
        EXPECT_EQ(kzb_get_category_num(store), static_cast<int>(name.size()));
        for (std::size_t i = 1; i < name.size(); ++i) {
            EXPECT_EQ(kzb_get_double(name.c_str() + i, "k", store), 2.0) << i;
        }
    }
}

TEST(OwnTexts, tables_are_created_under_names_of_the_store) {
    for (const char* text : lengths) {
        TestStore store;
        store.line(text, text, {0.0, 1.0}, {2.0, 4.0});
        const int size = 3;
        for (int i = 0; i < growth; ++i) {
            const std::string added = numbered("f", i);
            EXPECT_EQ(kzb_create_table(added.c_str(), kzb_get_category_name(0, store), 1, &size, store), 0);
            EXPECT_EQ(kzb_get_table_num_rows(added.c_str(), text, 1, store), 3);
            const std::string other = numbered("t", i);
            store.line(text, other.c_str(), {0.0}, {0.0});
        }
        const std::string name(text);
        for (std::size_t i = 1; i < name.size(); ++i) {
            EXPECT_EQ(kzb_create_table(text, kzb_get_table_keyword(text, 0, store) + i, 1, &size, store), 0);
            EXPECT_EQ(kzb_get_table_num_rows(text, name.c_str() + i, 1, store), 3);
        }
        // Created anew under its own name.
        EXPECT_EQ(kzb_create_table(text, kzb_get_table_keyword(text, 0, store), 1, &size, store), 0);
        EXPECT_EQ(kzb_get_table_num_rows(text, text, 1, store), 3);
    }
}

TEST(OwnTexts, subcategory_calls_take_texts_of_the_store) {
    for (const char* text : lengths) {
        TestStore store;
        const int first[1] = {0};
        kzb_put_subcategory_string("list", first, "path", "list", store);
        kzb_put_subcategory_string("list", first, "text", text, store);
        for (int i = 1; i < growth; ++i) {
            const int index[1] = {i};
            const auto own = [&](const char* key) { return kzb_get_subcategory_string("list", first, key, store); };
            EXPECT_EQ(kzb_put_subcategory_string(own("path"), index, own("text"), own("text"), store), 0);
            EXPECT_EQ(kzb_put_subcategory_string("list", first, numbered("k", i).c_str(), own("text"), store), 0);
            EXPECT_EQ(kzb_put_subcategory_int(own("path"), index, own("text"), i, store), 0);
            EXPECT_EQ(kzb_create_subcategory_table(own("path"), index, own("text"), 1, &i, store), 0);
            EXPECT_STREQ(kzb_get_subcategory_string("list", index, text, store), text);
            EXPECT_EQ(kzb_get_subcategory_int("list", index, text, store), i);
            EXPECT_EQ(kzb_get_subcategory_table_num_rows("list", index, text, 1, store), i);
        }
    }
}

}  // namespace
