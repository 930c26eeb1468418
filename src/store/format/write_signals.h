// The signals of a write that cannot go on, a file beyond the process's limit or a pipe without a reader, held back
// from the host: the write fails with its cause, and the process goes on.
#pragma once

#include <csignal>

namespace kzb {

class WriteSignals {
  public:
    WriteSignals();
    WriteSignals(const WriteSignals&) = delete;
    WriteSignals& operator=(const WriteSignals&) = delete;
    ~WriteSignals();
    // Takes away the signal that came with a write that failed with `cause`.
    void take(int cause) const;

  private:
    sigset_t before_;   // the thread's mask
    sigset_t pending_;  // what waited before: the host's own
};

}  // namespace kzb
