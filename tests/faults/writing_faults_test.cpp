// kzb_finish and kzb_export_information on files that fail: the old file or the whole new one, and nothing beside it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "faults/file_faults.h"
#include "faults/models.h"
#include "support/quiet.h"

namespace {

using namespace kzb_test;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr FileCall writing_calls[] = {FileCall::open,   FileCall::write, FileCall::fsync,
                                      FileCall::fchmod, FileCall::close, FileCall::rename};
constexpr int more_than_any = 50;  // calls of a kind in one writing

const std::string old_content = "the file of before";

bool is_pending(int signal) {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}

// How a process ends that does `work`, while this one does something else.
template <class Work, class Meanwhile>
int status_of_child(Work work, Meanwhile meanwhile) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    meanwhile();
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}
template <class Work>
int status_of_child(Work work) {
    return status_of_child(work, [] {});
}

class WritingFaults : public testing::Test {
  protected:
    WritingFaults() : path_(folder_ / "out") {
        finish(path_);
        new_content_ = read_file(path_);
        std::filesystem::remove(path_);
    }

    // A store of several buffers.
    static KZB_STORE* filled() {
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        kzb_put_int("control", "motor_type", 10000, store);
        const int sizes[] = {20000};
        kzb_create_table("c", "large", 1, sizes, store);
        for (int i = 0; i < sizes[0]; ++i) {
            kzb_set_table_axis_value("c", "large", 1, i, i, store);
        }
        for (int i = 0; i < 4000; ++i) {
            kzb_put_int("many", std::to_string(i).c_str(), i, store);
        }
        return store;
    }
    static void finish(const std::string& path) {
        KZB_STORE* const store = filled();
        kzb_writer(path.c_str(), store);
        kzb_finish(store);
    }
    // Whether the fault came to pass.
    bool finish_with(const FaultPlan& plan) {
        KZB_STORE* const store = filled();
        kzb_writer(path_.c_str(), store);
        const Quiet quiet;
        const FaultyFiles faults(plan);
        kzb_finish(store);
        return faults.struck();
    }

    Folder folder_;
    std::string path_;
    std::string new_content_;
};

TEST_F(WritingFaults, a_call_that_fails_leaves_the_old_file_or_the_whole_new_one) {
    for (const FileCall call : writing_calls) {
        for (const int error : {ENOSPC, EACCES, EIO}) {
            int hits = 0;
            bool struck = true;
            for (long number = 1; struck && number < more_than_any; ++number) {
                write_file(path_, old_content);
                struck = finish_with({call, number, FileFault::fails, error});
                EXPECT_THAT(read_file(path_), AnyOf(old_content, new_content_)) << static_cast<int>(call);
                EXPECT_THAT(folder_.names(), ElementsAre("out"));
                hits += struck ? 1 : 0;
                if (!struck) {
                    EXPECT_EQ(read_file(path_), new_content_);
                } else if (call != FileCall::open && call != FileCall::close) {
                    EXPECT_EQ(read_file(path_), old_content);
                }
            }
            EXPECT_FALSE(struck);
            EXPECT_GT(hits, 0) << static_cast<int>(call);
        }
    }
}

TEST_F(WritingFaults, a_call_that_fails_leaves_nothing_or_the_whole_file_where_none_stood) {
    for (const FileCall call : writing_calls) {
        bool struck = true;
        int hits = 0;
        for (long number = 1; struck && number < more_than_any; ++number) {
            std::filesystem::remove(path_);
            struck = finish_with({call, number, FileFault::fails, ENOSPC});
            hits += struck ? 1 : 0;
            EXPECT_THAT(folder_.names(), AnyOf(IsEmpty(), ElementsAre("out")));
            if (!folder_.names().empty()) {
                EXPECT_EQ(read_file(path_), new_content_);
            }
        }
        // Mode and disk are looked after only where an old file is replaced.
        EXPECT_EQ(hits > 0, call != FileCall::fchmod && call != FileCall::fsync) << static_cast<int>(call);
    }
}

TEST_F(WritingFaults, short_and_interrupted_writes_write_everything) {
    for (const FileFault fault : {FileFault::shortened, FileFault::interrupted}) {
        bool struck = true;
        int hits = 0;
        for (long number = 1; struck && number < more_than_any; ++number) {
            write_file(path_, old_content);
            struck = finish_with({FileCall::write, number, fault, 0});
            hits += struck ? 1 : 0;
            EXPECT_EQ(read_file(path_), new_content_);
        }
        EXPECT_GT(hits, 0);
    }
}

