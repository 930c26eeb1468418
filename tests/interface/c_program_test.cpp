// The run that is written in C (c_program_test.c).
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

extern "C" int c_program(const char* path);

namespace kzb_test::c_program_test {
namespace {

TEST(CProgram, whole_run_gives_the_current_of_a_hand_calculation) {
    const auto path = std::filesystem::temp_directory_path() / ("kzb_c_program_" + std::to_string(::getpid()));
    EXPECT_EQ(c_program(path.c_str()), 0);
    std::filesystem::remove(path);
}

}  // namespace
}  // namespace kzb_test::c_program_test
