// Table blocks: numbers, missing numbers, sizes, lines of any length.
#include "measured_store.h"

namespace {

using namespace kzb_test;
using CorrectionBlock = Measured;
using Numbers = std::vector<double>;

constexpr const char* corrupt_text = "The correction file is corrupt.";
constexpr const char* no_rows_text = "The num of row is zero.\n";

std::size_t times_said(const std::string& output, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = output.find(text); at != std::string::npos; at = output.find(text, at + 1)) {
        ++count;
    }
    return count;
}

std::string torque_block(const std::string& rest) {
    return correction_file("$KZ_Correction_Torque," + rest);
}

TEST_F(CorrectionBlock, numbers_are_read_up_to_where_they_end) {
    EXPECT_EQ(correct(torque_block("2x,4\nlabel,-5,+1e1, 2.5 deg,0x10\n1.5A,1,.5,1e,inf\nrow,x,-2e-1,nothing,infix\n")),
              0);
    EXPECT_EQ(nodes("correction", "torque", 1), (Numbers{1.5, 0.0}));
    EXPECT_EQ(nodes("correction", "torque", 2), (Numbers{-5.0, 10.0, 2.5, 16.0}));
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(values("torque"), (Numbers{1.0, 0.5, 1.0, inf, 0.0, -0.2, 0.0, inf}));
}

TEST_F(CorrectionBlock, commas_side_by_side_separate_like_one) {
    EXPECT_EQ(correct(torque_block(",1,,2\n,label,,0,180\n,,10,,2,3,,\n")), 0);
    EXPECT_EQ(values("torque"), (Numbers{2.0, 3.0}));
    EXPECT_EQ(nodes("correction", "torque", 1), Numbers{10.0});
}

TEST_F(CorrectionBlock, commas_at_the_line_end_stand_for_no_number) {
    for (const char* row : {"10,2\n", "10,2,\n", "10,2,,\n", "10,2,,,\r\n"}) {
        TestStore store;
        testing::internal::CaptureStderr();
        EXPECT_EQ(kzb_read_correction_file(file(torque_block("1,2\nl,0,180\n" + std::string(row))).c_str(), store), 1);
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(kzb_has_error(store), 90019) << row;
    }
}

TEST_F(CorrectionBlock, further_tokens_are_passed_over) {
    EXPECT_EQ(correct(torque_block("1,2,9,9\nlabel,0,180,360\n10,2,3,4,5\n")), 0);
    EXPECT_EQ(values("torque"), (Numbers{2.0, 3.0}));
}

TEST_F(CorrectionBlock, the_next_item_may_follow_at_once) {
    EXPECT_EQ(correct(correction_file(one_factor("Torque", "2") + one_factor("Ironloss", "3"))), 0);
    EXPECT_EQ(values("torque"), Numbers{2.0});
    EXPECT_EQ(values("ironloss"), Numbers{3.0});
}

TEST_F(CorrectionBlock, a_missing_number_is_corrupt_and_ends_the_reading) {
    for (const char* rest :
         {"2,2\nlabel,0\n1,2,3\n4,5,6\n", "2,2\nlabel,0,1\n1,2\n4,5,6\n", "2,2\nlabel,0,1\n1,2,3\n\n",
          "2,2\nlabel,0,1\n1,2,3\n4,5\n", "2,2\n\n1,2,3\n4,5,6\n", "2\nlabel,0\n1,2\n", "\n"}) {
        TestStore store;
        testing::internal::CaptureStderr();
        const std::string path = file(torque_block(std::string(rest) + one_factor("Ironloss", "3")));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 1) << rest;
        EXPECT_EQ(times_said(testing::internal::GetCapturedStderr(), corrupt_text), 1U) << rest;
        EXPECT_EQ(kzb_has_error(store), 90019) << rest;
        EXPECT_EQ(kzb_has_parameter("correction", "ironloss", store), 0) << rest;
        EXPECT_EQ(kzb_get_int("information", "torque_correction_counter", store), 1);
    }
}

