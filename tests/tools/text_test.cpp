// Texts for display: UTF-8 in every case.
#include "kzb/text.h"

#include <gtest/gtest.h>

namespace kzb::tool {
namespace {

TEST(Text, valid_utf8_stays_and_each_invalid_byte_is_replaced) {
    EXPECT_EQ(valid_utf8("a\xc3\xa9z"), "a\xc3\xa9z");
    EXPECT_EQ(valid_utf8("a\xffz"), "a\xef\xbf\xbdz");
    EXPECT_TRUE(is_utf8(valid_utf8("\xc3(\xe2\x82\xf0\x28\x8c\x28")));
    EXPECT_FALSE(is_utf8("\xed\xa0\x80"));  // a surrogate
}

TEST(Text, printable_takes_control_characters_out) {
    EXPECT_EQ(printable("a\x1b[31m\nb"), "a?[31m\nb");
    EXPECT_EQ(printable_line("a\nb\r\x7f"), "a b??");
}

TEST(Text, store_strings_are_shift_jis) {
    EXPECT_EQ(from_store("plain"), "plain");
    EXPECT_EQ(from_store("\x93\xfa\x96\x7b"), "\xe6\x97\xa5\xe6\x9c\xac");  // U+65E5 U+672C
}

TEST(Text, a_store_string_that_shift_jis_cannot_express_is_utf8) {
    EXPECT_EQ(from_store("caf\xc3\xa9"), "caf\xc3\xa9");  // U+00E9 is in no Shift_JIS
}

TEST(Text, a_store_string_that_is_neither_is_replaced) {
    EXPECT_TRUE(is_utf8(from_store("\xff\x80\xfe")));
}

}  // namespace
}  // namespace kzb::tool
