// Old ascii files: lines, quotes, fields of fixed width. Expected values are those that the test puts into the lines.
#include <gmock/gmock.h>

#include <limits>

#include "store/format/legacy_bytes.h"

namespace kzb::test {
namespace {

using ::testing::ElementsAre;
using LegacyAscii = LegacyFile;

TEST_F(LegacyAscii, all_sections_make_one_store) {
    LegacyText file;
    file.version("  900.5").control(10004, 0).line("\"coef_flux\"  0.25");
    file.parameter(2).line("\"RU\" 1.5").line("  \"RA\"\t2.5e0");
    file.settings(3).line("\"n\" int -7").line("\"x\" double 0.125").line("\"t\" string \"one\"");
    two_axes(file.table("flux", {0, 1}));
    EXPECT_EQ(read_ascii_file(file.str()), 0);
    EXPECT_EQ(store_.input_type, "ascii");
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(err_, "");
    EXPECT_EQ(store_.version, 900.5);
    EXPECT_THAT(category_names(),
                ElementsAre("version", "control", "parameter", "settings", "distance_flux", "information"));
    EXPECT_EQ(get_double(store_, "version", "version"), 900.5);
    EXPECT_EQ(get_int(store_, "control", "motor_type"), 10004);
    EXPECT_EQ(get_double(store_, "control", "coef_flux"), 0.25);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.5);
    EXPECT_EQ(get_double(store_, "parameter", "RA"), 2.5);
    EXPECT_EQ(get_int(store_, "settings", "n"), -7);
    EXPECT_EQ(get_double(store_, "settings", "x"), 0.125);
    EXPECT_STREQ(get_string(store_, "settings", "t"), "one");
    expect_two_axes(table("distance_flux", "flux"));
    EXPECT_EQ(table("distance_flux", "flux").cyclic, (std::vector<int>{0, 1}));
    EXPECT_EQ(get_int(store_, "distance_flux", "reading_method"), 1);
    EXPECT_EQ(get_int(store_, "distance_flux", "table_type"), 2);
}

TEST_F(LegacyAscii, lines_may_end_as_on_the_other_system) {
    LegacyText file;
    two_axes(file.version("900.5").control(10004, 0).table("flux", {0, 1}));
    std::string text;
    for (const char c : file.str()) {
        if (c == '\n') {
            text += '\r';
        }
        text += c;
    }
    EXPECT_EQ(read_ascii_file(text), 0);
    EXPECT_EQ(store_.version, 900.5);
    expect_two_axes(table("distance_flux", "flux"));
}

TEST_F(LegacyAscii, last_line_needs_no_line_feed) {
    LegacyText file;
    std::string text = two_axes(file.table("t", {0, 0})).str();
    text.pop_back();
    EXPECT_EQ(read_ascii_file(text), 0);
    expect_two_axes(table("t", "t"));
}

TEST_F(LegacyAscii, file_without_a_section_reads_as_an_empty_one) {
    for (const char* text : {"", "hello, world", "*unknown\n1\n", "x$DORN-KZa,#\n*control,1,0,0,0,#\n"}) {
        EXPECT_EQ(read_ascii_file(text), 0) << text;
        EXPECT_EQ(store_.error, 0);
        EXPECT_THAT(category_names(), ElementsAre("information"));
    }
}

// fgets with room for 128: the piece behind byte 127 is a line of its own.
TEST_F(LegacyAscii, line_of_more_than_127_bytes_is_two_lines) {
    EXPECT_EQ(read_ascii_file(std::string(127, 'x') + "*parameter\nx\n1\n\"RU\" 1.5\n"), 0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.5);
    EXPECT_EQ(read_ascii_file(std::string(126, 'x') + "*parameter\nx\n1\n\"RU\" 2.5\n"), 0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.5);
}

TEST_F(LegacyAscii, version_without_a_true_number_is_passed_over) {
    for (const char* value : {"1000.5", "-1", "nan", "text", ""}) {
        EXPECT_EQ(read_ascii_file(LegacyText().version(value).str()), 0) << value;
        EXPECT_FALSE(has_category(store_, "version")) << value;
    }
    EXPECT_EQ(read_ascii_file(LegacyText().version("1000").str()), 0);
    EXPECT_EQ(store_.version, 1000.0);
}

// ---- Control

TEST_F(LegacyAscii, control_keys_have_their_kinds) {
    LegacyText file;
    file.control().line("\"motor_type\" 10004.9").line("\"number_of_poles\" 8").line("\"accuracy_type\" -2.9");
    file.line("\"number_of_tables\" 4").line("\"any key\" 1").str();
    EXPECT_EQ(read_ascii_file(file.str()), 1);  // a word ends at a blank: the last key has no second quote
    EXPECT_EQ(told("error at RemoveDoubleQuatation"), 1U);
    EXPECT_EQ(told(ascii_fault), 1U);
    EXPECT_EQ(get_int(store_, "control", "motor_type"), 10004);
    EXPECT_EQ(get_int(store_, "control", "number_of_poles"), 8);
    EXPECT_EQ(get_int(store_, "control", "accuracy_type"), -2);
    EXPECT_EQ(get_double(store_, "control", "number_of_tables"), 4.0);
    EXPECT_EQ(get_int(store_, "control", "number_of_tables"), 0);
}

TEST_F(LegacyAscii, number_that_no_int_holds_is_the_lowest) {
    for (const char* value : {"1e10", "-1e10", "nan", "inf", "2147483648"}) {
        EXPECT_EQ(read_ascii_file(LegacyText().control().line("\"number_of_poles\" " + std::string(value)).str()), 0);
        EXPECT_EQ(get_int(store_, "control", "number_of_poles"), std::numeric_limits<int>::min()) << value;
    }
    EXPECT_EQ(read_ascii_file(LegacyText().control().line("\"number_of_poles\" 2147483647.5").str()), 0);
    EXPECT_EQ(get_int(store_, "control", "number_of_poles"), std::numeric_limits<int>::max());
}

TEST_F(LegacyAscii, coefficient_files_are_texts) {
    LegacyText file;
    file.control().line("\"coef_file_torque\" \"torque.csv\"").line("\"coef_file_force\"   \"force.csv\"");
    EXPECT_EQ(read_ascii_file(file.line("\"coef_force\" 2").str()), 0);
    EXPECT_STREQ(get_string(store_, "control", "coef_file_torque"), "torque.csv");
    EXPECT_STREQ(get_string(store_, "control", "coef_file_force"), "force.csv");
    EXPECT_EQ(get_double(store_, "control", "coef_force"), 2.0);
}

TEST_F(LegacyAscii, text_with_a_blank_is_kept_up_to_it_and_told) {
    EXPECT_EQ(read_ascii_file(LegacyText()
                                  .control(10004, 0)
                                  .line("\"coef_file_torque\" \"my torque.csv\"")
                                  .settings(2)
                                  .line("\"t\" s \"a title\"")
                                  .line("\"n\" i 3")
                                  .str()),
              0);
    EXPECT_EQ(told("error at RemoveDoubleQuatation"), 2U);
    EXPECT_STREQ(get_string(store_, "control", "coef_file_torque"), "my");
    EXPECT_STREQ(get_string(store_, "settings", "t"), "a");
    EXPECT_EQ(get_int(store_, "settings", "n"), 3);
}

TEST_F(LegacyAscii, control_goes_to_the_next_star_which_is_read_as_a_section) {
    EXPECT_EQ(read_ascii_file(LegacyText()
                                  .control(10004, 0)
                                  .line("")
                                  .line("\"coef_flux\" 3")
                                  .line("  ")
                                  .parameter(1)
                                  .line("\"RU\" 4")
                                  .str()),
              0);
    EXPECT_EQ(get_double(store_, "control", "coef_flux"), 3.0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 4.0);
}

TEST_F(LegacyAscii, control_entry_without_a_number_is_zero) {
    EXPECT_EQ(read_ascii_file(LegacyText().control().line("\"incomplete\"").str()), 0);
    EXPECT_EQ(get_double(store_, "control", "incomplete"), 0.0);
    EXPECT_EQ(store_.warning, 90033);
}

TEST_F(LegacyAscii, more_than_1000_control_entries_leave_90003) {
    LegacyText file;
    file.control();
    for (int i = 0; i < 1000; ++i) {
        file.line(std::string("\"k").append(std::to_string(i)).append("\" 1"));
    }
    EXPECT_EQ(read_ascii_file(file.str()), 0);
    EXPECT_EQ(find_category(store_, "control")->doubles.size(), 1000U);
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(read_ascii_file(file.line("\"last\" 1").str()), 1);
    EXPECT_EQ(store_.error, 90003);
    EXPECT_EQ(told(ascii_fault), 1U);
    EXPECT_FALSE(has_parameter(store_, "control", "last"));
}

// ---- Parameter and settings

TEST_F(LegacyAscii, counted_entries_are_as_many_as_told) {
    EXPECT_EQ(read_ascii_file(LegacyText().parameter(1).line("\"RU\" 1").line("\"RA\" 2").str()), 0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.0);
    EXPECT_FALSE(has_parameter(store_, "parameter", "RA"));
    for (const int count : {-1, 0}) {
        EXPECT_EQ(read_ascii_file(LegacyText().settings(count).line("\"n\" i 2").str()), 0);
        EXPECT_FALSE(has_category(store_, "settings"));
    }
}

TEST_F(LegacyAscii, more_entries_announced_than_there_are_end_at_the_next_section_or_with_the_file) {
    EXPECT_EQ(read_ascii_file(
                  LegacyText().parameter(0x7fffffff).line("\"RU\" 1").settings(0x7fffffff).line("\"n\" i 2").str()),
              0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.0);
    EXPECT_EQ(get_int(store_, "settings", "n"), 2);
}

TEST_F(LegacyAscii, type_word_counts_by_its_first_letter) {
    LegacyText file;
    file.settings(5).line("\"a\" i 1").line("\"b\" integer 2").line("\"c\" d 3").line("\"d\" str \"4\"");
    EXPECT_EQ(read_ascii_file(file.line("\"e\" x 5").str()), 0);
    EXPECT_EQ(get_int(store_, "settings", "a"), 1);
    EXPECT_EQ(get_int(store_, "settings", "b"), 2);
    EXPECT_EQ(get_double(store_, "settings", "c"), 3.0);
    EXPECT_STREQ(get_string(store_, "settings", "d"), "4");
    EXPECT_FALSE(has_parameter(store_, "settings", "e"));
}

TEST_F(LegacyAscii, entry_without_quotes_is_told_and_passed_over) {
    EXPECT_EQ(read_ascii_file(LegacyText().parameter(2).line("RU 1").line("\"RA\" 2").str()), 0);
    EXPECT_EQ(told("error at RemoveDoubleQuatation"), 1U);
    EXPECT_EQ(get_double(store_, "parameter", "RA"), 2.0);
    EXPECT_EQ(find_category(store_, "parameter")->doubles.size(), 1U);
}

// ---- Tables

TEST_F(LegacyAscii, shaft_name_stands_with_reading_method_31000_alone) {
    LegacyText file;
    file.line("*table").line("31000").line("  *any*name ").line("5").line("\"shaft\"").line("2");
    file.line("         1         0");
    EXPECT_EQ(read_ascii_file(two_axes(file).str()), 0);
    expect_two_axes(table("anyname", "anyname"));
    EXPECT_STREQ(get_string(store_, "anyname", "ShaftName"), "shaft");
    EXPECT_EQ(get_int(store_, "anyname", "reading_method"), 31000);
    EXPECT_EQ(get_int(store_, "anyname", "table_type"), 5);
    EXPECT_EQ(table("anyname", "anyname").cyclic, (std::vector<int>{1, 0}));
}

TEST_F(LegacyAscii, flags_stand_in_fields_of_ten) {
    const auto flags_of = [&](const std::string& line) {
        LegacyText file;
        file.line("*table").line("1").line("*t").line("2").line("2").line(line);
        EXPECT_EQ(read_ascii_file(two_axes(file).str()), 0);
        return table("t", "t").cyclic;
    };
    EXPECT_THAT(flags_of("         1         1"), ElementsAre(1, 1));
    EXPECT_THAT(flags_of("1         2"), ElementsAre(1, 2));
    EXPECT_THAT(flags_of("00000000010000000002"), ElementsAre(1, 2));
    EXPECT_THAT(flags_of("1 1"), ElementsAre(1, 0));  // the second field is not there
    EXPECT_THAT(flags_of(""), ElementsAre(0, 0));
}

// value = 10000 first + 1000 second + 100 third + 10 row + column, nodes 1, 2, ... on each axis.
TEST_F(LegacyAscii, outer_axes_stand_around_the_blocks) {
    const auto add_block = [](LegacyText& file, double base) { file.block({1, 2}, {{1, base + 11, base + 12}}); };
    LegacyText three;
    three.table("t3", {0, 1, 1}).line("2");
    LegacyText four;
    four.table("t4", {0, 0, 0, 1}).line("2");
    LegacyText five;
    five.table("t5", {0, 0, 0, 0, 1}).line("2");
    for (const int a : {1, 2}) {
        add_block(three.line(std::to_string(a)), 100 * a);
        four.line(std::to_string(a)).line("2");
        five.line(std::to_string(a)).line("2");
        for (const int b : {1, 2}) {
            add_block(four.line(std::to_string(b)), 1000 * a + 100 * b);
            five.line(std::to_string(b)).line("1").line("1");
            add_block(five, 10000 * a + 1000 * b + 100);
        }
    }
    EXPECT_EQ(read_ascii_file(three.str() + four.str() + five.str()), 0);
    EXPECT_EQ(err_, "");
    EXPECT_EQ(table("t3", "t3").sizes, (std::vector<int>{2, 1, 2}));
    EXPECT_EQ(numbers(table("t3", "t3").values), (std::vector<double>{111, 112, 211, 212}));
    EXPECT_EQ(table("t3", "t3").cyclic, (std::vector<int>{0, 1, 1}));
    EXPECT_EQ(table("t4", "t4").sizes, (std::vector<int>{2, 2, 1, 2}));
    EXPECT_EQ(numbers(table("t4", "t4").values), (std::vector<double>{1111, 1112, 1211, 1212, 2111, 2112, 2211, 2212}));
    EXPECT_EQ(table("t5", "t5").sizes, (std::vector<int>{2, 2, 1, 1, 2}));
    EXPECT_EQ(numbers(table("t5", "t5").values),
              (std::vector<double>{11111, 11112, 12111, 12112, 21111, 21112, 22111, 22112}));
    EXPECT_EQ(table("t5", "t5").cyclic, (std::vector<int>{0, 0, 0, 0, 1}));
    EXPECT_EQ(numbers(table("t5", "t5").axes[1]), (std::vector<double>{1, 2}));
    EXPECT_EQ(numbers(table("t5", "t5").axes[4]), (std::vector<double>{1, 2}));
}

TEST_F(LegacyAscii, other_numbers_of_axes_are_told_and_give_no_table) {
    for (const int dim : {-1, 0, 1, 6, 0x7fffffff}) {
        KZB_STORE store;
        LegacyText file;
        file.line("*table").line("1").line("*t").line("2").line(std::to_string(dim)).line("         0");
        setenv("KZB_READING_ASCII", "1", 1);
        const std::string path = write(two_axes(file).parameter(1).line("\"RU\" 1").str());
        EXPECT_EQ(captured([&] { return read_model_file(store, path.c_str()); }), 0) << dim;
        EXPECT_EQ(told("The values can not be read for this dimension table."), 1U) << dim;
        EXPECT_EQ(find_table(store, "t", "t"), nullptr);
        EXPECT_EQ(get_int(store, "t", "table_type"), 2);
        EXPECT_EQ(get_double(store, "parameter", "RU"), 1.0);
    }
}

TEST_F(LegacyAscii, category_of_a_table_that_is_none_follows_its_name) {
    LegacyText file;
    file.line("*table").line("1").line("*attractive_force").line("2").line("-1").line("");
    EXPECT_EQ(read_ascii_file(file.str()), 0);
    EXPECT_EQ(get_int(store_, "distance_force", "table_type"), 2);
}

// "%20.13e" fills its field to the last column: the numbers touch.
TEST_F(LegacyAscii, fields_of_twenty_may_touch) {
    LegacyText file;
    file.table("t", {0, 0}).line("1 2").line("-1.0000000000000e+00 2.0000000000000e+00");
    file.line("-5.0000000000000e-01-2.5000000000000e-01-1.2500000000000e-01");
    EXPECT_EQ(read_ascii_file(file.str()), 0);
    EXPECT_EQ(numbers(table("t", "t").axes[1]), (std::vector<double>{-1, 2}));
    EXPECT_EQ(numbers(table("t", "t").axes[0]), (std::vector<double>{-0.5}));
    EXPECT_EQ(numbers(table("t", "t").values), (std::vector<double>{-0.25, -0.125}));
    LegacyText full;  // no blank and no sign between them
    full.table("t", {0, 0}).line("1 1").line("1.00000000000000e+00").line("3.00000000000000e+005.00000000000000e+00");
    EXPECT_EQ(read_ascii_file(full.str()), 0);
    EXPECT_EQ(numbers(table("t", "t").axes[0]), (std::vector<double>{3}));
    EXPECT_EQ(numbers(table("t", "t").values), (std::vector<double>{5}));
}

TEST_F(LegacyAscii, rows_may_be_as_long_as_they_need) {
    constexpr int columns = 1000;  // 20020 bytes to a row
    std::vector<double> nodes;
    std::vector<double> row{7};
    for (int c = 0; c < columns; ++c) {
        nodes.push_back(c);
        row.push_back(c + 0.5);
    }
    LegacyText file;
    EXPECT_EQ(read_ascii_file(file.table("t", {0, 0}).block(nodes, {row, row}).str()), 0);
    EXPECT_EQ(table("t", "t").sizes, (std::vector<int>{2, columns}));
    EXPECT_EQ(table("t", "t").values[0], 0.5);
    EXPECT_EQ(table("t", "t").values[columns + 999], 999.5);
    EXPECT_EQ(table("t", "t").axes[1][999], 999.0);
}

TEST_F(LegacyAscii, later_block_with_other_sizes_is_cut_to_the_table) {
    LegacyText file;
    file.table("t", {0, 0, 0}).line("3").line("1").block({1, 2}, {{1, 11, 12}, {2, 21, 22}});
    file.line("2").block({1, 2, 3}, {{1, 31, 32, 33}, {2, 41, 42, 43}, {3, 51, 52, 53}});
    file.line("3").block({1}, {{1, 61}}).parameter(1).line("\"RU\" 1.5");
    EXPECT_EQ(read_ascii_file(file.str()), 0);
    EXPECT_EQ(told("index is invalid\n"), 1U);
    EXPECT_EQ(table("t", "t").sizes, (std::vector<int>{3, 2, 2}));
    EXPECT_EQ(numbers(table("t", "t").values), (std::vector<double>{11, 12, 21, 22, 31, 32, 41, 42, 61, 0, 0, 0}));
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.5);
}