TEST_F(CorrectionBlock, a_table_stays_as_far_as_it_had_come) {
    correct(torque_block("3,2\nlabel,0,180\n10,2,3\n20,4\n"));
    EXPECT_EQ(sizes("correction", "torque"), (std::vector<int>{3, 2}));
    EXPECT_EQ(values("torque"), (Numbers{2.0, 3.0, 4.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(nodes("correction", "torque", 1), Numbers(3, 1.7976931348623157e308));  // no grid
    EXPECT_EQ(kzb_get_table_cyclic_flag("correction", "torque", 2, store_), 1);
}

TEST_F(CorrectionBlock, a_file_that_ends_inside_a_block_has_no_end_marker) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(correct("$KZ_Correction_Start\n$KZ_Correction_MotorType,PMSM\n$KZ_Correction_Torque,2,2\nl,0,1\n1,2,3\n"),
              1);
    EXPECT_EQ(error(), 90016);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(CorrectionBlock, no_rows_or_no_columns_skip_the_block_with_a_message) {
    for (const char* size : {"0,2", "2,0", "-1,2", "2,-2147483648", "x,y", " , "}) {
        TestStore store;
        testing::internal::CaptureStderr();
        const std::string path = file(torque_block(std::string(size) + "\nlabel\n1\n" + one_factor("Ironloss", "3")));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 0) << size;
        EXPECT_EQ(times_said(testing::internal::GetCapturedStderr(), no_rows_text), 1U) << size;
        EXPECT_EQ(kzb_has_error(store), 0) << size;
        EXPECT_EQ(kzb_has_parameter("correction", "ironloss", store), 1) << size;
        // The record without values can be read, looked up, merged into and saved.
        const int at[2] = {0, 0};
        EXPECT_EQ(kzb_get_table_value("correction", "torque", at, store), 1.0);
        const double point[2] = {0.0, 0.0};
        EXPECT_EQ(kzb_get_table_interpolated_value("correction", "torque", point, "Linear", store),
                  1.7976931348623157e308);
        kzb_read_correction_file(file(correction_file(one_factor("Torque", "2"))).c_str(), store);
        kzb_writer("/dev/null", store);
        testing::internal::CaptureStderr();
        testing::internal::GetCapturedStderr();
    }
}

TEST_F(CorrectionBlock, sizes_that_the_file_cannot_hold_are_corrupt_without_a_table) {
    for (const char* size :
         {"2147483647,2147483647", "2147483647,1", "1,2147483647", "99999999999,2", "100000,100000"}) {
        TestStore store;
        testing::internal::CaptureStderr();
        const std::string path = file(torque_block(std::string(size) + "\nlabel,0,1\n1,2,3\n"));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 1) << size;
        testing::internal::GetCapturedStderr();
        // 99999999999 is cut to 32 bits, 1215752191.
        EXPECT_EQ(kzb_has_error(store), 90019) << size;
        EXPECT_EQ(kzb_has_parameter("correction", "torque", store), 0) << size;
    }
}

TEST_F(CorrectionBlock, a_large_table_that_the_file_holds_is_read) {
    std::string columns;  // more than a million values of one digit
    std::string row;
    for (int column = 0; column < 1000; ++column) {
        columns.append(",").append(std::to_string(column));
        row.append(",").append(std::to_string(column % 10));
    }
    std::string text = "1500,1000\nlabel" + columns;
    for (int i = 0; i < 1500; ++i) {
        text.append("\n").append(std::to_string(i)).append(row);
    }
    EXPECT_EQ(correct(torque_block(text + "\n")), 0);
    EXPECT_EQ(sizes("correction", "torque"), (std::vector<int>{1500, 1000}));
    EXPECT_EQ(value("correction", "torque", {1499, 999}), 9.0);
}

// The shortest text of its size: just long enough for a table of 1500 by 1000 digits.
TEST_F(CorrectionBlock, the_shortest_text_of_a_large_table_is_read) {
    std::string line = "1";
    for (int column = 0; column < 1000; ++column) {
        line += ",1";
    }
    std::string text = "$KZ_Correction_Torque,1500,1000\n";
    for (int i = 0; i < 1501; ++i) {
        text += line + "\n";
    }
    EXPECT_EQ(correct(correction_file(text)), 0);
    EXPECT_EQ(value("correction", "torque", {1499, 999}), 1.0);
}

TEST_F(CorrectionBlock, table_lines_may_have_any_length) {
    for (const std::size_t blanks : {50U, 98U, 99U, 100U, 126U, 127U, 128U, 1000U, 70000U, 1000000U}) {
        TestStore store;
        const std::string gap(blanks, ' ');
        const std::string path =
            file(torque_block("1,2\nlabel" + gap + ",0" + gap + ",180\n" + gap + "10,2," + gap + "3" + gap + "\n"));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 0) << blanks;
        const int at[2] = {0, 1};
        EXPECT_EQ(kzb_get_table_value("correction", "torque", at, store), 3.0) << blanks;
        EXPECT_EQ(kzb_get_table_axis_value("correction", "torque", 2, 1, store), 180.0) << blanks;
    }
}

