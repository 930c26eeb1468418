// The document that the log writes, its echoes, and its end.
#include "diagnostics/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

std::string contents(const std::filesystem::path& path) {
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return all.str();
}

void report(int level, int code, bool own_formatter, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    kzb::log_message(level, code, format, arguments, own_formatter);
    va_end(arguments);
}

class Log : public testing::Test {
  protected:
    void SetUp() override {
        path_ = std::filesystem::temp_directory_path() / ("kzb_log_" + std::to_string(::getpid()) + ".xml");
        std::filesystem::remove(path_);
        settings_.path = path_.string();
    }
    void TearDown() override {
        kzb::log_finish();
        std::filesystem::remove(path_);
    }
    void create() { kzb::log_create(settings_); }
    std::string text() const { return contents(path_); }
    std::filesystem::path path_;
    kzb::LogSettings settings_;
};

TEST_F(Log, file_starts_with_the_declaration_when_an_encoding_is_set) {
    settings_.encoding = "UTF-8";
    create();
    kzb::log_open();
    EXPECT_EQ(text(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<logfile ver=\"0.3\">\n");
}

TEST_F(Log, file_has_no_declaration_without_an_encoding) {
    create();
    kzb::log_open();
    EXPECT_EQ(text(), "<logfile ver=\"0.3\">\n");
}

TEST_F(Log, message_opens_the_log_and_carries_only_what_is_set) {
    create();
    EXPECT_FALSE(kzb::log_is_open());
    kzb::log_warning(7, "value %d of %s", 3, "five");
    EXPECT_TRUE(kzb::log_is_open());
    EXPECT_EQ(text(),
              "<logfile ver=\"0.3\">\n<message>\n\t<code>7</code>\n\t<status>Warning</status>\n"
              "\t<text>value 3 of five</text>\n</message>\n");
}

TEST_F(Log, message_carries_module_version_category_data_and_comments_in_this_order) {
    settings_.module = "calc";
    settings_.version = "1.2";
    create();
    kzb::log_set_category("Condition");
    kzb::log_add_data("k1", "v1", "int");
    kzb::log_add_data("k2", "v2", nullptr);
    kzb::log_add_comment("first");
    kzb::log_add_comment("second");
    report(1, -5, false, "text");
    EXPECT_EQ(text(),
              "<logfile ver=\"0.3\">\n<message>\n\t<code>-5</code>\n\t<status>Message</status>\n"
              "\t<module>calc</module>\n\t<version>1.2</version>\n\t<category>Condition</category>\n"
              "\t<text>text</text>\n\t<data key=\"k1\" type=\"int\">v1</data>\n\t<data key=\"k2\">v2</data>\n"
              "\t<comment>\n\tfirst\n\tsecond\n\t</comment>\n</message>\n");
}

TEST_F(Log, empty_or_cleared_category_gives_no_line) {
    create();
    kzb::log_set_category("");
    kzb::log_warning(1, "a");
    kzb::log_set_category("kept");
    kzb::log_set_category(nullptr);
    kzb::log_warning(2, "b");
    EXPECT_EQ(text().find("<category>"), std::string::npos);
}

TEST_F(Log, characters_of_xml_are_not_escaped) {
    create();
    kzb::log_warning(1, "%s", "<a & \"b\">");
    EXPECT_NE(text().find("<text><a & \"b\"></text>"), std::string::npos);
}

TEST_F(Log, pending_items_belong_to_the_next_message_above_debug) {
    create();
    kzb::log_add_data("key", "value", nullptr);
    kzb::log_add_comment("line");
    report(0, 1, false, "first");
    kzb::log_warning(2, "second");
    kzb::log_warning(3, "third");
    const std::string all = text();
    EXPECT_NE(all.find("<text>second</text>\n\t<data key=\"key\">value</data>\n\t<comment>\n\tline\n"),
              std::string::npos);
    EXPECT_NE(all.find("<text>third</text>\n</message>\n"), std::string::npos);
}

TEST_F(Log, debug_text_is_a_comment_with_blanks_for_double_hyphens) {
    create();
    report(0, 1, false, "a--b-c---d-");
    EXPECT_EQ(text(), "<logfile ver=\"0.3\">\n<!-- a  b-c  -d- -->\n");
}

TEST_F(Log, own_formatter_knows_control_characters_and_its_conversions) {
    create();
    report(1, 1, true, "a\\nb\\tc\\rd\\qe %d|%5i %c", 7, 42);
    // "%d|" ends in "|": nothing, and no argument taken; so "%5i" applies to 7, and "%c" to 42, which is "*".
    EXPECT_NE(text().find("<text>a\nb\tc\rde     7 *"), std::string::npos);
}

// The own formatter would make a tab of the backslash and its letter, and nothing of "%x".
TEST_F(Log, warning_is_formatted_by_the_runtime) {
    create();
    kzb::log_warning(7, "a\\tb %x", 255);
    EXPECT_THAT(text(), testing::HasSubstr("\t<text>a\\tb ff</text>\n"));
}

TEST_F(Log, own_formatter_applies_each_specifier_whole) {
    create();
    report(1, 1, true, "%-4d %+i%c %s %8.3f %.1e %.2E %F", 7, 42, 'x', "text", 1.5, 250.0, 1.0, 2.0);
    EXPECT_NE(text().find("<text>7    +42x text    1.500 2.5e+02 1.00E+00 2.000000</text>"), std::string::npos);
}

TEST_F(Log, own_formatter_keeps_the_letters_between_a_conversion_and_the_end_of_its_specifier) {
    create();
    // The last letter says which argument is taken: "%drad" and "%xid" an int, "%gf" a double.
    report(1, 1, true, "%drad %xid %gf %hd", 7, 255, 1.5, 3);
    EXPECT_NE(text().find("<text>7rad ffid 1.5f 3</text>"), std::string::npos);
    // "%ds" takes a text, which its conversion could not print: nothing.
    report(1, 1, true, "[%ds %i", "word", 5);
    EXPECT_NE(text().find("<text>[ 5</text>"), std::string::npos);
}

TEST_F(Log, own_formatter_survives_what_the_runtime_could_not_take) {
    create();
    // "%sd" would print an int as a text, "%*d" wants a second argument, "%ls" a wide text; "%" and "\" end the text.
    report(1, 1, true, "[%sd %*d %ls %q %% \\", 1, 2, "w");
    EXPECT_NE(text().find("<text>["), std::string::npos);
    report(1, 1, true, "%s %s", static_cast<const char*>(nullptr), "next");
    EXPECT_NE(text().find("<text>(null) next</text>"), std::string::npos);
}

TEST_F(Log, append_keeps_the_file_and_adds_another_start) {
    settings_.encoding = "UTF-8";
    settings_.append = true;
    create();
    kzb::log_warning(1, "one");
    kzb::log_finish();
    const std::string first = text();
    create();
    kzb::log_open();
    EXPECT_EQ(text(), first + "<logfile ver=\"0.3\">\n");
}

TEST_F(Log, without_append_an_existing_file_is_replaced) {
    create();
    kzb::log_warning(1, "one");
    kzb::log_finish();
    create();
    kzb::log_open();
    EXPECT_EQ(text(), "<logfile ver=\"0.3\">\n");
}

TEST_F(Log, finish_writes_the_time_and_the_end) {
    create();
    kzb::log_open();
    kzb::log_add_comment("dropped");
    kzb::log_finish();
    // asctime ends in a line feed of its own.
    EXPECT_THAT(text(), testing::MatchesRegex("<logfile ver=\"0\\.3\">\n\n\tFinish Time: "
                                              "[A-Z][a-z][a-z] [A-Z][a-z][a-z] [ 0-9][0-9] [0-9:]+ [0-9]+\n\n"
                                              "</logfile>\n"));
}

TEST_F(Log, finish_opens_a_log_that_had_no_message) {
    create();
    kzb::log_finish();
    EXPECT_EQ(text().rfind("<logfile ver=\"0.3\">\n", 0), 0U);
}

TEST_F(Log, finish_without_a_record_does_nothing) {
    kzb::log_finish();
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(Log, file_exists_only_with_a_readable_path) {
    EXPECT_EQ(kzb::log_file_exists(), 0);  // no record
    create();
    EXPECT_EQ(kzb::log_file_exists(), 0);
    kzb::log_open();
    EXPECT_EQ(kzb::log_file_exists(), 1);
    settings_.path.clear();
    create();
    EXPECT_EQ(kzb::log_file_exists(), 0);
}

TEST_F(Log, file_that_cannot_be_opened_is_skipped) {
    settings_.path = (path_ / "no" / "such" / "folder").string();
    settings_.echo_stdout = true;
    create();
    testing::internal::CaptureStdout();
    kzb::log_warning(4, "still echoed");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "WARNING \ncode : 4\nstill echoed\n");
    EXPECT_FALSE(kzb::log_is_open());
}

TEST_F(Log, long_form_on_standard_output) {
    settings_.echo_stdout = true;
    settings_.on_fatal = [](int) { return 1; };
    create();
    testing::internal::CaptureStdout();
    kzb::log_add_data("k1", "v1", "int");
    kzb::log_add_data("k2", "v2", nullptr);
    kzb::log_add_comment("line");
    report(0, 1, false, "debug");
    report(3, 2, false, "error");
    report(1, 3, false, "message");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "debug\nk1: int:v1\nk2: v2\n"
              "ERROR \ncode : 2\nerror\nk1: int:v1\nk2: v2\nline\n"
              "code : 3\nmessage\n");
}