TEST_F(WritingFaults, a_process_killed_at_any_call_leaves_the_old_file_or_the_whole_new_one) {
    for (const FileCall call : writing_calls) {
        int status = killed_status;
        int killed = 0;
        for (long number = 1; status == killed_status && number < more_than_any; ++number) {
            write_file(path_, old_content);
            const pid_t child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                finish_with({call, number, FileFault::kills, 0});
                _exit(0);
            }
            int ended = 0;
            ASSERT_EQ(waitpid(child, &ended, 0), child);
            status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
            EXPECT_THAT(status, AnyOf(0, killed_status));
            killed += status == killed_status ? 1 : 0;
            EXPECT_THAT(read_file(path_), AnyOf(old_content, new_content_));
        }
        EXPECT_GT(killed, 0);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(read_file(path_), new_content_);
    }
}

// As a host that may write the file but not the folder sees it.
TEST_F(WritingFaults, a_folder_that_takes_no_new_file_has_the_file_written_in_place) {
    write_file(path_, old_content);
    struct stat before {};
    ASSERT_EQ(stat(path_.c_str(), &before), 0);
    EXPECT_TRUE(finish_with({FileCall::open, 2, FileFault::fails, EACCES}));
    struct stat after {};
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(read_file(path_), new_content_);
}

