// Numbers in text.
#include "store/format/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

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
        {"1e", 1, "e"},
        {"1e+", 1, "e+"},
        {"1.2.3", 1.2, ".3"},
        {"1,5", 1, ",5"},
        {"0x10", 16, ""},
        {"-0X1.8p1q", -3, "q"},
        {"0x", 0, "x"},
        {"0x.8", 0.5, ""},
        {"0xg", 0, "xg"},
        {"inf", infinity, ""},
        {"-Infinity!", -infinity, "!"},
        {"INFIN", infinity, "IN"},
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
    text = "-1e-999";
    EXPECT_TRUE(scan_double(text, value));
    EXPECT_TRUE(value == 0.0 && std::signbit(value));
}

TEST(ScanDouble, leaves_the_value_where_there_is_no_number) {
    for (const char* none : {"", "   ", "x", "+-5", "--5", "-", ".", "e5", ",1"}) {
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

// The C library's conversion under the C locale is the second derivation.
TEST(AppendDouble, is_the_conversion_20_10e) {
    for (const double value :
         {0.0, -0.0, 1.0, -1.5, 0.1, 123456789.123456789, 9.99999999995, 9.999999999949999, 1e100, -1e-300, 5e-324,
          1.7976931348623157e308, 2.5e-7, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        char expected[64];
        std::snprintf(expected, sizeof expected, "%20.10e", value);
        std::string out = "x";
        append_double(out, value);
        EXPECT_EQ(out, std::string("x") + expected);
    }
}

TEST(AppendInt, pads_on_the_left) {
    std::string out;
    append_int(out, -5);
    append_int(out, 42, 10);
    append_int(out, -2147483647 - 1, 10);
    EXPECT_EQ(out, "-5        42-2147483648");
}

}  // namespace
}  // namespace kzb