TEST_F(LegacyAscii, sizes_that_the_file_cannot_hold_are_refused_before_memory_is_taken) {
    for (const char* sizes :
         {"2147483647 2147483647", "2147483647 1", "1 2147483647", "1000 1000", "0 3", "2 -1", "2"}) {
        LegacyText file;
        file.table("t", {0, 0}).line(sizes).numbers({1, 2, 3}).numbers({1, 2, 3, 4});
        EXPECT_EQ(read_ascii_file(file.str()), 1) << sizes;
        EXPECT_EQ(told(ascii_fault), 1U) << sizes;
        EXPECT_EQ(find_table(store_, "t", "t"), nullptr) << sizes;
    }
    LegacyText outer;
    EXPECT_EQ(read_ascii_file(two_axes(outer.table("t", {0, 0, 0}).line("2147483647").line("1")).str()), 1);
    EXPECT_EQ(find_table(store_, "t", "t"), nullptr);
}

TEST_F(LegacyAscii, table_with_a_missing_number_fails) {
    for (const char* row : {"                   1", "", "                   1                   x"}) {
        LegacyText file;
        file.table("t", {0, 0}).line("1 1").numbers({1}).line(row).parameter(1).line("\"RU\" 1");
        EXPECT_EQ(read_ascii_file(file.str()), 1) << row;
        EXPECT_EQ(told(ascii_fault), 1U);
        EXPECT_EQ(store_.error, 0);
    }
}

TEST_F(LegacyAscii, table_head_cut_by_the_end_of_the_file_fails) {
    const std::string whole = LegacyText().table("t", {0, 0}).str();
    for (const std::size_t length : {whole.find("1\n"), whole.find("*t\n"), whole.find("2\n"), whole.rfind("2\n")}) {
        EXPECT_EQ(read_ascii_file(whole.substr(0, length)), 1) << length;
        EXPECT_EQ(told(ascii_fault), 1U);
    }
}

TEST_F(LegacyAscii, d_flux_is_a_table_and_its_first_value_a_double) {
    LegacyText file;
    EXPECT_EQ(read_ascii_file(two_axes(file.control(10000, 1).table("d_flux", {0, 0})).str()), 0);
    expect_two_axes(table("d_flux", "d_flux"));
    EXPECT_EQ(get_double(store_, "d_flux", "d_flux"), 110.0);
}

}  // namespace
}  // namespace kzb::test
