// Streams of the process that go nowhere for a while.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace kzb_test {

// Everything written to `descriptor` is lost while the object lives.
class SilentStream {
  public:
    explicit SilentStream(int descriptor) : descriptor_(descriptor), kept_(dup(descriptor)) {
        std::fflush(nullptr);
        const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, descriptor_);
        ::close(nowhere);
    }
    SilentStream(const SilentStream&) = delete;
    SilentStream& operator=(const SilentStream&) = delete;
    ~SilentStream() {
        std::fflush(nullptr);
        dup2(kept_, descriptor_);
        ::close(kept_);
    }

  private:
    int descriptor_;
    int kept_;
};

// Of what the library reports by the thousand; faults that a test finds still show.
class QuietErrors {
    SilentStream errors_{STDERR_FILENO};
};

// Both streams.
class Quiet {
    SilentStream output_{STDOUT_FILENO};
    SilentStream errors_{STDERR_FILENO};
};

template <class Body>
auto quietly(Body body) {
    const Quiet quiet;
    return body();
}

}  // namespace kzb_test
