// Numbers in text, as the conversions "%d" and "%lf" take them.
#include "store/format/number_scan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace kzb {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

struct Case {
    const char* text;
    double value;
    const char* rest;
};

TEST(ScanDouble, takes_the_longest_text_that_is_a_number) {
    const Case cases[] = {
        {"1", 1, ""},
        {" \t\n\v\f\r-2.5,", -2.5, ","},
        {"+3", 3, ""},
        {".5", 0.5, ""},
        {"5.", 5, ""},
        {"1e3x", 1000, "x"},
        {"1e", 1, ""},  // a dangling exponent is taken and counts for nothing
        {"1e+", 1, ""},
        {"6E x", 6, " x"},
        {"2e-,", 2, ","},
        {"1e5e5", 1e5, "e5"},
        {"1e5.5", 1e5, ".5"},
        {"0x1p", 1, ""},
        {"0x1p-z", 1, "z"},
        {"1.2.3", 1.2, ".3"},
        {"1,5", 1, ",5"},
        {"0x10", 16, ""},
        {"-0X1.8p1q", -3, "q"},
        {"0x.8", 0.5, ""},
        {"0x.", 0, ""},
        {"0x.p1", 0, "p1"},
        {"0xe5", 229, ""},  // a digit there
        {"0x1e5", 485, ""},
        {"inf", infinity, ""},
        {"-Infinity!", -infinity, "!"},
        {"infx", infinity, "x"},
        {"INF", infinity, ""},
        {"1e999", infinity, ""},
        {"-1e999", -infinity, ""},
        {"0.0000001e400", infinity, ""},
        {"1000000e-400", 0, ""},
        {"1e-999", 0, ""},
        {"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min(), ""},
        {"2e-310", 2e-310, ""},
        {"0x1p2000", infinity, ""},
        {"0x1p-2000", 0, ""},
        {"0e999999999999", 0, ""},
        {"1d5", 1, "d5"},
    };
    for (const Case& c : cases) {
        std::string_view text = c.text;
        double value = 77.0;
        EXPECT_TRUE(scan_double(text, value)) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
        EXPECT_EQ(text, c.rest) << c.text;
    }
}

TEST(ScanDouble, keeps_the_sign_of_zero_and_takes_nan) {
    std::string_view text = "-0.0";
    double value = 1.0;
    EXPECT_TRUE(scan_double(text, value));
    EXPECT_TRUE(std::signbit(value));
    text = "nan";
    EXPECT_TRUE(scan_double(text, value));
    EXPECT_TRUE(std::isnan(value));
    text = "-NaN(12)";  // no more than the word
    EXPECT_TRUE(scan_double(text, value));
    EXPECT_TRUE(std::isnan(value));
    EXPECT_EQ(text, "(12)");
    text = "-1e-999";
    EXPECT_TRUE(scan_double(text, value));
    EXPECT_TRUE(value == 0.0 && std::signbit(value));
}

TEST(ScanDouble, leaves_the_value_where_there_is_no_number) {
    for (const char* none :
         {"",    "   ", "x",    "+-5", "--5", "-",   ".",     "..5",      "-.e5",      "e5", ",1", "0x",
          "-0X", "0xg", "0xp5", "i",   "in",  "inx", "INFIN", "-infinit", "infini ty", "n",  "na", "nax"}) {
        std::string_view text = none;
        double value = 77.0;
        EXPECT_FALSE(scan_double(text, value)) << none;
        EXPECT_EQ(value, 77.0);
        EXPECT_EQ(text, none);
    }
}

TEST(ScanInt, takes_digits_and_cuts_what_is_too_large) {
    const struct {
        const char* text;
        int value;
        const char* rest;
    } cases[] = {
        {"0", 0, ""},
        {"  +12,", 12, ","},
        {"-7x", -7, "x"},
        {"007", 7, ""},
        {"1.9", 1, ".9"},
        {"2147483648", -2147483647 - 1, ""},     // 2^31 in 32 bits
        {"4294967301", 5, ""},                   // 2^32 + 5
        {"-4294967301", -5, ""},                 // -(2^32 + 5)
        {"9223372036854775808", -1, ""},         // held at 2^63 - 1
        {"-9223372036854775809", 0, ""},         // held at -2^63
        {"99999999999999999999999999", -1, ""},  // beyond 64 bits
        {"-99999999999999999999999999", 0, ""},
    };
    for (const auto& c : cases) {
        std::string_view text = c.text;
        int value = 77;
        EXPECT_TRUE(scan_int(text, value)) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
        EXPECT_EQ(text, c.rest) << c.text;
    }
    std::string_view none = " x";
    int value = 77;
    EXPECT_FALSE(scan_int(none, value));
    EXPECT_EQ(value, 77);
}

// The C library's conversion under the C locale is the second derivation: value and what is left, over texts put
// together from the pieces that matter.
class AgainstTheLibrary : public ::testing::Test {
  protected:
    std::string text() {
        static const char* const pieces[] = {"0",
                                             "1",
                                             "9",
                                             "12",
                                             "e",
                                             "E",
                                             "p",
                                             "P",
                                             "x",
                                             "X",
                                             ".",
                                             "+",
                                             "-",
                                             " ",
                                             "a",
                                             "f",
                                             "nan",
                                             "inf",
                                             "INFI",
                                             "infinity",
                                             "0x",
                                             "e3",
                                             ",",
                                             "(",
                                             "i",
                                             "300",
                                             "e-320",
                                             "p-1070",
                                             "\t",
                                             "000000",
                                             "18446744073709551616"};
        std::string text;
        for (auto left = std::uniform_int_distribution<int>(1, 7)(random_); left > 0; --left) {
            text += pieces[std::uniform_int_distribution<std::size_t>(0, std::size(pieces) - 1)(random_)];
        }
        return text;
    }

  private:
    std::mt19937 random_{20261121};
};

TEST_F(AgainstTheLibrary, doubles_of_random_texts_agree) {
    for (int i = 0; i < 200000; ++i) {
        const std::string whole = text();
        double expected = 77.0;
        int taken = 0;
        const bool number = std::sscanf(whole.c_str(), "%lf%n", &expected, &taken) == 1;
        std::string_view rest = whole;
        double value = 77.0;
        ASSERT_EQ(scan_double(rest, value), number) << whole;
        ASSERT_EQ(rest, whole.substr(number ? static_cast<std::size_t>(taken) : 0)) << whole;
        ASSERT_TRUE(std::memcmp(&value, &expected, sizeof value) == 0 || (std::isnan(value) && std::isnan(expected)))
            << whole << ": " << value << " instead of " << expected;
    }
}

TEST_F(AgainstTheLibrary, ints_of_random_texts_agree) {
    for (int i = 0; i < 200000; ++i) {
        const std::string whole = text();
        int expected = 77;
        int taken = 0;
        const bool number = std::sscanf(whole.c_str(), "%d%n", &expected, &taken) == 1;
        std::string_view rest = whole;
        int value = 77;
        ASSERT_EQ(scan_int(rest, value), number) << whole;
        ASSERT_EQ(value, expected) << whole;
        ASSERT_EQ(rest, whole.substr(number ? static_cast<std::size_t>(taken) : 0)) << whole;
    }
}

}  // namespace
}  // namespace kzb