TEST_F(Log, short_form_on_standard_error_is_for_errors_only) {
    settings_.echo_stderr = true;
    settings_.on_fatal = [](int) { return 1; };
    create();
    testing::internal::CaptureStderr();
    kzb::log_warning(1, "quiet");
    kzb::log_add_data("k1", "v1", "int");
    report(3, 2, false, "error");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error:2\nData:k1:v1\n");
}

TEST_F(Log, run_goes_on_after_an_error_when_on_fatal_says_so) {
    static int asked = 0;
    settings_.on_fatal = [](int argument) {
        asked += argument;
        return 5;
    };
    create();
    report(3, 2, false, "error");
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(kzb::log_is_open());
}

TEST_F(Log, level_outside_the_table_counts_as_the_nearest) {
    settings_.on_fatal = [](int) { return 1; };
    create();
    report(9, 1, false, "high");
    report(-9, 1, false, "low");
    EXPECT_NE(text().find("<status>Error</status>"), std::string::npos);
    EXPECT_NE(text().find("<!-- low -->\n"), std::string::npos);
}

TEST_F(Log, null_texts_are_harmless) {
    create();
    kzb::log_add_comment(nullptr);
    kzb::log_add_data(nullptr, nullptr, nullptr);
    report(1, 1, false, nullptr);
    report(1, 1, true, nullptr);
    EXPECT_NE(text().find("<text></text>\n\t<data key=\"\"></data>\n\t<comment>\n\t\n\t</comment>\n"),
              std::string::npos);
}

