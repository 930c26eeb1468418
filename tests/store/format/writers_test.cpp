// Both forms as they are written, to the byte.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <clocale>
#include <locale>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

class Writing : public ModelFile {
  protected:
    // Two categories out of alphabet, all kinds, the shared sample table.
    static void fill(KZB_STORE& store) {
        put_int(store, "control", "poles", -8);
        put_double(store, "control", "length", 0.1);
        put_string(store, "control", "title", "a,b");
        require_category(store, "another");
        const int rows[2] = {2, 3};
        int status = 1;
        KZB_TABLE* table = table_create_in_category(store, *find_category(store, "control"), "k", 2, rows, status);
        ASSERT_EQ(status, 0);
        table_set_cyclic_flag(table, 1, 1);
        for (int i = 0; i < 2; ++i) {
            table_set_axis_value(table, 1, i, 360.0 * i);
            for (int j = 0; j < 3; ++j) {
                table_set_axis_value(table, 2, j, 1.0 + j);
                const int at[2] = {i, j};
                table_set_value(table, at, 10.0 * i + j);
            }
        }
    }
    static std::string binary_bytes() {
        return Bytes()
            .head()
            .category("control", 1, 1, 1, 1)
            .int_entry("poles", -8)
            .double_entry("length", 0.1)
            .string_entry("title", "a,b")
            .sample_table("k")
            .category("another", 0, 0, 0, 0)
            .end()
            .str();
    }
    static std::string ascii_bytes() {
        return ascii_file(
            "*control,1,1,1,1,#\n"
            "poles,int,-8,#\n"
            "length,double,    1.0000000000e-01,#\n"
            "title,string,3,\"a,b\",#\n" +
            sample_table_ascii("k") + "*another,0,0,0,0,#\n");
    }
    // A store with one table of one axis without a grid.
    static void fill_gridless(KZB_STORE& store) {
        const int rows[1] = {2};
        create_table(store, "c", "t", 1, rows);
    }
};

TEST_F(Writing, binary_form_to_the_byte) {
    fill(store_);
    EXPECT_TRUE(write_binary(store_, path()));
    EXPECT_EQ(slurp(path()), binary_bytes());
}

TEST_F(Writing, ascii_form_to_the_byte) {
    fill(store_);
    EXPECT_TRUE(write_ascii(store_, path()));
    EXPECT_EQ(slurp(path()), ascii_bytes());
}

TEST_F(Writing, store_without_categories_is_head_and_end) {
    EXPECT_TRUE(write_binary(store_, path("b")));
    EXPECT_EQ(slurp(path("b")), "$DORN-KZb,#\n$end_of_kzb_file,#\n");
    EXPECT_TRUE(write_ascii(store_, path("a")));
    EXPECT_EQ(slurp(path("a")), "$DORN-KZa,#\n$end_of_kzb_file,#\n");
}

TEST_F(Writing, value_lines_hold_five_and_none_is_empty) {
    for (const int count : {1, 4, 5, 6, 10, 11}) {
        KZB_STORE store;
        create_table(store, "c", "t", 1, &count);
        ASSERT_TRUE(write_ascii(store, path()));
        const std::string text = slurp(path());
        const auto start = text.find("t,table,");
        const std::string zero = "    0.0000000000e+00";
        std::string expected = "t,table,1," + std::to_string(count) + ",0,\n";
        expected += std::string(count < 10 ? 9 : 8, ' ') + std::to_string(count) + ",\n";
        for (int i = 1; i <= count; ++i) {
            expected += zero + (i % 5 == 0 || i == count ? "\n" : "");
        }
        expected += "         0,\n,#\n";
        EXPECT_EQ(text.substr(start, expected.size()), expected) << count;
    }
}

