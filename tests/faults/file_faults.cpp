#include "faults/file_faults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

using kzb_test::FaultPlan;
using kzb_test::FileCall;
using kzb_test::FileFault;

struct Plan {
    int call = static_cast<int>(FileCall::count);
    long number = 0;
    int fault = 0;
    int error = 0;
    int rename_error = 0;
};
Plan plan;
std::atomic<long> calls{0};

enum class Turn { go_on, fail, shorten };

// Whether this call is the one.
Turn take_turn(FileCall call) {
    if (plan.call != static_cast<int>(call)) {
        return Turn::go_on;
    }
    const long number = ++calls;
    const auto fault = static_cast<FileFault>(plan.fault);
    if (fault == FileFault::shortened) {
        return number >= plan.number ? Turn::shorten : Turn::go_on;
    }
    if (number != plan.number) {
        return Turn::go_on;
    }
    if (fault == FileFault::kills) {
        _exit(kzb_test::killed_status);
    }
    errno = fault == FileFault::interrupted ? EINTR : plan.error;
    return Turn::fail;
}

bool is_regular(int descriptor) {
    struct stat status {};
    return syscall(SYS_fstat, descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

// Streams and pipes of the program are no matter of files.
Turn take_turn(FileCall call, int descriptor) {
    return plan.call == static_cast<int>(call) && is_regular(descriptor) ? take_turn(call) : Turn::go_on;
}

std::size_t shortened(Turn turn, std::size_t count) {
    return turn == Turn::shorten ? std::max<std::size_t>(count / 2, 1) : count;
}

// The plan of a program that has this preloaded.
[[gnu::constructor]] void read_plan() {
    if (const char* const text = std::getenv("KZB_TEST_FAULT")) {
        Plan read;
        if (std::sscanf(text, "%d:%ld:%d:%d", &read.call, &read.number, &read.fault, &read.error) == 4) {
            plan = read;
        }
    }
}

}  // namespace

// Seen by the shared library, so not hidden as the rest of the program is.
#pragma GCC visibility push(default)
extern "C" {
int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return take_turn(FileCall::open) == Turn::fail ? -1
                                                   : static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}
ssize_t read(int descriptor, void* to, std::size_t count) {
    const Turn turn = take_turn(FileCall::read, descriptor);
    return turn == Turn::fail ? -1 : syscall(SYS_read, descriptor, to, shortened(turn, count));
}
ssize_t pread(int descriptor, void* to, std::size_t count, off_t offset) {
    const Turn turn = take_turn(FileCall::read, descriptor);
    return turn == Turn::fail ? -1 : syscall(SYS_pread64, descriptor, to, shortened(turn, count), offset);
}
ssize_t write(int descriptor, const void* from, std::size_t count) {
    const Turn turn = take_turn(FileCall::write, descriptor);
    return turn == Turn::fail ? -1 : syscall(SYS_write, descriptor, from, shortened(turn, count));
}
int fsync(int descriptor) {
    return take_turn(FileCall::fsync) == Turn::fail ? -1 : static_cast<int>(syscall(SYS_fsync, descriptor));
}
int fchmod(int descriptor, mode_t mode) {
    return take_turn(FileCall::fchmod) == Turn::fail ? -1 : static_cast<int>(syscall(SYS_fchmod, descriptor, mode));
}
int ftruncate(int descriptor, off_t length) noexcept {
    return take_turn(FileCall::ftruncate) == Turn::fail ? -1
                                                        : static_cast<int>(syscall(SYS_ftruncate, descriptor, length));
}
// The descriptor is gone whatever the answer is.
int close(int descriptor) {
    const Turn turn = take_turn(FileCall::close, descriptor);
    const int cause = errno;
    const int result = static_cast<int>(syscall(SYS_close, descriptor));
    if (turn == Turn::fail) {
        errno = cause;
        return -1;
    }
    return result;
}
int rename(const char* from, const char* to) noexcept {
    if (plan.rename_error != 0) {
        errno = plan.rename_error;
        return -1;
    }
    return take_turn(FileCall::rename) == Turn::fail ? -1 : static_cast<int>(syscall(SYS_rename, from, to));
}
}
#pragma GCC visibility pop

namespace kzb_test {

std::string FaultPlan::text() const {
    return std::to_string(static_cast<int>(call)) + ':' + std::to_string(number) + ':' +
           std::to_string(static_cast<int>(fault)) + ':' + std::to_string(error);
}

FaultyFiles::FaultyFiles(const FaultPlan& made) {
    calls = 0;
    plan = {static_cast<int>(made.call), made.number, static_cast<int>(made.fault), made.error, made.rename_error};
}

FaultyFiles::~FaultyFiles() {
    plan = Plan{};
}

bool FaultyFiles::struck() const {
    return calls >= plan.number;
}

}  // namespace kzb_test
