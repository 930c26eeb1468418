// Processes in which a test may spoil what belongs to the process.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace kzb_test {

// Runs `body` in a process of its own; its result, or -1 for one that did not return.
inline int in_a_process(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        int result = 127;
        try {
            result = body();
        } catch (...) {
        }
        ::_exit(result);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

}  // namespace kzb_test