// A byte 0xFF hides what follows from the search for the longest line: the room for a line is then that of the lines
// before it, 99 bytes at least, and a longer line comes in pieces.
TEST_F(CorrectionBlock, behind_a_byte_255_lines_are_cut_to_the_room_of_those_before) {
    // Row of 99 bytes and its line feed: the first piece ends before the line feed, which is then the next line.
    const std::string pad(99 - 4, ' ');
    EXPECT_EQ(correct(torque_block("2,1\nl,0\n1,2\xff" + pad + "\n2,3\n")), 1);
    EXPECT_EQ(error(), 90019);
    EXPECT_EQ(value("correction", "torque", {0, 0}), 2.0);
    EXPECT_EQ(value("correction", "torque", {1, 0}), 0.0);
}

TEST_F(CorrectionBlock, behind_a_byte_255_a_line_of_99_bytes_still_fits) {
    const std::string pad(98 - 4, ' ');  // 98 bytes and the line feed
    EXPECT_EQ(correct(torque_block("2,1\nl,0\n1,2\xff" + pad + "\n2,3\n")), 0);
    EXPECT_EQ(values("torque"), (Numbers{2.0, 3.0}));
}

TEST_F(CorrectionBlock, a_long_line_before_a_byte_255_makes_room_for_those_behind) {
    const std::string long_label(300, 'l');  // a column line of 303 bytes with its line feed
    const std::string pad(302 - 4, ' ');
    EXPECT_EQ(correct(torque_block("2,1\n" + long_label + ",0\n1,2\xff" + pad + "\n2,3\n")), 0);
    EXPECT_EQ(values("torque"), (Numbers{2.0, 3.0}));
    EXPECT_EQ(correct(correction_file("$KZ_Correction_Ironloss,2,1\n" + long_label + ",0\n1,2\xff" + pad + " \n2,3\n")),
              1);
    EXPECT_EQ(error(), 90019);
}

// The line that holds the byte is itself the longest one so far: its first piece ends before the byte.
TEST_F(CorrectionBlock, a_byte_255_behind_the_longest_line_start_begins_the_next_piece) {
    const std::string pad(200 - 3, ' ');
    EXPECT_EQ(correct(torque_block("2,1\nl,0\n1,2" + pad + "\xff,7\n2,3\n")), 0);
    EXPECT_EQ(values("torque"), (Numbers{2.0, 7.0}));  // "\xff" names the second row
}

TEST_F(CorrectionBlock, table_lines_end_at_a_nul) {
    using namespace std::string_literals;
    EXPECT_EQ(correct(torque_block("1,1\nlabel,20\0,x\n10,2\0,9\n"s)), 0);
    EXPECT_EQ(values("torque"), Numbers{2.0});
    EXPECT_EQ(correct(correction_file("$KZ_Correction_Ironloss,1,1\nlabel,20\n10\0,2\n"s)), 1);
    EXPECT_EQ(error(), 90019);
}

TEST_F(CorrectionBlock, a_dollar_inside_a_block_opens_nothing) {
    EXPECT_EQ(correct(torque_block("1,1\n$KZ_Correction_LdLq,20\n$KZ_Correction_End,2\n")), 0);
    EXPECT_EQ(values("torque"), Numbers{2.0});
}

}  // namespace
