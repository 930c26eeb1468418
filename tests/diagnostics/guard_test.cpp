// Where exceptions end, and where a host's floating-point traps do.
#include "diagnostics/guard.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>
#include <new>
#include <stdexcept>

namespace {

// In memory, so that the division happens when the program runs.
volatile double zero = 0.0;
volatile double huge = 1e300;
volatile double third = 3.0;

class Traps {
  public:
    explicit Traps(int exceptions) {
        std::fegetenv(&before_);
        std::feclearexcept(FE_ALL_EXCEPT);
        feenableexcept(exceptions);
    }
    ~Traps() { std::fesetenv(&before_); }
    Traps(const Traps&) = delete;
    Traps& operator=(const Traps&) = delete;

  private:
    std::fenv_t before_;
};

TEST(Guard, gives_what_the_body_gives) {
    EXPECT_EQ(kzb::guarded(1, [] { return 2; }), 2);
    int calls = 0;
    kzb::guarded([&] { ++calls; });
    EXPECT_EQ(calls, 1);
}

TEST(Guard, gives_the_fallback_whatever_is_thrown) {
    EXPECT_EQ(kzb::guarded(1, []() -> int { throw std::runtime_error("text"); }), 1);
    EXPECT_EQ(kzb::guarded(1.5, []() -> double { throw std::bad_alloc(); }), 1.5);
    EXPECT_EQ(kzb::guarded(1, []() -> int { throw 7; }), 1);
    kzb::guarded([] { throw "text"; });
}

TEST(Guard, exceptions_of_the_processor_are_masked_inside_and_set_again_behind) {
    const Traps traps(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW | FE_INEXACT);
    const double infinite = kzb::guarded(0.0, [] { return 1.0 / zero; });
    const double overflown = kzb::guarded(0.0, [] { return huge * huge; });
    const double inexact = kzb::guarded(0.0, [] { return 1.0 / third; });
    const bool no_number = kzb::guarded(false, [] { return zero / zero != 0.0; });
    const int enabled = fegetexcept();
    const int flagged = std::fetestexcept(FE_ALL_EXCEPT);
    fedisableexcept(FE_ALL_EXCEPT);
    EXPECT_EQ(infinite, std::numeric_limits<double>::infinity());
    EXPECT_EQ(overflown, std::numeric_limits<double>::infinity());
    EXPECT_EQ(inexact, 1.0 / 3.0);
    EXPECT_TRUE(no_number);
    EXPECT_EQ(enabled, FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW | FE_INEXACT);
    EXPECT_EQ(flagged, 0);
}

TEST(Guard, traps_are_set_again_behind_what_is_thrown) {
    const Traps traps(FE_DIVBYZERO);
    EXPECT_EQ(kzb::guarded(1, []() -> int { throw std::runtime_error(1.0 / zero > 0.0 ? "infinite" : ""); }), 1);
    EXPECT_EQ(fegetexcept(), FE_DIVBYZERO);
    EXPECT_EQ(std::fetestexcept(FE_DIVBYZERO), 0);
}

TEST(Guard, calls_inside_a_call_leave_the_traps_to_the_outer_one) {
    const Traps traps(FE_DIVBYZERO);
    const double sum = kzb::guarded(0.0, [] {
        const double inner = kzb::guarded(0.0, [] { return 1.0 / zero; });
        return inner + 1.0 / zero;  // still masked
    });
    EXPECT_EQ(sum, std::numeric_limits<double>::infinity());
    EXPECT_EQ(fegetexcept(), FE_DIVBYZERO);
}

TEST(Guard, rounding_of_the_host_is_that_of_the_call) {
    std::fesetround(FE_UPWARD);
    const double up = kzb::guarded(0.0, [] { return 1.0 / third; });
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(mode, FE_UPWARD);
    EXPECT_GT(up, 1.0 / third);  // a third is below its upper neighbour
}

}  // namespace
