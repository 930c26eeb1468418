// The clocks and environment tests that stand in every lookup, and the variant without them.
//
// WithClocks asks the process clock, the millisecond timer and the environment wherever a lookup does; Bare compiles
// to the same work without them, so that the difference of the two is the price of the statistics alone.
#pragma once

#include <chrono>
#include <cstdlib>
#include <ctime>

namespace kzb_reference {

struct WithClocks {
    static double ticks() { return static_cast<double>(std::clock()); }
    static double milliseconds() {
        using namespace std::chrono;
        return static_cast<double>(
            duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch()).count());
    }
    static bool environment(const char* name) { return std::getenv(name) != nullptr; }
};

struct Bare {
    static constexpr double ticks() { return 0.0; }
    static constexpr double milliseconds() { return 0.0; }
    static constexpr bool environment(const char*) { return false; }
};

// Adds the time since its construction to an entry of the statistics.
template <class Probe>
class ClockSpan {
  public:
    explicit ClockSpan(double& entry) : entry_(entry), start_(Probe::ticks()) {}
    ~ClockSpan() { entry_ += (Probe::ticks() - start_) / 1000.0; }
    ClockSpan(const ClockSpan&) = delete;
    ClockSpan& operator=(const ClockSpan&) = delete;

  private:
    double& entry_;
    double start_;
};

template <class Probe>
class TimerSpan {
  public:
    explicit TimerSpan(double& entry) : entry_(entry), start_(Probe::milliseconds()) {}
    ~TimerSpan() { entry_ += (Probe::milliseconds() - start_) / 1000.0; }
    TimerSpan(const TimerSpan&) = delete;
    TimerSpan& operator=(const TimerSpan&) = delete;

  private:
    double& entry_;
    double start_;
};

}  // namespace kzb_reference
