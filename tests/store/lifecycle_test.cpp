// A model through the exported calls from the first put to the files that the end leaves behind.
#include <gtest/gtest.h>

#include <cstdlib>

#include "own_folder.h"
#include "test_store.h"

using kzb_test::TestStore;

namespace {

using Lifecycle = kzb_test::OwnFolder;

// Writes a model of one category to `path`.
void write_model(const char* path) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_put_int("control", "poles", 8, store);
    kzb_writer(path, store);
    kzb_finish(store);
}

TEST_F(Lifecycle, nothing_is_written_before_the_end) {
    TestStore store;
    kzb_put_int("c", "k", 1, store);
    kzb_writer("model.kzb", store);
    EXPECT_FALSE(std::filesystem::exists("model.kzb"));
}

TEST_F(Lifecycle, end_writes_the_binary_form_of_what_the_store_holds) {
    write_model("model.kzb");
    using namespace std::string_literals;
    EXPECT_EQ(content("model.kzb"),
              "$DORN-KZb,#\n"
              "*\7\0\0\0control\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0,#"
              "\5\0\0\0poles\0\0\0\0\10\0\0\0,#"
              "$end_of_kzb_file,#\n"s);
    EXPECT_FALSE(std::filesystem::exists("KZBtime.txt"));
}

TEST_F(Lifecycle, end_without_a_named_file_writes_none) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_put_int("c", "k", 1, store);
    kzb_finish(store);
    EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST_F(Lifecycle, file_comes_first_and_the_statistics_behind_it_with_the_input_path) {
    write_model("model.kzb");
    setenv("KZB_OUTPUT_ELAPSED_TIME", "1", 1);
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    ASSERT_EQ(kzb_reader("model.kzb", store), 0);
    // One target for both: the report is appended to the file, and nothing is lost, only in that order.
    kzb_writer("KZBtime.txt", store);
    kzb_finish(store);
    const std::string both = content("KZBtime.txt");
    EXPECT_EQ(both.rfind("$DORN-KZb,#\n", 0), 0U);
    const std::string seam = "$end_of_kzb_file,#\n*** model.kzb ***\n# Total interpolation elapsed time = ";
    EXPECT_NE(both.find(seam), std::string::npos) << both;
}

}  // namespace
