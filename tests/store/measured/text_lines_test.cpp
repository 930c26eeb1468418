// Lines in pieces. Expected pieces: what fgets of the C library gives for the same file.
#include "store/measured/text_lines.h"

#include <cstdio>
#include <memory>
#include <random>

#include "measured_store.h"

namespace {

using TextLines = kzb_test::Measured;

struct Piece {
    std::string text;
    bool ended;
    bool operator==(const Piece&) const = default;
};

std::vector<Piece> pieces_of_fgets(const std::string& path, std::size_t limit) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "r"), &std::fclose);
    std::vector<Piece> pieces;
    std::vector<char> buffer(limit + 1);
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file.get()) != nullptr) {
        pieces.push_back({buffer.data(), std::feof(file.get()) != 0});
    }
    return pieces;
}

std::vector<Piece> pieces_of(const std::string& path, std::size_t limit) {
    kzb::TextLines lines(path.c_str());
    std::vector<Piece> pieces;
    while (lines.next(limit)) {
        pieces.push_back({lines.line(), lines.ended()});
    }
    EXPECT_TRUE(lines.ended());
    EXPECT_TRUE(lines.line().empty());
    return pieces;
}

TEST_F(TextLines, pieces_are_those_of_fgets) {
    std::mt19937 random(1);
    const char letters[] = {'a', ',', '\n', '\n', '\0', '\xff'};
    for (int round = 0; round < 300; ++round) {
        std::string text;
        const std::size_t length = random() % 60;
        for (std::size_t i = 0; i < length; ++i) {
            text.push_back(letters[random() % std::size(letters)]);
        }
        const std::string path = file(text);
        for (const std::size_t limit : {1U, 2U, 5U, 10U, 100U}) {
            EXPECT_EQ(pieces_of(path, limit), pieces_of_fgets(path, limit)) << limit;
        }
    }
}

TEST_F(TextLines, a_piece_that_fills_its_room_does_not_see_the_end) {
    const std::vector<Piece> expected{{"abcde", false}};
    EXPECT_EQ(pieces_of(file("abcde"), 5), expected);
    EXPECT_EQ(pieces_of(file("abcde"), 6), (std::vector<Piece>{{"abcde", true}}));
}

TEST_F(TextLines, a_carriage_return_with_its_line_feed_is_one) {
    EXPECT_EQ(pieces_of(file("ab\r\nc\rd\r\n"), 3),
              (std::vector<Piece>{{"ab\n", false}, {"c\rd", false}, {"\n", false}}));
}

TEST_F(TextLines, rewinding_starts_anew) {
    kzb::TextLines lines(file("ab\ncd").c_str());
    while (lines.next(100)) {
    }
    lines.rewind();
    EXPECT_FALSE(lines.ended());
    EXPECT_TRUE(lines.next(100));
    EXPECT_EQ(lines.line(), "ab\n");
}

// The room as it is defined: scan ahead for the longest line, stop at a byte 0xFF, then read with that much room.
std::vector<std::string> block_lines_by_scanning(const std::string& path) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "r"), &std::fclose);
    std::size_t longest = 0;
    std::size_t count = 0;
    for (int byte = std::fgetc(file.get()); byte != EOF && byte != 0xff; byte = std::fgetc(file.get())) {
        longest = std::max(longest, ++count);
        count = byte == '\n' ? 0 : count;
    }
    std::rewind(file.get());
    std::vector<char> buffer(std::max<std::size_t>(longest + 1, 100));
    std::vector<std::string> lines;
    while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file.get()) != nullptr) {
        lines.emplace_back(buffer.data());
    }
    return lines;
}

TEST_F(TextLines, lines_of_a_block_have_the_room_of_the_longest_one) {
    std::mt19937 random(2);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (auto line = random() % 8; line > 0; --line) {
            std::string letters(random() % 4 == 0 ? random() % 300 : 95 + random() % 10, 'a');
            if (random() % 3 == 0 && !letters.empty()) {
                letters[random() % letters.size()] = '\xff';
            }
            text += letters + (random() % 9 == 0 ? "" : "\n");
        }
        const std::string path = file(text);
        kzb::TextLines lines(path.c_str());
        kzb::BlockRoom room;
        std::vector<std::string> read;
        while (lines.next(room)) {
            read.push_back(lines.line());
        }
        EXPECT_EQ(read, block_lines_by_scanning(path));
    }
}

}  // namespace
