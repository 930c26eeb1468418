// Memory that runs out in the middle: told, nothing half done, and a later call does what this one could not.
#include "store/format/scarce_memory.h"

#include <gmock/gmock.h>

#include <new>

#include "store/format/model_bytes.h"

namespace kzb::test {
namespace {

using ::testing::HasSubstr;
using ScarceMemory = ModelFile;

int open_descriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

TEST_F(ScarceMemory, reading_fails_but_the_steps_behind_it_run) {
    constexpr int huge = 200000;
    const auto file = write(Bytes()
                                .head()
                                .category("control", 1, 0, 1, 0)
                                .int_entry("incomplete", 1)
                                .string_entry("title", std::string(huge, 't'))
                                .end()
                                .str());
    const auto before = store_.revision;
    int result = 0;
    captured([&] {
        const RefusedSizes refused(huge, 2 * huge);
        result = read_model_file(store_, file.c_str());
        EXPECT_GE(refused.count(), 1);
        return 0;
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(get_int(store_, "control", "incomplete"), 1);
    EXPECT_EQ(store_.warning, 90033);
    EXPECT_TRUE(has_parameter(store_, "information", "has_ironloss_table"));
    EXPECT_NE(store_.revision, before);
    EXPECT_EQ(read_path(file), 0);
    EXPECT_EQ(std::string(get_string(store_, "control", "title")).size(), static_cast<std::size_t>(huge));
}

TEST_F(ScarceMemory, placeholder_without_memory_fails_the_reader) {
    for (const std::string& file : {write(Bytes().head().category("c", 0, 0, 0, 1).sample_table("t").end().str(), "b"),
                                    write(ascii_file("*c,0,0,0,1,#\n" + sample_table_ascii("t")), "a")}) {
        KZB_STORE store;
        int result = 0;
        captured([&] {
            const RefusedSizes refused(sizeof(int), sizeof(int));  // the sizes of a table of one axis
            result = read_model_file(store, file.c_str());
            EXPECT_GE(refused.count(), 1);
            return 0;
        });
        EXPECT_EQ(result, 1);
        EXPECT_EQ(captured([&] { return read_model_file(store, file.c_str()); }), 0);
        EXPECT_NE(table_dim(store, "c", "t"), 0);
        EXPECT_NE(find_table(store, "c", "t")->file_position, 0);
    }
}

// Every array of the table in its turn cannot be had: the table stays a placeholder that a second call loads.
TEST_F(ScarceMemory, body_without_memory_is_told_and_loaded_by_a_later_call) {
    const std::string ascii = ascii_file("*control,0,0,0,1,#\n" + sample_table_ascii("t"));
    const std::string binary = Bytes().head().category("control", 0, 0, 0, 1).sample_table("t").end().str();
    for (const std::string& file : {ascii, binary}) {
        for (const std::size_t size : {2 * sizeof(int), 2 * sizeof(ZeroedArray)}) {
            store_ = KZB_STORE();
            EXPECT_EQ(read(file), 0);
            const std::int64_t position = table("control", "t").file_position;
            store_.motor = "ALL";
            captured([&] {
                const RefusedSizes refused(size, size);
                EXPECT_THROW(read_tables(store_), std::bad_alloc);
                EXPECT_GE(refused.count(), 1);
                return 0;
            });
            EXPECT_THAT(err_, HasSubstr("memory allocation error: "));
            EXPECT_EQ(table("control", "t").file_position, position);
            EXPECT_EQ(table("control", "t").loaded, 0);
            EXPECT_EQ(table("control", "t").dim, 1);
            EXPECT_EQ(table("control", "t").total, 1);
            load();
            EXPECT_EQ(err_, "");
            expect_sample_table(table("control", "t"));
        }
    }
}

// 32 MB of values and as many of nodes in a file that takes no place on the disk. First not even the values fit, then
// the values but not the nodes.
TEST_F(ScarceMemory, large_body_without_memory_is_told_and_loaded_by_a_later_call) {
    if (!LimitedSpace::possible()) {
        GTEST_SKIP() << "the address space cannot be limited here";
    }
    constexpr int rows = 4 << 20;
    constexpr std::int64_t bytes = std::int64_t{8} * rows;
    const std::string front =
        Bytes().head().category("control", 0, 0, 0, 1).entry("t", 3).int32(1).int32(rows).int32(0).int32(rows).str();
    const std::string file = write(front);
    const auto size = static_cast<std::int64_t>(front.size());
    std::filesystem::resize_file(file, static_cast<std::uintmax_t>(size + bytes));
    std::ofstream(file, std::ios::binary | std::ios::app) << Bytes().int32(rows).str();
    std::filesystem::resize_file(file, static_cast<std::uintmax_t>(size + 4 + 2 * bytes));
    std::ofstream(file, std::ios::binary | std::ios::app) << Bytes().raw(",#").end().str();
    EXPECT_EQ(read_path(file), 0);
    store_.motor = "ALL";
    const std::int64_t position = table("control", "t").file_position;
    for (const std::size_t space : {bytes / 2, bytes + bytes / 2}) {
        captured([&] {
            const LimitedSpace limited(space);
            EXPECT_THROW(read_tables(store_), std::bad_alloc);
            return 0;
        });
        EXPECT_THAT(err_, HasSubstr("memory allocation error: ")) << space;
        EXPECT_EQ(table("control", "t").file_position, position);
        EXPECT_EQ(table("control", "t").loaded, 0);
        EXPECT_EQ(table("control", "t").total, 1);
        EXPECT_FALSE(table("control", "t").axes[0]);
    }
    load();
    EXPECT_EQ(err_, "");
    EXPECT_EQ(table("control", "t").total, rows);
    EXPECT_EQ(table("control", "t").axes[0].size(), static_cast<std::size_t>(rows));
    EXPECT_EQ(table("control", "t").loaded, 1);
}

TEST_F(ScarceMemory, writer_without_its_buffer_leaves_the_old_file_as_it_was) {
    put_int(store_, "c", "k", 1);
    write("an earlier file");
    const int open_before = open_descriptors();
    {
        const RefusedSizes refused(65536, 70000);
        EXPECT_THROW(write_binary(store_, path()), std::bad_alloc);
        EXPECT_THROW(write_ascii(store_, path()), std::bad_alloc);
    }
    EXPECT_EQ(slurp(path()), "an earlier file");
    EXPECT_EQ(open_descriptors(), open_before);
}

}  // namespace
}  // namespace kzb::test
