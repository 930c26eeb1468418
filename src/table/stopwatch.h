// Elapsed times of a lookup; nothing is read from a clock unless times are kept.
#pragma once

#include <chrono>
#include <ctime>

namespace kzb {

// Process clock, in seconds.
class ProcessWatch {
  public:
    explicit ProcessWatch(bool on) : on_(on), start_(on ? std::clock() : 0) {}
    void add_to(double& sum) const {
        if (on_) {
            sum += static_cast<double>(std::clock() - start_) / static_cast<double>(CLOCKS_PER_SEC);
        }
    }

  private:
    bool on_;
    std::clock_t start_;
};

// System timer in whole milliseconds.
class MillisecondWatch {
  public:
    explicit MillisecondWatch(bool on) : on_(on), start_(on ? now() : 0) {}
    void add_to(double& sum) const {
        if (on_) {
            sum += static_cast<double>(now() - start_) / 1000.0;
        }
    }

  private:
    static long long now() {
        using std::chrono::milliseconds;
        return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
    }
    bool on_;
    long long start_;
};

}  // namespace kzb
