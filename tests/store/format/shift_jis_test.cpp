// Texts of the file as the store holds them. The Shift_JIS bytes are those of JIS X 0208 and JIS X 0201.
#include "store/format/shift_jis.h"

#include <boost/locale/encoding.hpp>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

using TextEncoding = ModelFile;

const std::string motor_utf8 = "\xe3\x83\xa2\xe3\x83\xbc\xe3\x82\xbf";  // "motor" in katakana
const std::string motor_sjis = "\x83\x82\x81\x5b\x83\x5e";

// Plain text takes no converter; this is why it need not.
TEST(Converter, leaves_each_byte_of_plain_text_as_it_is) {
    for (int byte = 1; byte < 128; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const auto converted = boost::locale::conv::between(text, "Shift_JIS", "UTF-8", boost::locale::conv::stop);
        EXPECT_EQ(converted, text) << byte;
        EXPECT_EQ(stored_text(text), text) << byte;
    }
}

TEST(Converter, never_lengthens_a_text) {
    for (const char* text : {"\xef\xbd\xb1", "\xc3\x97", "\xce\xa9", "\xe2\x84\xab"}) {
        testing::internal::CaptureStdout();
        EXPECT_LE(stored_text(text).size(), std::string(text).size());
        testing::internal::GetCapturedStdout();
    }
    EXPECT_EQ(stored_text("\xef\xbd\xb1"), "\xb1");  // half-width katakana: one byte
    EXPECT_EQ(stored_text("\xce\xa9"), "\x83\xb6");  // Greek capital omega
}

TEST_F(TextEncoding, both_forms_store_shift_jis) {
    EXPECT_EQ(read(Bytes().head().category("c", 0, 0, 1, 0).string_entry("s", motor_utf8 + " 1").end().str()), 0);
    EXPECT_EQ(get_string(store_, "c", "s"), motor_sjis + " 1");
    EXPECT_EQ(read(ascii_file("*c,0,0,1,0,#\na,string,9,\"" + motor_utf8 + "\",#\n")), 0);
    EXPECT_EQ(get_string(store_, "c", "a"), motor_sjis);
    EXPECT_EQ(out_, "");
}

TEST_F(TextEncoding, text_without_a_conversion_is_kept_with_a_message) {
    // An emoji has no place in Shift_JIS; the second text is not UTF-8.
    for (const std::string& text : {std::string("a\xf0\x9f\x98\x80z"), motor_sjis}) {
        EXPECT_EQ(read(Bytes().head().category("c", 0, 0, 1, 0).string_entry("s", text).end().str()), 0);
        EXPECT_EQ(get_string(store_, "c", "s"), text);
        EXPECT_EQ(out_, "Encoding from UTF-8 to SJIS is not performed.");
    }
}

TEST_F(TextEncoding, read_and_written_text_has_changed_its_encoding) {
    EXPECT_EQ(read(ascii_file("*c,0,0,1,0,#\ns,string,9,\"" + motor_utf8 + "\",#\n")), 0);
    EXPECT_TRUE(write_ascii(store_, path("out")));
    EXPECT_NE(slurp(path("out")).find("s,string,6,\"" + motor_sjis + "\",#\n"), std::string::npos);
}

TEST_F(TextEncoding, names_are_not_converted) {
    EXPECT_EQ(read(ascii_file("*" + motor_utf8 + ",1,0,0,0,#\n" + motor_utf8 + ",int,4,#\n")), 0);
    EXPECT_EQ(get_int(store_, motor_utf8, motor_utf8), 4);
}

}  // namespace
}  // namespace kzb::test
