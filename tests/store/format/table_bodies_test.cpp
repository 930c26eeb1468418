// Second stage: the bodies of the tables that the selected application needs.
#include <gmock/gmock.h>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using TableBodies = ModelFile;

std::string numbered(int i) {
    return std::string("t").append(std::to_string(i));
}

std::string binary_table_file(const std::string& entry, int count = 1) {
    return Bytes().head().category("control", 0, 0, 0, count).raw(entry).end().str();
}

TEST_F(TableBodies, binary_body_is_loaded) {
    EXPECT_EQ(read(binary_table_file(Bytes().sample_table("t").str())), 0);
    load();
    EXPECT_EQ(out_ + err_, "");
    expect_sample_table(table("control", "t"));
}

TEST_F(TableBodies, ascii_body_is_loaded) {
    EXPECT_EQ(read(ascii_file("*control,0,0,0,2,#\n" + sample_table_ascii("s") + sample_table_ascii("t"))), 0);
    load();
    EXPECT_EQ(out_ + err_, "");
    expect_sample_table(table("control", "s"));
    expect_sample_table(table("control", "t"));
}

TEST_F(TableBodies, application_loads_its_own_categories_only_and_a_second_one_more) {
    const auto file = Bytes()
                          .head()
                          .category("torque", 0, 0, 0, 1)
                          .sample_table("t")
                          .category("inductance", 0, 0, 0, 1)
                          .sample_table("l")
                          .category("mag_flux", 0, 0, 0, 1)
                          .sample_table("m")
                          .end()
                          .str();
    EXPECT_EQ(read(file), 0);
    load("SR");
    expect_sample_table(table("torque", "t"));
    expect_sample_table(table("inductance", "l"));
    EXPECT_EQ(table("mag_flux", "m").loaded, 0);
    EXPECT_EQ(table("mag_flux", "m").dim, 1);
    EXPECT_NE(table("mag_flux", "m").file_position, 0);
    table_set_axis_value(find_table(store_, "torque", "t"), 1, 0, -5.0);
    load("2-PhaseStepping");
    expect_sample_table(table("mag_flux", "m"));
    EXPECT_EQ(table("torque", "t").axes[0][0], -5.0);  // read once: the change stays
}

TEST_F(TableBodies, created_tables_are_never_read) {
    EXPECT_EQ(read(binary_table_file(Bytes().sample_table("t").str())), 0);
    const int rows[1] = {3};
    EXPECT_EQ(create_table(store_, "control", "t", 1, rows), 0);
    load();
    EXPECT_EQ(table("control", "t").sizes, std::vector<int>{3});
    EXPECT_EQ(table("control", "t").loaded, 0);
}

TEST_F(TableBodies, old_and_vanished_files_are_told_on_standard_output) {
    EXPECT_EQ(read(binary_table_file(Bytes().sample_table("t").str())), 0);
    write("an old file without the mark");
    load();
    EXPECT_EQ(out_, "The table values have been already read in case of old formats files.\n");
    EXPECT_EQ(store_.error, 0);
    std::filesystem::remove(path());
    load();
    EXPECT_EQ(out_, "file reading error\n");
    EXPECT_EQ(table("control", "t").loaded, 0);
    EXPECT_EQ(store_.error, 90001);
}

TEST_F(TableBodies, file_cut_after_the_first_stage_leaves_the_placeholder) {
    const auto file = binary_table_file(Bytes().sample_table("t").str());
    EXPECT_EQ(read(file), 0);
    write(file.substr(0, 40));
    load();
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    EXPECT_EQ(table("control", "t").total, 1);
}

TEST_F(TableBodies, size_below_one_stops_the_creation) {
    for (const int size : {0, -3}) {
        store_ = KZB_STORE();
        const auto bad = Bytes().table_entry("t", {2, size}, {0, 0}, {}, {{1, 2}, {}}).str();
        EXPECT_EQ(read(binary_table_file(bad + Bytes().sample_table("u").str(), 2)), 0);
        load();
        EXPECT_THAT(err_, HasSubstr("The num of row is zero.\n: "));
        EXPECT_FALSE(table("control", "t").values);
        EXPECT_EQ(table("control", "t").sizes, (std::vector<int>{2, 0}));
        expect_sample_table(table("control", "u"));
        // Its operations answer without harm.
        const int at[2] = {0, 0};
        EXPECT_EQ(table_get_value(&table("control", "t"), at), 1.0);
        EXPECT_EQ(table_get_axis_value(&table("control", "t"), 1, 0), KZB_NO_VALUE);
        EXPECT_TRUE(write_binary(store_, path("out")));
    }
}

