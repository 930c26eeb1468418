// kzb on files that fail: the failure is told with the system's reason, and the output is the old file or the whole new
// one.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "faults/file_faults.h"
#include "faults/models.h"

#if KZB_HAS_PROGRAM

namespace {

using namespace kzb_test;
using testing::AnyOf;
using testing::HasSubstr;

const std::string old_content = "the file of before";

class CommandFaults : public testing::Test {
  protected:
    CommandFaults() {
        ModelFile rotary;
        fill_rotary(rotary);
        kzb_put_string("information", "title", "machine", rotary.store());
        write_file(folder_ / "m.kzb", read_file(rotary.path()));
        ModelFile generic;
        fill_generic(generic);
        write_file(folder_ / "g.kzb", read_file(generic.path()));
        write_call_files(folder_, "");
        write_file(folder_ / "s.toml",
                   "drive = \"voltage\"\n[time]\nstart = 1e-4\nstep = 1e-4\nstop = 2e-3\n[sources]\nu = 10.0\nv = "
                   "-5.0\nw = -5.0\n");
    }

    struct Finished {
        int code = -1;
        std::string error;
    };
    // Runs kzb in the folder; what it says on stdout goes to `out`.
    Finished kzb(const std::vector<std::string>& arguments, const FaultPlan* plan = nullptr,
                 const char* out = "/dev/null", rlim_t longest_file = RLIM_INFINITY) {
        const std::string said = messages_ / "err";
        std::vector<std::string> words{KZB_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            if (plan != nullptr) {
                setenv("KZB_TEST_FAULT", plan->text().c_str(), 1);
                setenv("LD_PRELOAD", KZB_FAULTY_FILES, 1);
                setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
            }
            const int outputs[] = {::open(out, O_WRONLY), ::open(said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600)};
            dup2(outputs[0], STDOUT_FILENO);
            dup2(outputs[1], STDERR_FILENO);
            const rlimit limit{longest_file, longest_file};
            setrlimit(RLIMIT_FSIZE, &limit);
            if (chdir((folder_ / "").c_str()) == 0) {
                execv(KZB_PROGRAM, argv.data());
            }
            _exit(127);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_file(said)};
    }

    std::string reference(const std::vector<std::string>& arguments) {
        std::filesystem::remove(folder_ / "out");
        const Finished finished = kzb(arguments);
        EXPECT_EQ(finished.code, 0) << finished.error;
        return read_file(folder_ / "out");
    }

    // The command with each of its calls of a kind refused in turn.
    void refuse(const std::vector<std::string>& arguments, const std::string& whole, FileCall call, int error,
                int most) {
        const std::vector<std::string> names = folder_.names();
        int failures = 0;
        for (int number = 1; number <= most; ++number) {
            SCOPED_TRACE(arguments[0] + ", call " + std::to_string(number) + " of kind " +
                         std::to_string(static_cast<int>(call)));
            write_file(folder_ / "out", old_content);
            const FaultPlan plan{call, number, FileFault::fails, error};
            const Finished finished = kzb(arguments, &plan);
            EXPECT_EQ(folder_.names(), names);
            EXPECT_GE(finished.code, 0) << finished.error;
            if (finished.code == 0) {
                EXPECT_EQ(read_file(folder_ / "out") == whole, true);
                continue;
            }
            ++failures;
            EXPECT_EQ(read_file(folder_ / "out"), old_content);
            EXPECT_THAT(finished.error, HasSubstr("kzb: error: "));
            if (call != FileCall::open && call != FileCall::read) {
                EXPECT_THAT(finished.error, HasSubstr(std::strerror(error)));
            }
        }
        EXPECT_GT(failures, 0) << arguments[0] << ": no call of kind " << static_cast<int>(call);
    }

    void kill(const std::vector<std::string>& arguments, const std::string& whole, FileCall call, int most) {
        int killed = 0;
        for (int number = 1; number <= most; ++number) {
            write_file(folder_ / "out", old_content);
            const FaultPlan plan{call, number, FileFault::kills, 0};
            const Finished finished = kzb(arguments, &plan);
            EXPECT_THAT(finished.code, AnyOf(0, killed_status)) << finished.error;
            EXPECT_THAT(read_file(folder_ / "out"), AnyOf(old_content, whole));
            killed += finished.code == killed_status ? 1 : 0;
        }
        EXPECT_GT(killed, 0) << arguments[0] << ": no call of kind " << static_cast<int>(call);
    }

    Folder folder_;
    Folder messages_;
};

const std::vector<std::string> to_ascii{"convert", "m.kzb", "out", "--form", "ascii"};
const std::vector<std::string> run{"run", "m.kzb", "s.toml", "--out", "out"};
const std::vector<std::vector<std::string>> commands{
    to_ascii,
    run,
    {"convert", "m.kzb", "out", "--form", "binary"},
    {"set", "m.kzb", "parameter/RU=0.25", "--out", "out"},
    {"transform", "m.kzb", "ldlq", "--out", "out"},
    {"loss", "m.kzb", "losses", "--kind", "iron", "--out", "out"},
    {"correct", "m.kzb", "correction", "--out", "out"},
    {"export-info", "g.kzb", "out"},
};

TEST_F(CommandFaults, a_full_disk_is_told_and_the_old_file_stays) {
    for (const auto& command : {to_ascii, run}) {
        const std::string whole = reference(command);
        refuse(command, whole, FileCall::write, ENOSPC, 2);
        refuse(command, whole, FileCall::fsync, EIO, 1);
        refuse(command, whole, FileCall::rename, EACCES, 1);
    }
}

TEST_F(CommandFaults, a_file_that_may_not_grow_is_told_and_the_old_file_stays) {
    write_file(folder_ / "out", old_content);
    const std::vector<std::string> names = folder_.names();
    const Finished finished = kzb(to_ascii, nullptr, "/dev/null", 2048);
    EXPECT_EQ(finished.code, 1);
    EXPECT_THAT(finished.error, HasSubstr(std::strerror(EFBIG)));
    EXPECT_EQ(read_file(folder_ / "out"), old_content);
    EXPECT_EQ(folder_.names(), names);
}

TEST_F(CommandFaults, a_kill_leaves_the_old_file_or_the_whole_new_one) {
    const std::string whole = reference(to_ascii);
    kill(to_ascii, whole, FileCall::write, 2);
    kill(to_ascii, whole, FileCall::rename, 2);
}

TEST_F(CommandFaults, every_command_tells_of_every_call_that_fails) {
    for (const auto& command : commands) {
        const std::string whole = reference(command);
        refuse(command, whole, FileCall::open, EACCES, 12);
        refuse(command, whole, FileCall::write, ENOSPC, 6);
        refuse(command, whole, FileCall::close, EIO, 40);
        refuse(command, whole, FileCall::fsync, EIO, 2);
        refuse(command, whole, FileCall::rename, EACCES, 2);
        for (const FileCall call : {FileCall::open, FileCall::write, FileCall::close, FileCall::rename}) {
            kill(command, whole, call, 8);
        }
    }
}

TEST_F(CommandFaults, an_output_stream_that_takes_no_more_is_told) {
    for (const auto& command : {std::vector<std::string>{"info", "m.kzb"}, {"run", "m.kzb", "s.toml", "--out", "-"}}) {
        const Finished finished = kzb(command, nullptr, "/dev/full");
        EXPECT_EQ(finished.code, 1);
        EXPECT_THAT(finished.error, HasSubstr("No space left on device"));
    }
}

}  // namespace

#endif
