// First stage of the binary form.
#include <gmock/gmock.h>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using BinaryReading = ModelFile;

TEST_F(BinaryReading, takes_all_kinds_in_their_order) {
    const auto file = Bytes()
                          .head()
                          .category("control", 2, 1, 1, 0)
                          .int_entry("b", -7)
                          .int_entry("a", 2147483647)
                          .double_entry("x", 0.1)
                          .string_entry("s", "a \"b\", c")
                          .category("empty", 0, 0, 0, 0)
                          .end()
                          .str();
    EXPECT_EQ(read(file), 0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(out_ + err_, "");
    ASSERT_EQ(store_.categories.size(), 3U);  // with `information`
    EXPECT_EQ(store_.categories[0].name, "control");
    EXPECT_EQ(store_.categories[1].name, "empty");
    EXPECT_EQ(store_.categories[0].ints[0].keyword, "b");
    EXPECT_EQ(store_.categories[0].ints[0].value, -7);
    EXPECT_EQ(store_.categories[0].ints[1].value, 2147483647);
    EXPECT_EQ(get_double(store_, "control", "x"), 0.1);
    EXPECT_STREQ(get_string(store_, "control", "s"), "a \"b\", c");
}

TEST_F(BinaryReading, type_code_of_an_entry_decides_and_the_counts_only_add_up) {
    const auto file = Bytes().head().category("c", 0, 0, 0, 2).double_entry("x", 2.5).int_entry("i", 3).end().str();
    EXPECT_EQ(read(file), 0);
    EXPECT_EQ(get_double(store_, "c", "x"), 2.5);
    EXPECT_EQ(get_int(store_, "c", "i"), 3);
}

TEST_F(BinaryReading, second_value_of_a_key_replaces_the_first_in_its_place) {
    const auto file =
        Bytes().head().category("c", 3, 0, 0, 0).int_entry("a", 1).int_entry("b", 2).int_entry("a", 3).end().str();
    EXPECT_EQ(read(file), 0);
    ASSERT_EQ(store_.categories[0].ints.size(), 2U);
    EXPECT_EQ(store_.categories[0].ints[0].keyword, "a");
    EXPECT_EQ(store_.categories[0].ints[0].value, 3);
}

TEST_F(BinaryReading, category_met_twice_adds_to_the_first) {
    const auto file = Bytes()
                          .head()
                          .category("c", 1, 0, 0, 0)
                          .int_entry("a", 1)
                          .category("d", 0, 0, 0, 0)
                          .category("c", 1, 0, 0, 0)
                          .int_entry("b", 2)
                          .end()
                          .str();
    EXPECT_EQ(read(file), 0);
    EXPECT_EQ(store_.categories[0].ints.size(), 2U);
    EXPECT_EQ(store_.categories[1].name, "d");
}

TEST_F(BinaryReading, table_is_left_as_a_placeholder_that_knows_its_place) {
    const auto head = Bytes().head().category("c", 1, 0, 0, 1).entry("t", 3).str();
    const auto file = Bytes().head().category("c", 1, 0, 0, 1).sample_table("t").int_entry("behind", 9).end().str();
    EXPECT_EQ(read(file), 0);
    EXPECT_EQ(err_, "");
    const KZB_TABLE& placeholder = table("c", "t");
    EXPECT_EQ(placeholder.dim, 1);
    EXPECT_EQ(placeholder.sizes, std::vector<int>{1});
    EXPECT_EQ(placeholder.total, 1);
    EXPECT_EQ(placeholder.loaded, 0);
    EXPECT_EQ(placeholder.file_position, static_cast<std::int64_t>(head.size()));
    EXPECT_EQ(numbers(placeholder.values), std::vector<double>{0.0});
    EXPECT_FALSE(placeholder.axes[0]);
    EXPECT_EQ(get_int(store_, "c", "behind"), 9);
}

TEST_F(BinaryReading, other_bytes_between_categories_are_skipped) {
    const auto file = Bytes()
                          .head()
                          .raw("abc\n\t")
                          .category("c", 1, 0, 0, 0)
                          .int_entry("a", 1)
                          .raw("xyz")
                          .raw("$this mark is other")  // 19 bytes, as long as the end mark
                          .end()
                          .raw("behind the end")
                          .category("late", 0, 0, 0, 0)
                          .str();
    EXPECT_EQ(read(file), 0);
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
    EXPECT_TRUE(has_category(store_, "late"));
}

TEST_F(BinaryReading, missing_end_mark_fails_and_keeps_what_was_read) {
    EXPECT_EQ(read(Bytes().head().category("c", 1, 0, 0, 0).int_entry("a", 1).str()), 1);
    EXPECT_EQ(out_, "file reading error\n");
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
}

TEST_F(BinaryReading, wrong_terminator_is_told_and_the_value_kept) {
    const auto file =
        Bytes().head().category("c", 2, 0, 0, 0).entry("a", 0).int32(4).raw(";#").int_entry("b", 5).end().str();
    EXPECT_EQ(read(file), 0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    EXPECT_EQ(get_int(store_, "c", "a"), 4);
    EXPECT_EQ(get_int(store_, "c", "b"), 5);
}

TEST_F(BinaryReading, empty_keyword_or_negative_type_ends_the_category) {
    for (const auto& entry :
         {Bytes().int32(0).int32(0).str(), Bytes().text("k").int32(-2).str(), Bytes().int32(-5).int32(0).str()}) {
        KZB_STORE store;
        const std::string file = write(Bytes()
                                           .head()
                                           .category("c", 3, 0, 0, 0)
                                           .int_entry("a", 1)
                                           .raw(entry)
                                           .int_entry("lost", 2)
                                           .category("d", 1, 0, 0, 0)
                                           .int_entry("e", 6)
                                           .end()
                                           .str());
        EXPECT_EQ(captured([&] { return read_model_file(store, file.c_str()); }), 0);
        EXPECT_THAT(err_, HasSubstr("not found keyword and type: "));
        EXPECT_EQ(get_int(store, "c", "a"), 1);
        EXPECT_FALSE(has_parameter(store, "c", "lost"));
        EXPECT_EQ(get_int(store, "d", "e"), 6);
        EXPECT_EQ(store.error, 0);
    }
}

TEST_F(BinaryReading, unknown_type_is_told_and_passed) {
    const auto file = Bytes().head().category("c", 2, 0, 0, 0).entry("u", 4).int_entry("a", 1).end().str();
    EXPECT_EQ(read(file), 0);
    EXPECT_THAT(err_, HasSubstr("unknown data type: "));
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
}

TEST_F(BinaryReading, longest_name_and_keyword_have_255_bytes) {
    const std::string longest(255, 'n');
    EXPECT_EQ(read(Bytes().head().category(longest, 1, 0, 0, 0).int_entry(longest, 1).end().str()), 0);
    EXPECT_EQ(get_int(store_, longest, longest), 1);
}

TEST_F(BinaryReading, name_or_keyword_of_256_bytes_makes_the_file_a_broken_one) {
    const std::string over(256, 'n');
    const auto before = Bytes().head().category("c", 1, 0, 0, 0).int_entry("a", 1).str();
    EXPECT_EQ(read(before + Bytes().category(over, 0, 0, 0, 0).end().str()), 1);
    EXPECT_EQ(store_.error, 90009);
    EXPECT_EQ(get_int(store_, "c", "a"), 1);  // what was read before stays
    EXPECT_FALSE(has_category(store_, over));
    store_.error = 0;
    EXPECT_EQ(read(before + Bytes().category("d", 2, 0, 0, 0).int_entry("b", 2).int_entry(over, 3).end().str()), 1);
    EXPECT_EQ(store_.error, 90009);
    EXPECT_EQ(get_int(store_, "d", "b"), 2);
}

TEST_F(BinaryReading, texts_end_at_their_first_nul) {
    using namespace std::string_view_literals;
    const auto file = Bytes().head().category("c\0d"sv, 0, 0, 1, 0).string_entry("k\0l"sv, "v\0w"sv).end().str();
    EXPECT_EQ(read(file), 0);
    EXPECT_STREQ(get_string(store_, "c", "k"), "v");
}

TEST_F(BinaryReading, empty_string_is_a_value) {
    EXPECT_EQ(read(Bytes().head().category("c", 0, 0, 1, 0).string_entry("k", "").end().str()), 0);
    EXPECT_STREQ(get_string(store_, "c", "k"), "");
}

TEST_F(BinaryReading, lengths_and_counts_that_cannot_be_true_are_told) {
    const std::vector<std::string> entries{
        Bytes().entry("s", 2).int32(-1).str(),
        Bytes().entry("s", 2).int32(2147483647).str(),
        Bytes().entry("t", 3).int32(-3).str(),
        Bytes().entry("t", 3).int32(2147483647).str(),
        Bytes().entry("t", 3).int32(1).int32(1).int32(0).int32(-1).str(),
        Bytes().entry("t", 3).int32(1).int32(1).int32(0).int32(2147483647).str(),
        Bytes().entry("t", 3).int32(1).int32(1).int32(0).block({1.0}).int32(-9).str(),
    };
    for (const auto& entry : entries) {
        KZB_STORE store;
        const std::string file = write(Bytes().head().category("c", 2, 0, 0, 0).int_entry("a", 1).raw(entry).str());
        EXPECT_EQ(captured([&] { return read_model_file(store, file.c_str()); }), 1);
        EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
        EXPECT_EQ(out_, "file reading error\n");
        EXPECT_EQ(get_int(store, "c", "a"), 1);
    }
}

TEST_F(BinaryReading, string_longer_than_the_file_keeps_the_part_that_is_there) {
    for (const int announced : {5, 6, 2147483647}) {
        KZB_STORE store;
        const std::string file =
            write(Bytes().head().category("c", 0, 0, 1, 0).entry("s", 2).int32(announced).raw("text").str());
        EXPECT_EQ(captured([&] { return read_model_file(store, file.c_str()); }), 1);
        EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
        EXPECT_STREQ(get_string(store, "c", "s"), "text");
    }
    KZB_STORE store;
    const std::string file = write(Bytes().head().category("c", 0, 0, 1, 0).entry("s", 2).int32(-1).str());
    captured([&] { return read_model_file(store, file.c_str()); });
    EXPECT_FALSE(has_parameter(store, "c", "s"));
}

TEST_F(BinaryReading, count_of_entries_beyond_the_file_ends_with_the_file) {
    const auto file = Bytes().head().category("c", 2147483647, 2147483647, 0, 0).int_entry("a", 1).str();
    EXPECT_EQ(read(file), 1);
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
}

}  // namespace
}  // namespace kzb::test
