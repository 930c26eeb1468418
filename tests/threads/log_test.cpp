// The message log under threads: each message stands whole and none is lost.
#include "diagnostics/log.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int thread_count = 8;
constexpr int message_count = 200;

void report(int level, int code, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    kzb::log_message(level, code, format, arguments, false);
    va_end(arguments);
}

class LogOnThreads : public testing::Test {
  protected:
    void SetUp() override {
        path_ = std::filesystem::temp_directory_path() / ("kzb_log_threads_" + std::to_string(::getpid()) + ".xml");
        std::filesystem::remove(path_);
        settings_.path = path_.string();
        settings_.on_fatal = [](int) {
            kzb::log_set_category("after an error");  // asked outside the lock, so that it may log
            return 1;
        };
        kzb::log_create(settings_);
    }
    void TearDown() override {
        kzb::log_finish();
        std::filesystem::remove(path_);
    }
    template <class Body>
    void on_threads(Body body) {
        std::vector<std::thread> threads;
        for (int thread = 0; thread < thread_count; ++thread) {
            threads.emplace_back([=] { body(thread); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    std::vector<std::string> lines() const {
        std::ifstream file(path_);
        std::vector<std::string> all;
        for (std::string line; std::getline(file, line);) {
            all.push_back(line);
        }
        return all;
    }
    std::filesystem::path path_;
    kzb::LogSettings settings_;
};

TEST_F(LogOnThreads, messages_stand_whole_and_all_of_them) {
    on_threads([](int thread) {
        for (int i = 0; i < message_count; ++i) {
            kzb::log_warning(1000 * thread + i, "thread %d message %d", thread, i);
        }
    });
    kzb::log_finish();
    const std::vector<std::string> all = lines();
    // A message is five lines, behind the head of one line and before the end of four.
    ASSERT_EQ(all.size(), std::size_t{1 + 5 * thread_count * message_count + 4});
    std::vector<int> next(thread_count, 0);
    for (std::size_t at = 1; at + 4 < all.size(); at += 5) {
        EXPECT_EQ(all[at], "<message>");
        EXPECT_EQ(all[at + 2], "\t<status>Warning</status>");
        EXPECT_EQ(all[at + 4], "</message>");
        int thread = -1;
        int i = -1;
        ASSERT_EQ(std::sscanf(all[at + 3].c_str(), "\t<text>thread %d message %d</text>", &thread, &i), 2);
        ASSERT_TRUE(thread >= 0 && thread < thread_count);
        EXPECT_EQ(i, next[static_cast<std::size_t>(thread)]++);  // of one thread in its order
        EXPECT_EQ(all[at + 1], "\t<code>" + std::to_string(1000 * thread + i) + "</code>");
    }
    EXPECT_EQ(next, std::vector<int>(thread_count, message_count));
}

// The record is shared: whose message carries a comment is open, but none is lost, doubled or torn.
TEST_F(LogOnThreads, pending_items_of_all_threads_are_written_once) {
    on_threads([](int thread) {
        for (int i = 0; i < message_count; ++i) {
            const std::string item = std::to_string(thread) + "/" + std::to_string(i);
            kzb::log_set_category(("category " + std::to_string(thread)).c_str());
            kzb::log_add_comment(("comment " + item).c_str());
            kzb::log_add_data(("key " + item).c_str(), "value", nullptr);
            kzb::log_warning(1, "text");
        }
    });
    std::map<std::string, int> comments;
    std::map<std::string, int> data;
    for (const std::string& line : lines()) {
        if (line.rfind("\tcomment ", 0) == 0) {
            ++comments[line];
        } else if (line.rfind("\t<data key=\"key ", 0) == 0) {
            EXPECT_NE(line.find("\">value</data>"), std::string::npos);
            ++data[line];
        } else if (line.rfind("\t<category>", 0) == 0) {
            EXPECT_EQ(line.size(), std::string("\t<category>category 0</category>").size());
        }
    }
    for (const auto& found : {comments, data}) {
        EXPECT_EQ(found.size(), std::size_t{thread_count * message_count});
        for (const auto& [text, count] : found) {
            EXPECT_EQ(count, 1) << text;
        }
    }
}

TEST_F(LogOnThreads, every_call_may_meet_every_other) {
    on_threads([this](int thread) {
        for (int i = 0; i < 50; ++i) {
            switch ((thread + i) % 7) {
                case 0:
                    kzb::log_create(settings_);
                    break;
                case 1:
                    kzb::log_open();
                    break;
                case 2:
                    kzb::log_file_exists();
                    break;
                case 3:
                    kzb::log_add_comment("comment");
                    break;
                case 4:
                    report(kzb::level_debug, 0, "debug %d", i);
                    break;
                case 5:
                    report(kzb::level_error, 1, "error %d", i);
                    break;
                default:
                    kzb::log_warning(2, "warning %d", i);
            }
        }
    });
    kzb::log_finish();
    EXPECT_EQ(lines().back(), "</logfile>");
}

}  // namespace
