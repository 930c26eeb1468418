// Tokens and numbers of measured data. Expected numbers: the texts themselves, as decimal or hexadecimal literals.
#include "store/measured/fields.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace kzb;

constexpr double inf = std::numeric_limits<double>::infinity();

std::vector<std::string> tokens(std::string_view line) {
    std::vector<std::string> result;
    CommaTokens source(line);
    for (std::string_view token; source.take(token);) {
        result.emplace_back(token);
    }
    return result;
}

TEST(Fields, tokens_are_the_runs_between_commas) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(tokens("a,b\n"), (Texts{"a", "b\n"}));
    EXPECT_EQ(tokens(",,a,,,b, ,"), (Texts{"a", "b", " "}));
    EXPECT_EQ(tokens(",,,"), Texts{});
    EXPECT_EQ(tokens(""), Texts{});
}

TEST(Fields, white_space_goes_at_both_ends_only) {
    EXPECT_EQ(trimmed(" \t\r\na b\v\f "), "a b");
    EXPECT_EQ(trimmed(" \n"), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(Fields, leading_numbers_stop_where_they_cannot_go_on) {
    const struct {
        const char* text;
        double value;
    } rows[] = {{"1.5", 1.5},       {" \t-2.5x", -2.5}, {"+3", 3.0},    {".5.5", 0.5},   {"1e", 1.0},  {"1e+", 1.0},
                {"1e2e3", 100.0},   {"0x1p3", 8.0},     {"0x", 0.0},    {"0xg", 0.0},    {"inf", inf}, {"-infix", -inf},
                {"infinity", inf},  {"infinit", inf},   {"1e999", inf}, {"1e-999", 0.0}, {"", 0.0},    {"abc", 0.0},
                {"- 1", 0.0},       {"+-1", 0.0},       {"in", 0.0},    {".", 0.0},      {"-", 0.0},   {"1,5", 1.0},
                {"5e-324", 5e-324}, {"1 2", 1.0}};
    for (const auto& row : rows) {
        EXPECT_EQ(leading_double(row.text), row.value) << row.text;
    }
    EXPECT_TRUE(std::isnan(leading_double("nano")));
    EXPECT_TRUE(std::signbit(leading_double("-0x")));
}

TEST(Fields, leading_ints_stop_where_they_cannot_go_on) {
    EXPECT_EQ(leading_int(" 12.9"), 12);
    EXPECT_EQ(leading_int("-3x"), -3);
    EXPECT_EQ(leading_int("+4"), 4);
    EXPECT_EQ(leading_int("x"), 0);
    EXPECT_EQ(leading_int(""), 0);
}

TEST(Fields, a_whole_double_is_nothing_but_a_decimal_number) {
    const struct {
        const char* text;
        double value;
    } good[] = {{"1", 1.0},     {"-1.5", -1.5},  {"+2.5", 2.5}, {"1.", 1.0},    {".5", 0.5},   {"1e5", 1e5},
                {"1E-3", 1e-3}, {"1e-999", 0.0}, {"inf", inf},  {"-INF", -inf}, {"+inf", inf}, {"Infinity", inf}};
    for (const auto& row : good) {
        double value = 77.0;
        EXPECT_TRUE(whole_double(row.text, value)) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
    double value = 0.0;
    EXPECT_TRUE(whole_double("nan", value));
    EXPECT_TRUE(std::isnan(value));
    for (const char* text : {"",   "+",  "-",   ".",   "1.0abc", "abc", "1e",  "1e+",   "1e999", "-1e999", "0x10",
                             " 1", "1 ", "1\t", "+-1", "++1",    "--1", "1,5", "1.2.3", "infi",  "1e5.0"}) {
        EXPECT_FALSE(whole_double(text, value)) << text;
    }
}

TEST(Fields, a_whole_int_is_nothing_but_digits_in_range) {
    int value = 0;
    EXPECT_TRUE(whole_int("12", value));
    EXPECT_EQ(value, 12);
    EXPECT_TRUE(whole_int("-12", value));
    EXPECT_TRUE(whole_int("+12", value));
    EXPECT_TRUE(whole_int("2147483647", value));
    for (const char* text : {"", "1.0", "x", "1x", " 1", "2147483648", "+-1"}) {
        EXPECT_FALSE(whole_int(text, value)) << text;
    }
    EXPECT_EQ(value, 2147483647);
}

TEST(Fields, the_locale_of_the_host_does_not_count) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            break;
        }
    }
    double value = 0.0;
    EXPECT_TRUE(whole_double("1.5", value));
    EXPECT_EQ(value, 1.5);
    EXPECT_EQ(leading_double("1.5"), 1.5);
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
