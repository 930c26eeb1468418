// A test in a folder of its own, so that the files of the current directory are this test's.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace kzb_test {

class OwnFolder : public testing::Test {
  protected:
    void SetUp() override {
        home_ = std::filesystem::current_path();
        folder_ = std::filesystem::temp_directory_path() / ("kzb_store_" + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
        std::filesystem::current_path(folder_);
        unset_switches();
    }
    void TearDown() override {
        unset_switches();
        std::filesystem::current_path(home_);
        std::filesystem::remove_all(folder_);
    }
    static std::string content(const char* file) {
        std::ifstream in(file, std::ios::binary);
        std::ostringstream out;
        out << in.rdbuf();
        return out.str();
    }

  private:
    static void unset_switches() {
        for (const char* name : {"KZBFILEHANDLER_DEBUG_MODE", "KZB_OUTPUT_ELAPSED_TIME", "KZB_READING_ASCII",
                                 "USE_GENERIC_INTERPOLATION"}) {
            unsetenv(name);
        }
    }
    std::filesystem::path home_;
    std::filesystem::path folder_;
};

}  // namespace kzb_test
