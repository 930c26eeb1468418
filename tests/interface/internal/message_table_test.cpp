// The table of texts for the calling block: its size, its languages, and that the columns are parallel.
#include "interface/message_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>

#include "interface/status.h"

namespace {

using kzb::message_table;

TEST(MessageTable, has_27_texts_of_which_the_first_is_empty) {
    for (const char* const language : {"ENG", "JPN"}) {
        EXPECT_EQ(message_table(language).size(), 27U);
        EXPECT_STREQ(message_table(language)[0], "");
        for (std::size_t k = 1; k < 27; ++k) {
            EXPECT_GT(std::strlen(message_table(language)[k]), 5U) << k;
        }
    }
}

TEST(MessageTable, japanese_is_chosen_by_its_tag_alone) {
    const char* const japanese = message_table("JPN")[2];
    EXPECT_STREQ(japanese, "抵抗値が０または負です。");
    for (const char* const language : {"ENG", "", "jpn", "JPNX", "JP", " JPN"}) {
        EXPECT_STREQ(message_table(language)[2], "Resistance is negative or zero.") << language;
    }
    EXPECT_STREQ(message_table(nullptr)[2], "Resistance is negative or zero.");
}

TEST(MessageTable, texts_stand_as_the_calling_block_knows_them) {
    const auto& english = message_table("ENG");
    EXPECT_STREQ(english[1], "Fail to open the file.\n\"%s\" is not found.");
    EXPECT_STREQ(english[10], "Error occured in solving circuit equations");
    EXPECT_STREQ(english[12], "Invalid sample time. Please input positive value or -1.");
    EXPECT_STREQ(english[24], "The specified circuit does't have a base potential.");
    const auto& japanese = message_table("JPN");
    EXPECT_STREQ(japanese[1], "ファイルのオープンに失敗しました。\n「%s」が見つかりません。");
    EXPECT_STREQ(japanese[9], "モータタイプが不正です。");
    EXPECT_STREQ(japanese[24], "回路の中に基準電位がありません。");
}

TEST(MessageTable, languages_have_the_same_places_to_fill_in) {
    const auto places = [](const std::string& text) {
        std::size_t count = 0;
        for (std::size_t at = text.find("%s"); at != std::string::npos; at = text.find("%s", at + 2)) {
            ++count;
        }
        return count;
    };
    for (std::size_t k = 0; k < 27; ++k) {
        EXPECT_EQ(places(message_table("ENG")[k]), places(message_table("JPN")[k])) << k;
    }
}

TEST(Status, codes_are_unique_and_in_their_range) {
    std::set<int> codes;
#define KZB_COLLECT(name, code, text)                \
    EXPECT_TRUE(codes.insert(code).second) << #name; \
    EXPECT_GT(code, 180000);                         \
    EXPECT_LT(code, 180100);                         \
    EXPECT_STRNE(text, "");
    KZB_STATUS_LIST(KZB_COLLECT)
#undef KZB_COLLECT
    // 180001 and 180002, 180016 to 180021, 180030 to 180065, 180067 and 180068.
    EXPECT_EQ(codes.size(), 2U + 6U + 36U + 2U);
    // Numbers that no call returns.
    for (const int absent : {180000, 180003, 180022, 180066, 180069}) {
        EXPECT_EQ(codes.count(absent), 0U);
    }
}

}  // namespace