TEST_F(WritingFaults, a_file_that_cannot_be_emptied_in_its_place_stays) {
    write_file(path_, old_content);
    const int nameless = open(path_.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(nameless, 0);
    std::filesystem::remove(path_);
    const std::string place = "/proc/self/fd/" + std::to_string(nameless);
    KZB_STORE* const store = filled();
    kzb_writer(place.c_str(), store);
    {
        const FaultyFiles faults({FileCall::ftruncate, 1, FileFault::fails, EPERM});
        kzb_finish(store);
        EXPECT_TRUE(faults.struck());
    }
    EXPECT_EQ(read_file(place), old_content);
    close(nameless);
}

// A file that is mounted by itself; another's file in a folder with the sticky bit.
TEST_F(WritingFaults, where_a_name_cannot_be_exchanged_the_new_bytes_go_into_the_old_file) {
    for (const int error : {EBUSY, EPERM}) {
        write_file(path_, old_content);
        struct stat before {};
        ASSERT_EQ(stat(path_.c_str(), &before), 0);
        EXPECT_TRUE(finish_with({FileCall::rename, 1, FileFault::fails, error}));
        struct stat after {};
        ASSERT_EQ(stat(path_.c_str(), &after), 0);
        EXPECT_EQ(before.st_ino, after.st_ino);
        EXPECT_EQ(read_file(path_), new_content_);
        EXPECT_THAT(folder_.names(), ElementsAre("out"));
    }
}

TEST_F(WritingFaults, a_copy_that_fails_leaves_the_old_file_or_the_whole_new_one_beside) {
    int copies_kept = 0;
    for (const FileCall call : {FileCall::open, FileCall::read, FileCall::write, FileCall::fsync, FileCall::fchmod,
                                FileCall::ftruncate, FileCall::close}) {
        bool struck = true;
        int hits = 0;
        for (long number = 1; struck && number < more_than_any; ++number) {
            SCOPED_TRACE(std::to_string(static_cast<int>(call)) + ", " + std::to_string(number));
            const Folder place;
            path_ = place / "out";
            write_file(path_, old_content);
            struck = finish_with({call, number, FileFault::fails, EIO, EBUSY});
            hits += struck ? 1 : 0;
            const std::vector<std::string> names = place.names();
            if (names.size() == 1) {
                EXPECT_THAT(read_file(path_), AnyOf(old_content, new_content_));
            } else {
                ASSERT_EQ(names.size(), 2U);
                EXPECT_EQ(read_file(place / names[names[0] == "out" ? 1 : 0]), new_content_);
                ++copies_kept;
            }
            if (!struck) {
                EXPECT_EQ(read_file(path_), new_content_);
            }
        }
        EXPECT_GT(hits, 0) << static_cast<int>(call);
    }
    EXPECT_GT(copies_kept, 0);
}

TEST_F(WritingFaults, a_file_beyond_the_limit_of_the_process_does_not_end_it) {
    write_file(path_, old_content);
    const int status = status_of_child([&] {
        signal(SIGXFSZ, SIG_DFL);
        const rlimit limit{512, 512};
        setrlimit(RLIMIT_FSIZE, &limit);
        finish(path_);
        return is_pending(SIGXFSZ) ? 1 : 0;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read_file(path_), old_content);
    EXPECT_THAT(folder_.names(), ElementsAre("out"));
}

TEST_F(WritingFaults, a_pipe_whose_reader_goes_does_not_end_the_process) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    const int reader = open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    const auto write_until_it_fails = [&] {
        signal(SIGPIPE, SIG_DFL);
        close(reader);
        finish(path_);
        return is_pending(SIGPIPE) ? 1 : 0;
    };
    const int status = status_of_child(write_until_it_fails, [&] {
        pollfd first{reader, POLLIN, 0};  // more comes than a pipe holds
        EXPECT_EQ(poll(&first, 1, 30000), 1);
        close(reader);
    });
    EXPECT_EQ(status, 0);
}

// A signal that waited for the host before still does.
TEST_F(WritingFaults, a_pending_signal_of_the_host_stays) {
    const int status = status_of_child([&] {
        sigset_t own;
        sigemptyset(&own);
        sigaddset(&own, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &own, nullptr);
        raise(SIGPIPE);
        finish(path_);
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        return is_pending(SIGPIPE) && sigismember(&mask, SIGPIPE) == 1 && sigismember(&mask, SIGXFSZ) == 0 ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(WritingFaults, mode_and_owner_of_the_old_file_stay) {
    write_file(path_, old_content);
    ASSERT_EQ(chmod(path_.c_str(), 0604), 0);
    constexpr uid_t somebody = 12345;
    const bool given_away = chown(path_.c_str(), somebody, somebody) == 0;  // a right of the superuser
    finish(path_);
    struct stat after {};
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(after.st_mode & 07777, 0604U);
    EXPECT_EQ(after.st_uid, given_away ? somebody : geteuid());
    EXPECT_EQ(read_file(path_), new_content_);
}

TEST_F(WritingFaults, a_new_file_has_the_mode_that_the_mask_leaves) {
    const mode_t mask = umask(027);
    finish(path_);
    umask(mask);
    struct stat after {};
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(after.st_mode & 07777, 0640U);
}

TEST_F(WritingFaults, symbolic_links_stay_and_lead_to_the_new_file) {
    write_file(folder_ / "target", old_content);
    std::filesystem::create_symlink("target", folder_ / "first");
    std::filesystem::create_symlink(folder_ / "first", path_);
    finish(path_);
    EXPECT_TRUE(std::filesystem::is_symlink(path_));
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "first"));
    EXPECT_EQ(read_file(folder_ / "target"), new_content_);
    std::filesystem::remove(folder_ / "target");
    finish(path_);  // links that lead to no file yet
    EXPECT_EQ(read_file(folder_ / "target"), new_content_);
    EXPECT_THAT(folder_.names(), ElementsAre("first", "out", "target"));
}

TEST_F(WritingFaults, a_file_without_a_name_and_devices_are_written_in_place) {
    const int nameless = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(nameless, 0);
    std::filesystem::remove(path_);
    finish("/proc/self/fd/" + std::to_string(nameless));
    EXPECT_EQ(lseek(nameless, 0, SEEK_END), static_cast<off_t>(new_content_.size()));
    close(nameless);
    finish("/dev/null");
    finish("/dev/full");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_THAT(folder_.names(), IsEmpty());
}

TEST_F(WritingFaults, places_that_take_no_file_are_passed_over_in_silence) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const std::string& place :
         {folder_ / "", folder_ / "none/out", std::string(), folder_ / std::string(300, 'x')}) {
        finish(place);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
    EXPECT_THAT(folder_.names(), IsEmpty());
}

TEST_F(WritingFaults, the_exported_document_is_the_old_one_or_the_whole_new_one) {
    ModelFile model;
    fill_generic(model);
    KZB_STORE* const store = loaded_store(model.path());
    ASSERT_EQ(kzb_export_information(store, path_.c_str()), 0);
    const std::string document = read_file(path_);
    for (const FileCall call : writing_calls) {
        bool struck = true;
        int hits = 0;
        for (long number = 1; struck && number < more_than_any; ++number) {
            write_file(path_, old_content);
            kzb_reset_error(store);
            int result = -1;
            {
                const FaultyFiles faults({call, number, FileFault::fails, ENOSPC});
                result = kzb_export_information(store, path_.c_str());
                struck = faults.struck();
            }
            EXPECT_THAT(read_file(path_), AnyOf(old_content, document));
            EXPECT_THAT(folder_.names(), ElementsAre("out"));
            // A file that can't be opened is told, a write that fails is not.
            EXPECT_EQ(result, struck && call == FileCall::open ? 1 : 0);
            EXPECT_EQ(kzb_has_error(store), struck && call == FileCall::open ? 90032 : 0);
            hits += struck ? 1 : 0;
        }
        EXPECT_GT(hits, 0) << static_cast<int>(call);
    }
    kzb_finish(store);
}

}  // namespace