TEST(LogWithoutRecord, category_comments_data_and_open_do_nothing) {
    kzb::log_set_category("Condition");
    kzb::log_set_category(nullptr);
    kzb::log_add_comment("line");
    kzb::log_add_data("key", "value", nullptr);
    kzb::log_open();
    EXPECT_EQ(kzb::log_file_exists(), 0);
}

using LogDeathTest = Log;

TEST_F(LogDeathTest, asking_or_reporting_without_a_record_ends_the_process) {
    EXPECT_EXIT(kzb::log_is_open(), testing::ExitedWithCode(1), "Logger not initialised");
    EXPECT_EXIT(kzb::log_warning(1, "text"), testing::ExitedWithCode(1), "Logger not initialised");
}

TEST_F(LogDeathTest, reporting_after_the_finish_ends_the_process) {
    create();
    kzb::log_finish();
    EXPECT_EXIT(kzb::log_warning(1, "text"), testing::ExitedWithCode(1), "Logger not initialised");
}

TEST_F(LogDeathTest, error_without_on_fatal_finishes_the_document_and_ends_the_process) {
    create();
    EXPECT_EXIT(report(3, 9, false, "fatal"), testing::ExitedWithCode(1), "");
    const std::string all = text();
    EXPECT_NE(all.find("<status>Error</status>"), std::string::npos);
    EXPECT_NE(all.find("</logfile>\n"), std::string::npos);
}

TEST_F(LogDeathTest, error_with_an_on_fatal_of_zero_ends_the_process) {
    settings_.on_fatal = [](int) { return 0; };
    create();
    EXPECT_EXIT(report(3, 9, false, "fatal"), testing::ExitedWithCode(1), "");
}

}  // namespace
