// OutputFile: whole or not at all, in its place and nowhere else.
#include "kzb/output_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "kzb/command.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tool::OutputFile;

TEST(OutputFile, appears_at_commit_with_all_that_was_written) {
    const Folder folder;
    const std::string big(200000, 'x');
    {
        OutputFile file(folder / "o");
        file.write("head ");
        file.write(big);
        EXPECT_FALSE(std::filesystem::exists(folder / "o"));
        file.commit();
    }
    EXPECT_EQ(read_file(folder / "o"), "head " + big);
    EXPECT_THAT(folder.names(), ElementsAre("o"));
}

TEST(OutputFile, leaves_nothing_without_commit_and_the_old_file_as_it_was) {
    const Folder folder;
    write_file(folder / "o", "old");
    {
        OutputFile file(folder / "o");
        file.write("new");
    }
    EXPECT_EQ(read_file(folder / "o"), "old");
    EXPECT_THAT(folder.names(), ElementsAre("o"));
}

TEST(OutputFile, keeps_the_mode_of_the_file_that_it_replaces) {
    const Folder folder;
    write_file(folder / "o", "old");
    std::filesystem::permissions(folder / "o", std::filesystem::perms(0640));
    OutputFile file(folder / "o");
    file.write("new");
    file.commit();
    EXPECT_EQ(std::filesystem::status(folder / "o").permissions(), std::filesystem::perms(0640));
}

TEST(OutputFile, a_new_file_gets_what_the_mask_leaves) {
    const Folder folder;
    const mode_t mask = umask(027);
    OutputFile file(folder / "o");
    file.commit();
    umask(mask);
    EXPECT_EQ(std::filesystem::status(folder / "o").permissions(), std::filesystem::perms(0640));
}

TEST(OutputFile, replaces_the_file_behind_a_symbolic_link) {
    const Folder folder;
    write_file(folder / "target", "old");
    std::filesystem::create_symlink("target", folder / "link");
    OutputFile file(folder / "link");
    file.write("new");
    file.commit();
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(read_file(folder / "target"), "new");
}

TEST(OutputFile, a_device_stays_a_device) {
    OutputFile file("/dev/null");
    file.write("gone");
    file.commit();
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(OutputFile, a_place_that_takes_no_file_is_a_failure) {
    const Folder folder;
    for (const std::string& place : {folder.path().string(), folder / "none/o", std::string()}) {
        EXPECT_THROW(OutputFile{place}, tool::Failure) << place;
    }
    EXPECT_THAT(folder.names(), IsEmpty());
}

}  // namespace
}  // namespace kzb::test
