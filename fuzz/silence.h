// Neither perror nor printf of a million odd inputs is of interest.
#pragma once

#include <cstdio>

namespace kzb_fuzz {

// Standard output goes nowhere from now on. Standard error stays: that of a run is shut by -close_fd_mask=3, which
// leaves the reports of the sanitizers.
inline void silence() {
    static const bool done = std::freopen("/dev/null", "w", stdout) != nullptr;
    (void)done;
}

}  // namespace kzb_fuzz
