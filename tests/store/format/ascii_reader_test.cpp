// First stage of the ascii form.
#include <gmock/gmock.h>

#include <cmath>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

using ::testing::HasSubstr;
using AsciiReading = ModelFile;

TEST_F(AsciiReading, takes_all_kinds_in_their_order) {
    EXPECT_EQ(read(ascii_file("*control,2,1,1,0,#\n"
                              "b,int,-7,#\n"
                              "a,int, 2147483647,#\n"
                              "x,double,    1.2500000000e-01,#\n"
                              "s,string,7,\"a b, *c\",#\n"
                              "*empty,0,0,0,0,#\n")),
              0);
    EXPECT_EQ(out_ + err_, "");
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(store_.categories[0].ints[0].keyword, "b");
    EXPECT_EQ(get_int(store_, "control", "b"), -7);
    EXPECT_EQ(get_int(store_, "control", "a"), 2147483647);
    EXPECT_EQ(get_double(store_, "control", "x"), 0.125);
    EXPECT_STREQ(get_string(store_, "control", "s"), "a b, *c");
    EXPECT_EQ(store_.categories[1].name, "empty");
}

TEST_F(AsciiReading, table_is_left_as_a_placeholder_behind_its_type_word) {
    const std::string before = "$DORN-KZa,#\n*c,1,0,0,1,#\n";
    EXPECT_EQ(read(before + sample_table_ascii("t") + "behind,int,9,#\n$end_of_kzb_file,#\n"), 0);
    EXPECT_EQ(err_, "");
    EXPECT_EQ(table("c", "t").dim, 1);
    EXPECT_EQ(table("c", "t").total, 1);
    EXPECT_EQ(table("c", "t").loaded, 0);
    EXPECT_EQ(table("c", "t").file_position, static_cast<std::int64_t>((before + "t,table,").size()));
    EXPECT_EQ(get_int(store_, "c", "behind"), 9);
}

TEST_F(AsciiReading, token_runs_across_line_ends_to_the_next_comma) {
    using namespace std::string_literals;
    EXPECT_EQ(read(ascii_file("*c,1\n,0,0,0,#\n\n\nke\ny\0,i\nnt\n,4\n2,#\n"s)), 0);
    EXPECT_EQ(get_int(store_, "c", "key"), 42);
}

TEST_F(AsciiReading, category_with_too_few_entries_swallows_the_mark_of_the_next) {
    EXPECT_EQ(read(ascii_file("*c,2,0,0,0,#\na,int,1,#\n*d,1,0,0,0,#\nb,int,2,#\n*e,1,0,0,0,#\nf,int,3,#\n")), 0);
    EXPECT_EQ(store_.error, 90005);
    EXPECT_THAT(err_, HasSubstr("not found keyword and type: "));
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
    EXPECT_FALSE(has_category(store_, "d"));
    EXPECT_EQ(get_int(store_, "e", "f"), 3);
}

TEST_F(AsciiReading, unknown_type_word_sets_the_code) {
    EXPECT_EQ(read(ascii_file("*c,1,0,0,0,#\na,float,1,#\n*d,1,0,0,0,#\nb,int,2,#\n")), 0);
    EXPECT_EQ(store_.error, 90005);
    EXPECT_THAT(err_, HasSubstr("unknown data type: "));
    EXPECT_EQ(get_int(store_, "d", "b"), 2);
}

