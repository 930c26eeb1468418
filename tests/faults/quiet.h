// While it lives, standard output and standard error of the process go nowhere.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace kzb_test {

class Quiet {
  public:
    Quiet() : out_(dup(STDOUT_FILENO)), err_(dup(STDERR_FILENO)) {
        std::fflush(nullptr);
        const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        ::close(nowhere);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
    ~Quiet() {
        std::fflush(nullptr);
        dup2(out_, STDOUT_FILENO);
        dup2(err_, STDERR_FILENO);
        ::close(out_);
        ::close(err_);
    }

  private:
    int out_;
    int err_;
};

template <class Body>
auto quietly(Body body) {
    const Quiet quiet;
    return body();
}

}  // namespace kzb_test
