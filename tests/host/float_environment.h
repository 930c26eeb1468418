// A host's floating-point environment for the life of an object: traps, rounding mode.
#pragma once

#include <cfenv>

namespace kzb_test {

class HostTraps {
  public:
    explicit HostTraps(int exceptions) {
        std::fegetenv(&before_);
        std::feclearexcept(FE_ALL_EXCEPT);
        feenableexcept(exceptions);
    }
    ~HostTraps() { std::fesetenv(&before_); }
    HostTraps(const HostTraps&) = delete;
    HostTraps& operator=(const HostTraps&) = delete;

  private:
    std::fenv_t before_;
};

class HostRounding {
  public:
    explicit HostRounding(int mode) : before_(std::fegetround()) { std::fesetround(mode); }
    ~HostRounding() { std::fesetround(before_); }
    HostRounding(const HostRounding&) = delete;
    HostRounding& operator=(const HostRounding&) = delete;

  private:
    int before_;
};

}  // namespace kzb_test