TEST_F(AsciiReading, value_without_its_mark_is_told_and_kept) {
    EXPECT_EQ(read(ascii_file("*c,2,0,0,0,#\na,int,1,;\nb,int,2,#\n")), 0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
}

TEST_F(AsciiReading, category_head_without_its_mark_is_told_and_read_on) {
    EXPECT_EQ(read(ascii_file("*c,1,0,0,0,;\na,int,1,#\n")), 0);
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
}

TEST_F(AsciiReading, string_ends_at_its_first_quote) {
    // "say "hi"": the text ends behind `say `, the two characters behind are `hi`.
    EXPECT_EQ(read(ascii_file("*c,0,0,1,0,#\ns,string,8,\"say \"hi\"\",#\n*d,1,0,0,0,#\nb,int,2,#\n")), 0);
    EXPECT_EQ(store_.error, 90005);
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    EXPECT_STREQ(get_string(store_, "c", "s"), "say ");
    EXPECT_EQ(get_int(store_, "d", "b"), 2);
}

TEST_F(AsciiReading, string_shorter_than_its_length_ends_at_the_quote_without_a_fault) {
    EXPECT_EQ(read(ascii_file("*c,1,0,1,0,#\ns,string,2000000000,\"ab\",#\nb,int,2,#\n")), 0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_STREQ(get_string(store_, "c", "s"), "ab");
    EXPECT_EQ(get_int(store_, "c", "b"), 2);
}

TEST_F(AsciiReading, string_may_hold_line_feeds_commas_and_stars) {
    EXPECT_EQ(read(ascii_file("*c,0,0,1,0,#\ns,string,5,\"a\n*,b\",#\n")), 0);
    EXPECT_STREQ(get_string(store_, "c", "s"), "a\n*,b");
}

TEST_F(AsciiReading, longest_token_has_255_bytes) {
    const std::string longest(255, 'n');
    EXPECT_EQ(read(ascii_file("*" + longest + ",1,0,0,0,#\n" + longest + ",int,1,#\n")), 0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(get_int(store_, longest, longest), 1);
}

TEST_F(AsciiReading, keyword_of_256_bytes_ends_its_category) {
    const std::string over(256, 'n');
    EXPECT_EQ(read(ascii_file("*c,1,0,0,0,#\n" + over + ",int,1,#\n*d,1,0,0,0,#\nb,int,2,#\n")), 0);
    EXPECT_EQ(store_.error, 90005);
    EXPECT_EQ(find_category(store_, "c")->ints.size(), 0U);
    EXPECT_EQ(get_int(store_, "d", "b"), 2);
}

TEST_F(AsciiReading, category_name_of_256_bytes_makes_the_file_a_broken_one) {
    EXPECT_EQ(read(ascii_file("*c,0,0,0,0,#\n*" + std::string(256, 'n') + ",0,0,0,0,#\n")), 1);
    EXPECT_EQ(store_.error, 90009);
    EXPECT_TRUE(has_category(store_, "c"));
}

TEST_F(AsciiReading, missing_end_mark_fails_and_keeps_what_was_read) {
    EXPECT_EQ(read("$DORN-KZa,#\n*c,1,0,0,0,#\na,int,1,#\n"), 1);
    EXPECT_EQ(out_, "file reading error\n");
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(get_int(store_, "c", "a"), 1);
}

TEST_F(AsciiReading, head_must_be_the_first_thing_of_the_file) {
    setenv("KZB_READING_ASCII", "1", 1);
    EXPECT_EQ(read("$DORN-KZx,#\n$DORN-KZa,#\n$end_of_kzb_file,#\n"), 1);
    EXPECT_EQ(store_.error, 0);
}

TEST_F(AsciiReading, numbers_follow_the_usual_conversions) {
    EXPECT_EQ(read(ascii_file("*c,4,5,0,0,#\n"
                              "a,int,12abc,#\nb,int,  +5,#\nc,int,99999999999,#\nd,int,99999999999999999999,#\n"
                              "p,double,1.5e3xyz,#\nq,double, 0x1.8p1,#\nr,double,-inf,#\ns,double,text,#\n"
                              "t,double,1e999,#\n")),
              0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(get_int(store_, "c", "a"), 12);
    EXPECT_EQ(get_int(store_, "c", "b"), 5);
    EXPECT_EQ(get_int(store_, "c", "c"), 1215752191);  // 99999999999 - 23 * 2^32
    EXPECT_EQ(get_int(store_, "c", "d"), -1);          // low 32 bits of 2^63 - 1
    EXPECT_EQ(get_double(store_, "c", "p"), 1500.0);
    EXPECT_EQ(get_double(store_, "c", "q"), 3.0);
    EXPECT_EQ(get_double(store_, "c", "r"), -HUGE_VAL);
    EXPECT_EQ(get_double(store_, "c", "s"), 0.0);
    EXPECT_EQ(get_double(store_, "c", "t"), HUGE_VAL);
}

TEST_F(AsciiReading, body_is_skipped_by_lines_of_127_bytes) {
    // The first block announces 5 values, one line, but its line has 100 + 60 bytes: fgets with 128 makes two of it,
    // so the rest is taken for the count of the axis (0: not a number), and the axis's count line for the terminator.
    const std::string wide(160, ' ');
    EXPECT_EQ(read(ascii_file("*c,0,0,0,1,#\nt,table,1,5,0,\n5,\n" + wide + "\n5,\n1 2 3 4 5\n,#\n")), 0);
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    // A line of 126 bytes and its line feed is one.
    KZB_STORE store;
    const std::string file =
        write(ascii_file("*c,1,0,0,1,#\nt,table,1,5,0,\n5,\n" + std::string(126, ' ') + "\n0,\n,#\nb,int,2,#\n"));
    EXPECT_EQ(captured([&] { return read_model_file(store, file.c_str()); }), 0);
    EXPECT_EQ(err_, "");
    EXPECT_EQ(get_int(store, "c", "b"), 2);
}

TEST_F(AsciiReading, counts_that_cannot_be_true_end_with_the_file) {
    for (const char* body : {"t,table,2147483647,1,1,\n", "t,table,1,1,0,\n2147483647,\n1\n1,\n1\n,#\n",
                             "t,table,1,1,0,\n-5,\n-5,\n,#\n", "t,table,-4,\n1,\n1\n,#\n", "t,table,,,"}) {
        KZB_STORE store;
        const std::string file = write(ascii_file(std::string("*c,2147483647,9,0,1,#\n") + body));
        captured([&] { return read_model_file(store, file.c_str()); });
        EXPECT_TRUE(has_category(store, "c")) << body;
        EXPECT_NE(find_table(store, "c", "t"), nullptr) << body;
    }
}

}  // namespace
}  // namespace kzb::test
