// The ascii form with the line ends of another platform: read as the same text.
#include <gmock/gmock.h>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

using LineEnds = ModelFile;

std::string with_carriage_returns(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c == '\n' ? std::string("\r\n") : std::string(1, c);
    }
    return result;
}

std::string whole_file() {
    return ascii_file(
        "*control,2,1,2,1,#\npoles,int,8,#\nphases,int,3,#\nlength,double,    1.2500000000e-01,#\n"
        "title,string,4,\"text\",#\nlines,string,5,\"a\nb\nc\",#\n" +
        sample_table_ascii("k") + "*parameter,0,0,0,2,#\n" + sample_table_ascii("l") +
        "m,table,1,7,0,\n         7,\n1 2 3 4 5\n6 7\n         0,\n,#\n*empty,0,0,0,0,#\n");
}

TEST_F(LineEnds, both_give_the_same_store_bodies_included) {
    for (const std::string& text : {whole_file(), with_carriage_returns(whole_file())}) {
        store_ = KZB_STORE();
        EXPECT_EQ(read(text), 0);
        EXPECT_EQ(out_ + err_, "");
        load();
        EXPECT_EQ(out_ + err_, "");
        EXPECT_EQ(store_.error, 0);
        ASSERT_EQ(store_.categories.size(), 4U);  // with `information`
        EXPECT_EQ(store_.categories[0].name, "control");
        EXPECT_EQ(store_.categories[2].name, "empty");
        EXPECT_EQ(store_.categories[0].ints[1].keyword, "phases");
        EXPECT_EQ(get_int(store_, "control", "poles"), 8);
        EXPECT_EQ(get_double(store_, "control", "length"), 0.125);
        EXPECT_STREQ(get_string(store_, "control", "title"), "text");
        EXPECT_STREQ(get_string(store_, "control", "lines"), "a\nb\nc");
        expect_sample_table(table("control", "k"));
        expect_sample_table(table("parameter", "l"));
        EXPECT_EQ(numbers(table("parameter", "m").values), (std::vector<double>{1, 2, 3, 4, 5, 6, 7}));
        EXPECT_FALSE(table("parameter", "m").axes[0]);
    }
}

// The file as its binary twin shows both stores to the last byte.
TEST_F(LineEnds, both_are_written_alike) {
    std::string written[2];
    for (const bool returns : {false, true}) {
        store_ = KZB_STORE();
        read(returns ? with_carriage_returns(whole_file()) : whole_file());
        load();
        ASSERT_TRUE(write_binary(store_, path("out")));
        written[returns ? 1 : 0] = slurp(path("out"));
    }
    EXPECT_EQ(written[0], written[1]);
}

TEST_F(LineEnds, lone_carriage_return_is_a_byte_like_others) {
    EXPECT_EQ(read(ascii_file("*c\r,1,0,1,0,#\nk\rl,int,2,#\ns,string,4,\"\r\ra\r\",#\n")), 0);
    EXPECT_EQ(err_, "");
    EXPECT_EQ(get_int(store_, "c\r", "k\rl"), 2);
    EXPECT_STREQ(get_string(store_, "c\r", "s"), "\r\ra\r");
}

// A line of 126 bytes and its end is one line of a block, whatever the end; one more byte makes two of it.
TEST_F(LineEnds, limit_of_a_line_counts_its_end_once) {
    for (const std::size_t length : {125U, 126U, 127U, 128U}) {
        const std::string text =
            ascii_file("*c,1,0,0,1,#\nt,table,1,5,0,\n5,\n" + std::string(length, ' ') + "\n0,\n,#\nb,int,2,#\n");
        std::string said[2];
        int found[2] = {};
        for (const bool returns : {false, true}) {
            store_ = KZB_STORE();
            read(returns ? with_carriage_returns(text) : text);
            said[returns ? 1 : 0] = err_;
            found[returns ? 1 : 0] = get_int(store_, "c", "b");
        }
        EXPECT_EQ(said[0].empty(), length < 127) << length;
        EXPECT_EQ(said[0], said[1]) << length;
        EXPECT_EQ(found[0], found[1]) << length;
    }
}

// A pair of the two bytes at every place of the buffer's edges.
TEST_F(LineEnds, pair_may_lie_across_the_pieces_in_which_the_file_is_read) {
    for (const std::size_t edge : {4096U, 12288U, 28672U, 65536U}) {
        for (std::size_t shift = 0; shift < 8; ++shift) {
            const std::string front = "$DORN-KZa,#\r\n*c,2,0,0,0,#\r\nfirst,int,1";
            // The skipped line feeds of a token bring the pair behind the value to the edge.
            std::string text = front;
            while (text.size() + 3 < edge + shift) {
                text += text.size() + 4 < edge + shift ? "\r\n" : "\n";
            }
            text += ",#\r\n\r\n\r\nsecond,int,2,#\r\n$end_of_kzb_file,#\r\n";
            store_ = KZB_STORE();
            EXPECT_EQ(read(text), 0);
            EXPECT_EQ(err_, "") << edge << ' ' << shift;
            EXPECT_EQ(get_int(store_, "c", "first"), 1);
            EXPECT_EQ(get_int(store_, "c", "second"), 2) << edge << ' ' << shift;
        }
    }
}

TEST_F(LineEnds, binary_form_keeps_every_byte) {
    const auto file = Bytes().head().category("c", 0, 0, 1, 0).string_entry("s", "a\r\nb").end().str();
    EXPECT_EQ(read(file), 0);
    EXPECT_STREQ(get_string(store_, "c", "s"), "a\r\nb");
}

}  // namespace
}  // namespace kzb::test