TEST_F(TableBodies, size_below_one_among_very_many_axes_stops_the_creation_too) {
    std::vector<int> sizes(100, 1);
    sizes[2] = 0;
    const std::vector<std::vector<double>> grids(100);
    const auto bad = Bytes().table_entry("t", sizes, std::vector<int>(100, 0), {}, grids).str();
    EXPECT_EQ(read(binary_table_file(bad + Bytes().sample_table("u").str(), 2)), 0);
    load();
    EXPECT_THAT(err_, HasSubstr("The num of row is zero.\n: "));
    EXPECT_THAT(err_, Not(HasSubstr("memory")));
    EXPECT_EQ(table("control", "t").loaded, 1);
    EXPECT_FALSE(table("control", "t").values);
    expect_sample_table(table("control", "u"));
    EXPECT_TRUE(write_binary(store_, path("out")));
}

TEST_F(TableBodies, binary_blocks_without_doubles_leave_zeros_and_no_grid) {
    const auto body = Bytes().table_entry("t", {2, 3}, {0, 0}, {}, {{}, {1, 2, 3}}).str();
    EXPECT_EQ(read(binary_table_file(body)), 0);
    load();
    EXPECT_EQ(err_, "");
    EXPECT_EQ(numbers(table("control", "t").values), std::vector<double>(6, 0.0));
    EXPECT_FALSE(table("control", "t").axes[0]);
    EXPECT_EQ(numbers(table("control", "t").axes[1]), (std::vector<double>{1, 2, 3}));
}

TEST_F(TableBodies, binary_blocks_of_another_length_fill_what_there_is) {
    const auto body = Bytes().table_entry("t", {2, 2}, {0, 0}, {1, 2, 3, 4, 5, 6}, {{7}, {8, 9, 10}}).str();
    EXPECT_EQ(read(binary_table_file(body)), 0);
    load();
    EXPECT_EQ(numbers(table("control", "t").values), (std::vector<double>{1, 2, 3, 4}));
    EXPECT_EQ(numbers(table("control", "t").axes[0]), (std::vector<double>{7, 0}));
    EXPECT_EQ(numbers(table("control", "t").axes[1]), (std::vector<double>{8, 9}));
}

TEST_F(TableBodies, binary_terminator_fault_is_told_and_the_next_table_read) {
    std::string bad = Bytes().sample_table("t").str();
    bad.back() = ';';
    EXPECT_EQ(read(binary_table_file(bad + Bytes().sample_table("u").str(), 2)), 0);
    load();
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    expect_sample_table(table("control", "t"));
    expect_sample_table(table("control", "u"));
}

TEST_F(TableBodies, ascii_terminator_fault_ends_the_stage_for_its_category) {
    std::string bad = sample_table_ascii("t");
    bad[bad.size() - 2] = ';';
    EXPECT_EQ(read(ascii_file("*control,0,0,0,2,#\n" + bad + sample_table_ascii("u") + "*parameter,0,0,0,1,#\n" +
                              sample_table_ascii("v"))),
              0);
    load();
    EXPECT_THAT(err_, HasSubstr("this file is broken\n: "));
    EXPECT_EQ(numbers(table("control", "t").values), (std::vector<double>{0, 1, 2, 10, 11, 12}));
    EXPECT_EQ(table("control", "u").loaded, 0);
    expect_sample_table(table("parameter", "v"));
}

