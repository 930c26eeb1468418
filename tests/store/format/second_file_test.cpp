// A store that reads more than one file: no table ever takes its body from a file that is not its own.
#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

using SecondFile = ModelFile;

std::string one_table(const std::string& category, const std::string& key, double first) {
    return Bytes()
        .head()
        .category(category, 0, 0, 0, 1)
        .table_entry(key, {2}, {0}, {first, first + 1}, {{0, 1}})
        .end()
        .str();
}

TEST_F(SecondFile, tables_of_the_first_not_yet_loaded_stay_empty) {
    ASSERT_EQ(read_path(write(one_table("control", "a", 10), "one")), 0);
    ASSERT_EQ(read_path(write(one_table("control", "b", 20), "two")), 0);
    EXPECT_EQ(table("control", "a").file_position, 0);
    load();
    EXPECT_EQ(out_ + err_, "");
    EXPECT_EQ(table("control", "a").total, 1);
    EXPECT_EQ(numbers(table("control", "a").values), std::vector<double>{0.0});
    EXPECT_EQ(table("control", "a").loaded, 0);
    EXPECT_EQ(numbers(table("control", "b").values), (std::vector<double>{20, 21}));
}

TEST_F(SecondFile, tables_of_the_first_that_are_loaded_stay_as_they_are) {
    ASSERT_EQ(read_path(write(one_table("control", "a", 10), "one")), 0);
    load();
    ASSERT_EQ(read_path(write(one_table("control", "b", 20), "two")), 0);
    load();
    EXPECT_EQ(numbers(table("control", "a").values), (std::vector<double>{10, 11}));
    EXPECT_EQ(numbers(table("control", "b").values), (std::vector<double>{20, 21}));
}

TEST_F(SecondFile, table_of_the_same_name_is_the_one_of_the_second) {
    ASSERT_EQ(read_path(write(one_table("control", "a", 10), "one")), 0);
    ASSERT_EQ(read_path(write(one_table("control", "a", 20), "two")), 0);
    load();
    EXPECT_EQ(numbers(table("control", "a").values), (std::vector<double>{20, 21}));
}

TEST_F(SecondFile, file_that_cannot_be_opened_counts_as_another_one) {
    ASSERT_EQ(read_path(write(one_table("control", "a", 10), "one")), 0);
    EXPECT_EQ(read_path(path("two")), 1);
    write(one_table("control", "x", 70), "two");
    load();
    EXPECT_EQ(table("control", "a").total, 1);
    EXPECT_EQ(numbers(table("control", "a").values), std::vector<double>{0.0});
}

TEST_F(SecondFile, same_file_in_the_other_form_counts_as_another_one) {
    ASSERT_EQ(read_path(write(one_table("control", "a", 10))), 0);
    setenv("KZB_READING_ASCII", "1", 1);
    EXPECT_EQ(read_path(path()), 1);
    load();
    EXPECT_EQ(err_, "");
    EXPECT_EQ(table("control", "a").total, 1);
}

TEST_F(SecondFile, same_file_read_again_still_loads) {
    const std::string file = write(one_table("control", "a", 10));
    ASSERT_EQ(read_path(file), 0);
    ASSERT_EQ(read_path(file), 0);
    load();
    EXPECT_EQ(numbers(table("control", "a").values), (std::vector<double>{10, 11}));
}

}  // namespace
}  // namespace kzb::test