TEST_F(Writing, missing_grid_is_counted_in_the_binary_form_and_zero_in_the_ascii_form) {
    fill_gridless(store_);
    EXPECT_TRUE(write_binary(store_, path("b")));
    EXPECT_EQ(slurp(path("b")), Bytes()
                                    .head()
                                    .category("c", 0, 0, 0, 1)
                                    .entry("t", 3)
                                    .int32(1)
                                    .int32(2)
                                    .int32(0)
                                    .block({0, 0})
                                    .int32(2)  // a count without its doubles
                                    .raw(",#")
                                    .end()
                                    .str());
    EXPECT_TRUE(write_ascii(store_, path("a")));
    EXPECT_EQ(slurp(path("a")), ascii_file("*c,0,0,0,1,#\nt,table,1,2,0,\n         2,\n"
                                           "    0.0000000000e+00    0.0000000000e+00\n         0,\n,#\n"));
}

TEST_F(Writing, placeholder_is_written_as_the_table_of_one_value_that_it_is) {
    EXPECT_EQ(read(Bytes().head().category("c", 0, 0, 0, 1).sample_table("t").end().str()), 0);
    ASSERT_TRUE(write_binary(store_, path("out")));
    const auto expected = Bytes()
                              .head()
                              .category("c", 0, 0, 0, 1)
                              .entry("t", 3)
                              .int32(1)
                              .int32(1)
                              .int32(0)
                              .block({0})
                              .int32(1)
                              .raw(",#")
                              .category("information", 1, 0, 0, 0)
                              .int_entry("has_ironloss_table", 0)
                              .end()
                              .str();
    EXPECT_EQ(slurp(path("out")), expected);
}

TEST_F(Writing, stored_bytes_of_a_text_are_written_as_they_are) {
    const std::string motor = "\x83\x82\x81\x5b\x83\x5e";  // "motor" in katakana, Shift_JIS
    put_string(store_, "c", "s", motor);
    ASSERT_TRUE(write_binary(store_, path("b")));
    EXPECT_EQ(slurp(path("b")), Bytes().head().category("c", 0, 0, 1, 0).string_entry("s", motor).end().str());
    ASSERT_TRUE(write_ascii(store_, path("a")));
    EXPECT_EQ(slurp(path("a")), ascii_file("*c,0,0,1,0,#\ns,string,6,\"" + motor + "\",#\n"));
}

TEST_F(Writing, output_type_selects_the_form) {
    fill(store_);
    store_.output_path = path("out");
    write_model_file(store_);
    EXPECT_FALSE(std::filesystem::exists(path("out")));
    store_.output_type = "ascii";
    write_model_file(store_);
    EXPECT_EQ(slurp(path("out")), ascii_bytes());
    store_.output_type = "binary";
    write_model_file(store_);
    EXPECT_EQ(slurp(path("out")), binary_bytes());
}

TEST_F(Writing, file_that_cannot_be_opened_is_silent) {
    fill(store_);
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    for (const std::string& target : {path("no/such/folder"), path("."), path("pipe")}) {
        EXPECT_FALSE(write_binary(store_, target));
        EXPECT_FALSE(write_ascii(store_, target));
    }
    store_.output_path = path(".");
    store_.output_type = "binary";
    captured([&] {
        write_model_file(store_);
        return 0;
    });
    EXPECT_EQ(out_ + err_, "");
    EXPECT_FALSE(write_binary(store_, "/dev/full"));
}

// A host whose decimal point is a comma and whose thousands are grouped.
class CommaPoint : public std::numpunct<char> {
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(Writing, forms_are_the_same_under_a_locale_with_a_decimal_comma) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
    std::setlocale(LC_ALL, "de_DE.UTF-8");  // where the host has it
    fill(store_);
    put_int(store_, "another", "large", 1234567);
    EXPECT_TRUE(write_ascii(store_, path()));
    KZB_STORE again;
    EXPECT_EQ(read_model_file(again, path().c_str()), 0);
    std::setlocale(LC_ALL, "C");
    std::locale::global(before);
    EXPECT_THAT(slurp(path()), ::testing::HasSubstr("length,double,    1.0000000000e-01,#\n"));
    EXPECT_THAT(slurp(path()), ::testing::HasSubstr("large,int,1234567,#\n"));
    EXPECT_EQ(get_double(again, "control", "length"), 0.1);
    EXPECT_EQ(get_int(again, "another", "large"), 1234567);
}

}  // namespace
}  // namespace kzb::test