TEST_F(TableBodies, ascii_block_with_too_few_values_is_told) {
    EXPECT_EQ(read(ascii_file("*control,0,0,0,1,#\nt,table,1,7,0,\n7,\n1 2 x\n6 7\n7,\n1 2 3 4 5\n6 7\n,#\n")), 0);
    load();
    EXPECT_THAT(err_, HasSubstr("reading table values is faiied\n: "));
    EXPECT_THAT(err_, Not(HasSubstr("this file is broken")));
    EXPECT_EQ(numbers(table("control", "t").values), (std::vector<double>{1, 2, 0, 0, 0, 6, 7}));
    EXPECT_EQ(numbers(table("control", "t").axes[0]), (std::vector<double>{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(TableBodies, ascii_line_gives_five_values_and_the_rest_of_it_is_left) {
    EXPECT_EQ(read(ascii_file("*control,0,0,0,1,#\nt,table,1,7,0,\n7,\n1 2 3 4 5 99\n\n0,\n,#\n")), 0);
    load();
    EXPECT_THAT(err_, HasSubstr("reading table values is faiied\n: "));
    EXPECT_EQ(numbers(table("control", "t").values), (std::vector<double>{1, 2, 3, 4, 5, 0, 0}));
}

TEST_F(TableBodies, ascii_block_with_too_many_values_is_told_and_bounded) {
    EXPECT_EQ(read(ascii_file("*control,0,0,0,1,#\nt,table,1,2,0,\n6,\n1 2 3 4 5\n6\n3,\n7 8 9\n,#\n")), 0);
    load();
    EXPECT_THAT(err_, HasSubstr("reading table values is faiied\n: "));
    EXPECT_EQ(numbers(table("control", "t").values), (std::vector<double>{1, 2}));
    EXPECT_EQ(numbers(table("control", "t").axes[0]), (std::vector<double>{7, 8}));
}

TEST_F(TableBodies, shapes_that_the_file_cannot_back_take_no_memory) {
    // 2^30 values announced by sizes, none or a few in the file.
    for (const int announced : {0, 1, 1 << 30, 2147483647}) {
        store_ = KZB_STORE();
        const auto body =
            Bytes().entry("t", 3).int32(2).int32(1 << 15).int32(1 << 15).int32(0).int32(0).int32(announced).str();
        read(binary_table_file(body));
        load();
        EXPECT_EQ(table("control", "t").total, 1) << announced;
        store_ = KZB_STORE();
        read(ascii_file("*control,0,0,0,1,#\nt,table,2,32768,32768,0,0,\n" + std::to_string(announced) + ",\n1\n"));
        load();
        EXPECT_EQ(table("control", "t").total, 1) << announced;
    }
}

TEST_F(TableBodies, values_that_the_blocks_lack_are_granted_up_to_a_bound) {
    std::string entries;
    constexpr int tables = 100;
    for (int i = 0; i < tables; ++i) {
        entries += Bytes().table_entry(numbered(i), {600}, {0}, {}, {{}}).str();
    }
    const auto file = binary_table_file(entries, tables);
    EXPECT_EQ(read(file), 0);
    load();
    std::size_t bytes = 0;
    for (const KZB_TABLE& found : find_category(store_, "control")->tables) {
        bytes += 8 * found.values.size();
    }
    EXPECT_LE(bytes, file.size() + 65536 + 8 * tables);
    EXPECT_EQ(table("control", "t99").total, 1);
    EXPECT_EQ(table("control", "t0").total, 600);
}

TEST_F(TableBodies, large_file_is_loaded_value_by_value_and_outlives_its_neighbours) {
    // 12 MB in 24 tables of 65536 values, value k of table t is 1000000 t + k: beyond what comes from the heap.
    Bytes bytes;
    constexpr int tables = 24;
    constexpr int rows = 65536;
    bytes.head().category("control", 0, 0, 0, tables);
    for (int t = 0; t < tables; ++t) {
        bytes.entry(numbered(t), 3).int32(2).int32(2).int32(rows / 2).int32(0).int32(t).int32(rows);
        for (int k = 0; k < rows; ++k) {
            bytes.float64(1e6 * t + k);
        }
        bytes.block({0, 1}).int32(0).raw(",#");
    }
    EXPECT_EQ(read(bytes.end().str()), 0);
    load();
    EXPECT_EQ(err_, "");
    const int small[1] = {1};
    for (int t = 0; t < tables; t += 2) {
        EXPECT_EQ(create_table(store_, "control", numbered(t), 1, small), 0);
    }
    for (int t = 1; t < tables; t += 2) {
        const KZB_TABLE& found = table("control", numbered(t));
        ASSERT_EQ(found.total, rows);
        EXPECT_EQ(found.sizes, (std::vector<int>{2, rows / 2}));
        EXPECT_EQ(found.strides, (std::vector<int>{rows / 2, 1}));
        EXPECT_EQ(found.cyclic, (std::vector<int>{0, t}));
        EXPECT_EQ(found.loaded, 1);
        int wrong = 0;
        for (int k = 0; k < rows; ++k) {
            wrong += found.values[static_cast<std::size_t>(k)] == 1e6 * t + k ? 0 : 1;
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_EQ(numbers(found.axes[0]), (std::vector<double>{0, 1}));
    }
}

}  // namespace
}  // namespace kzb::test
