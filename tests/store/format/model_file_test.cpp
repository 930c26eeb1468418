// Choice of the reader, files that are refused, and what follows every read.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "store/format/ascii_reader.h"
#include "store/format/legacy_bytes.h"

namespace kzb::test {
namespace {

using ::testing::HasSubstr;
using ReaderChoice = ModelFile;
using RefusedFile = ModelFile;
using AfterReading = ModelFile;

const std::string tiny_ascii = ascii_file("*control,1,0,0,0,#\nk,int,5,#\n");
const std::string tiny_binary = Bytes().head().category("control", 1, 0, 0, 0).int_entry("k", 5).end().str();

TEST_F(ReaderChoice, follows_the_head_of_the_file) {
    EXPECT_EQ(read(tiny_ascii), 0);
    EXPECT_EQ(store_.input_type, "ascii");
    EXPECT_EQ(store_.input_path, path());
    EXPECT_EQ(get_int(store_, "control", "k"), 5);
    EXPECT_EQ(read(tiny_binary), 0);
    EXPECT_EQ(store_.input_type, "binary");
}

TEST_F(ReaderChoice, ascii_head_needs_its_eleven_bytes_only) {
    EXPECT_EQ(read("$DORN-KZa,#*control,1,0,0,0,#k,int,5,#$end_of_kzb_file,#"), 0);
    EXPECT_EQ(store_.input_type, "ascii");
    EXPECT_EQ(get_int(store_, "control", "k"), 5);
}

TEST_F(ReaderChoice, ascii_by_environment_fails_on_a_binary_file_without_a_code) {
    setenv("KZB_READING_ASCII", "1", 1);
    EXPECT_EQ(read(tiny_binary), 1);
    EXPECT_EQ(store_.input_type, "ascii");
    EXPECT_EQ(store_.error, 0);
    EXPECT_FALSE(has_category(store_, "control"));
    EXPECT_EQ(out_, "");
}

TEST_F(ReaderChoice, binary_by_environment_refuses_an_ascii_file) {
    for (const char* value : {"0", "-1", "", "yes", "binary"}) {
        setenv("KZB_READING_ASCII", value, 1);
        store_.error = 0;
        EXPECT_EQ(read(tiny_ascii), 1) << value;
        EXPECT_EQ(store_.input_type, "binary") << value;
        EXPECT_EQ(store_.error, 90009) << value;
    }
}

TEST_F(ReaderChoice, environment_counts_by_its_leading_number) {
    for (const char* value : {"1", "2", " +7x", "01"}) {
        setenv("KZB_READING_ASCII", value, 1);
        EXPECT_EQ(read(tiny_ascii), 0) << value;
    }
}

// The reader of the ascii form itself; without the mark in front the file would be an old one.
TEST_F(ReaderChoice, ascii_reader_fails_at_once_on_a_first_character_of_its_own) {
    for (const char* front : {"x", " ", "\n", "#", "$$", "*"}) {
        KZB_STORE store;
        FileSource source(write(front + tiny_ascii).c_str());
        source.read_as_text();
        EXPECT_EQ(captured([&] { return read_ascii(store, source); }), 1) << front;
        EXPECT_FALSE(has_category(store, "control")) << front;
    }
}

TEST_F(ReaderChoice, file_without_the_mark_is_read_as_an_old_one_in_the_form_of_the_environment) {
    const std::string ascii = "*version\n900.5\n";
    EXPECT_EQ(read(LegacyBytes().version(12.5).str()), 0);
    EXPECT_EQ(store_.input_type, "binary");
    EXPECT_EQ(store_.version, 12.5);
    EXPECT_EQ(read(ascii), 1);
    setenv("KZB_READING_ASCII", "1", 1);
    EXPECT_EQ(read(ascii), 0);
    EXPECT_EQ(store_.input_type, "ascii");
    EXPECT_EQ(store_.version, 900.5);
    setenv("KZB_READING_ASCII", "0", 1);
    EXPECT_EQ(read(ascii), 1);
}

TEST_F(RefusedFile, head_with_the_mark_but_not_of_this_form_is_broken) {
    EXPECT_EQ(read("$DORN-KZc,#\n$end_of_kzb_file,#\n"), 1);
    EXPECT_EQ(store_.input_type, "binary");
    EXPECT_EQ(store_.error, 90009);
    store_.error = 0;
    EXPECT_EQ(read("$DORN-KZ"), 1);
    EXPECT_EQ(store_.error, 90009);
}

TEST_F(RefusedFile, file_that_cannot_be_opened_has_an_unknown_format) {
    EXPECT_EQ(read_path(path("absent.kzb")), 1);
    EXPECT_EQ(store_.error, 90001);
    EXPECT_EQ(store_.input_type, "binary");
    EXPECT_EQ(store_.input_path, path("absent.kzb"));
}

TEST_F(RefusedFile, null_path_is_a_file_that_cannot_be_opened) {
    EXPECT_EQ(read_model_file(store_, nullptr), 1);
    EXPECT_EQ(store_.error, 90001);
}

TEST_F(RefusedFile, folders_and_pipes_are_no_files) {
    EXPECT_EQ(read_path(std::filesystem::temp_directory_path().string()), 1);
    EXPECT_EQ(store_.error, 90001);
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    store_.error = 0;
    EXPECT_EQ(read_path(path("pipe")), 1);
    EXPECT_EQ(store_.error, 90001);
}

TEST_F(AfterReading, iron_loss_is_there_with_both_loss_categories) {
    EXPECT_EQ(read(ascii_file("*eddyloss,0,0,0,0,#\n")), 0);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 0);
    EXPECT_EQ(read(ascii_file("*hysloss,0,0,0,0,#\n")), 0);  // beside the eddyloss of the file before
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 1);
}

TEST_F(AfterReading, iron_loss_of_an_induction_machine_is_its_conductance) {
    const std::string losses = "*eddyloss,0,0,0,0,#\n*hysloss,0,0,0,0,#\n";
    const auto machine = [&](const std::string& g0) {
        return ascii_file(losses + "*control,1,0,0,0,#\nmotor_type,int,10006,#\n" +
                          "*InductionParam,0,1,0,0,#\ng0,double," + g0 + ",#\n");
    };
    EXPECT_EQ(read(machine("0.5")), 0);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 1);
    EXPECT_EQ(read(machine("0.0")), 0);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 0);
    EXPECT_EQ(read(machine("-1")), 0);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 0);
}

TEST_F(AfterReading, incomplete_model_raises_a_warning_whatever_the_value_and_kind) {
    EXPECT_EQ(read(tiny_ascii), 0);
    EXPECT_EQ(store_.warning, 0);
    EXPECT_EQ(read(ascii_file("*control,0,0,1,0,#\nincomplete,string,2,\"no\",#\n")), 0);
    EXPECT_EQ(store_.warning, 90033);
    EXPECT_EQ(store_.error, 0);
}

TEST_F(AfterReading, steps_behind_run_on_a_failed_read_too) {
    EXPECT_EQ(read("$DORN-KZa,#\n*control,1,0,0,0,#\nincomplete,int,0,#\n"), 1);
    EXPECT_EQ(store_.warning, 90033);
    EXPECT_EQ(get_int(store_, "information", "has_ironloss_table"), 0);
    EXPECT_TRUE(has_parameter(store_, "information", "has_ironloss_table"));
}

TEST_F(AfterReading, revision_changes) {
    const auto before = store_.revision;
    read(tiny_ascii);
    EXPECT_NE(store_.revision, before);
}

}  // namespace
}  // namespace kzb::test
