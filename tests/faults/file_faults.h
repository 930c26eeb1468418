// File calls that fail on request: in this program, the shared library included, and, preloaded, in any other.
//
// Only the calls that the code makes itself are seen, not those inside the C library's streams.
#pragma once

#include <string>

namespace kzb_test {

enum class FileCall { open, read, write, fsync, fchmod, ftruncate, close, rename, count };

enum class FileFault {
    fails,        // with `error`
    shortened,    // reads and writes: half of what was asked, from then on
    interrupted,  // once, by a signal
    kills,        // the process ends there
};

struct FaultPlan {
    FileCall call = FileCall::count;
    long number = 1;  // from 1
    FileFault fault = FileFault::fails;
    int error = 0;
    int rename_error = 0;  // of every rename, besides
    // For the environment of a program that has this file preloaded.
    std::string text() const;
};

// Exit status of a process that a plan killed.
inline constexpr int killed_status = 77;

// While it lives, the plan is in force.
class FaultyFiles {
  public:
    explicit FaultyFiles(const FaultPlan& plan);
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;
    ~FaultyFiles();
    // Whether the call of that number came.
    bool struck() const;
};

}  // namespace kzb_test
