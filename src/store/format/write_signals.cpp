#include "store/format/write_signals.h"

#include <pthread.h>

#include <cerrno>
#include <ctime>

namespace kzb {

WriteSignals::WriteSignals() {
    sigset_t held;
    sigemptyset(&held);
    sigaddset(&held, SIGXFSZ);
    sigaddset(&held, SIGPIPE);
    sigemptyset(&pending_);
    sigpending(&pending_);
    pthread_sigmask(SIG_BLOCK, &held, &before_);
}

WriteSignals::~WriteSignals() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void WriteSignals::take(int cause) const {
    const int signal = cause == EPIPE ? SIGPIPE : cause == EFBIG ? SIGXFSZ : 0;
    if (signal != 0 && sigismember(&pending_, signal) != 1) {
        sigset_t one;
        sigemptyset(&one);
        sigaddset(&one, signal);
        constexpr timespec at_once{};
        sigtimedwait(&one, nullptr, &at_once);
    }
}

}  // namespace kzb
