// What a write and a read give back, and what they cannot.
#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

class RoundTrip : public ModelFile {
  protected:
    // A store with one table of one axis without a grid.
    static void fill_gridless(KZB_STORE& store) {
        const int rows[1] = {2};
        create_table(store, "c", "t", 1, rows);
    }
};

TEST_F(RoundTrip, binary_file_with_a_missing_grid_is_misread_without_harm) {
    fill_gridless(store_);
    ASSERT_TRUE(write_binary(store_, path()));
    KZB_STORE again;
    captured([&] { return read_model_file(again, path().c_str()); });
    EXPECT_NE(err_, "");
}

TEST_F(RoundTrip, ascii_file_with_a_missing_grid_reads_as_one_without_values) {
    fill_gridless(store_);
    ASSERT_TRUE(write_ascii(store_, path()));
    store_ = KZB_STORE();
    EXPECT_EQ(read_path(path()), 0);
    load();
    EXPECT_EQ(err_, "");
    EXPECT_EQ(table("c", "t").sizes, std::vector<int>{2});
    EXPECT_FALSE(table("c", "t").axes[0]);
}

TEST_F(RoundTrip, binary_round_trip_is_exact) {
    const std::vector<double> values{0.1, -0.0, 5e-324, 1.7976931348623157e308, 1.0 / 3.0, HUGE_VAL};
    const auto file = Bytes()
                          .head()
                          .category("z", 1, 1, 1, 1)
                          .int_entry("i", -2147483647 - 1)
                          .double_entry("d", 1.0 / 3.0)
                          .string_entry("s", "quote \" and\nline")
                          .table_entry("t", {2, 3}, {0, 2}, values, {{1.0 / 7.0, 1}, {1, 2, 3}})
                          .category("information", 1, 0, 0, 0)
                          .int_entry("has_ironloss_table", 0)
                          .category("a", 0, 0, 0, 0)
                          .end()
                          .str();
    EXPECT_EQ(read(file), 0);
    load();
    ASSERT_TRUE(write_binary(store_, path("out")));
    EXPECT_EQ(slurp(path("out")), file);
}

TEST_F(RoundTrip, ascii_round_trip_keeps_eleven_digits) {
    put_double(store_, "information", "third", 1.0 / 3.0);
    put_double(store_, "information", "eleven", 1.2345678901e-200);
    ASSERT_TRUE(write_ascii(store_, path()));
    KZB_STORE again;
    EXPECT_EQ(read_model_file(again, path().c_str()), 0);
    EXPECT_EQ(get_double(again, "information", "third"), 0.33333333333);
    EXPECT_NE(get_double(again, "information", "third"), 1.0 / 3.0);
    EXPECT_EQ(get_double(again, "information", "eleven"), 1.2345678901e-200);
}

// A text ends at its first double quote: `say "hi"` comes back as `say `, and `hi` stands where its terminator should.
TEST_F(RoundTrip, double_quote_does_not_survive_the_ascii_form) {
    put_string(store_, "c", "s", "say \"hi\"");
    put_int(store_, "d", "k", 3);
    ASSERT_TRUE(write_ascii(store_, path()));
    store_ = KZB_STORE();
    EXPECT_EQ(read_path(path()), 0);
    EXPECT_EQ(store_.error, 90005);
    EXPECT_THAT(err_, ::testing::HasSubstr("this file is broken\n: "));
    EXPECT_STREQ(get_string(store_, "c", "s"), "say ");
    EXPECT_EQ(get_int(store_, "d", "k"), 3);
}

TEST_F(RoundTrip, double_quote_survives_the_binary_form) {
    put_string(store_, "c", "s", "say \"hi\"");
    ASSERT_TRUE(write_binary(store_, path()));
    store_ = KZB_STORE();
    EXPECT_EQ(read_path(path()), 0);
    EXPECT_STREQ(get_string(store_, "c", "s"), "say \"hi\"");
}

// The C library's conversion under the C locale is the second derivation.
TEST_F(RoundTrip, doubles_stand_in_the_ascii_form_as_the_conversion_20_10e) {
    const double values[] = {0.0,           -0.0,
                             1.0,           -1.5,
                             0.1,           123456789.123456789,
                             9.99999999995, 9.999999999949999,
                             1e100,         -1e-300,
                             5e-324,        1.7976931348623157e308,
                             2.5e-7,        HUGE_VAL,
                             -HUGE_VAL,     std::nan("")};
    for (const double value : values) {
        char expected[64];
        std::snprintf(expected, sizeof expected, "\nk,double,%20.10e,#\n", value);
        put_double(store_, "c", "k", value);
        ASSERT_TRUE(write_ascii(store_, path()));
        EXPECT_THAT(slurp(path()), ::testing::HasSubstr(expected));
    }
}

}  // namespace
}  // namespace kzb::test
