// Files of the library's own stay clear of the host's standard streams.
#include "diagnostics/own_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace {

// The result of `body` in a process without some of the standard streams.
int without_streams(const std::vector<int>& streams, const std::function<bool()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        for (const int stream : streams) {
            ::close(stream);
        }
        ::_exit(body() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}
int without_streams(const std::function<bool()>& body) {
    return without_streams({STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}, body);
}

bool streams_are_free() {
    return ::fcntl(STDIN_FILENO, F_GETFD) == -1 && ::fcntl(STDOUT_FILENO, F_GETFD) == -1 &&
           ::fcntl(STDERR_FILENO, F_GETFD) == -1;
}

std::string own_path() {
    return (std::filesystem::temp_directory_path() / ("kzb_own_file_" + std::to_string(::getpid()))).string();
}

TEST(OwnFile, opens_as_any_file) {
    const std::string path = own_path();
    std::FILE* file = kzb::open_own_file(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    EXPECT_NE(::fcntl(::fileno(file), F_GETFD) & FD_CLOEXEC, 0);
    std::fputs("one", file);
    std::fclose(file);
    file = kzb::open_own_file(path.c_str(), "a");
    std::fputs(" two", file);
    std::fclose(file);
    EXPECT_EQ(std::filesystem::file_size(path), 7U);
    std::filesystem::remove(path);
    EXPECT_EQ(kzb::open_own_file(path.c_str(), "r"), nullptr);
}

TEST(OwnFile, takes_no_number_of_a_closed_stream) {
    const std::string path = own_path();
    EXPECT_EQ(without_streams([&] {
                  std::FILE* const file = kzb::open_own_file(path.c_str(), "w");
                  const bool apart = file != nullptr && ::fileno(file) > STDERR_FILENO && streams_are_free() &&
                                     (::fcntl(::fileno(file), F_GETFD) & FD_CLOEXEC) != 0;
                  std::fputs("text", file);
                  return apart && std::fclose(file) == 0;
              }),
              0);
    EXPECT_EQ(std::filesystem::file_size(path), 4U);
    std::filesystem::remove(path);
}

TEST(OwnFile, descriptor_moves_above_the_streams) {
    EXPECT_EQ(without_streams([] {
                  const int low = ::open("/dev/null", O_RDONLY);
                  const int moved = kzb::above_standard_streams(low);
                  return low == STDIN_FILENO && moved > STDERR_FILENO && streams_are_free();
              }),
              0);
    EXPECT_EQ(kzb::above_standard_streams(-1), -1);
    EXPECT_EQ(kzb::above_standard_streams(3), 3);
    EXPECT_EQ(kzb::above_standard_streams(7), 7);
}

TEST(OwnFile, any_one_closed_stream_stays_free) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const auto is_free = [stream] { return ::fcntl(stream, F_GETFD) == -1; };
        EXPECT_EQ(without_streams({stream},
                                  [&] {
                                      const int low = ::open("/dev/null", O_RDONLY);
                                      const int moved = kzb::above_standard_streams(low);
                                      return low == stream && moved > STDERR_FILENO && is_free();
                                  }),
                  0);
        EXPECT_EQ(without_streams({stream},
                                  [&] {
                                      std::FILE* const file = kzb::open_own_file("/dev/null", "w");
                                      return file != nullptr && ::fileno(file) > STDERR_FILENO && is_free();
                                  }),
                  0);
    }
}

}  // namespace
