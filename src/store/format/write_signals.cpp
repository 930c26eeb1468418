#include "store/format/write_signals.h"

#include <pthread.h>

#include <ctime>

namespace kzb {
namespace {

constexpr int held_signals[] = {SIGXFSZ, SIGPIPE};

}  // namespace

WriteSignals::WriteSignals() {
    sigset_t held;
    sigemptyset(&held);
    for (const int signal : held_signals) {
        sigaddset(&held, signal);
    }
    sigemptyset(&pending_);
    sigpending(&pending_);
    pthread_sigmask(SIG_BLOCK, &held, &before_);
}

WriteSignals::~WriteSignals() {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    for (const int signal : held_signals) {
        if (sigismember(&pending, signal) == 1 && sigismember(&pending_, signal) != 1) {
            sigset_t one;
            sigemptyset(&one);
            sigaddset(&one, signal);
            constexpr timespec at_once{};
            sigtimedwait(&one, nullptr, &at_once);
        }
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace kzb
