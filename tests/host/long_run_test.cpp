// Ten million steps of the permanent-magnet machine: finite results, no growth of memory, no step slower than the
// first.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

#include "same_bits/runs.h"

namespace kzb_test {
namespace {

long resident_kilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") {
            long value = 0;
            status >> value;
            return value;
        }
    }
    return -1;
}

// Of this thread: what other programs take isn't counted.
double processor_seconds() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// The machine at 1000 rpm between sinusoidal voltages.
class RunningMachine {
  public:
    explicit RunningMachine(const char* path) : status_(kzbcalcInitialize(path, 1, &calc_)) { kzbcalcSetData(calc_); }
    ~RunningMachine() { kzbcalcTerminate(calc_); }
    RunningMachine(const RunningMachine&) = delete;
    RunningMachine& operator=(const RunningMachine&) = delete;
    int status() const { return status_; }

    void step(int count) {
        constexpr double width = 5e-5;
        constexpr double degrees_per_second = 6.0 * 1000.0;
        constexpr double pole_pairs = 4.0;
        for (int i = 0; i < count; ++i, ++sample_) {
            const double time = width * static_cast<double>(sample_);
            const double angle = degrees_per_second * time;
            kzbcalcSetTime(time, calc_);
            kzbcalcSetDisplacement(angle, calc_);
            const double theta = angle * pole_pairs * std::numbers::pi / 180.0;
            for (int phase = 1; phase <= 3; ++phase) {
                kzbcalcSetVoltage(phase, 60.0 * std::cos(theta + 1.3 - 2.0 * std::numbers::pi / 3.0 * (phase - 1)),
                                  calc_);
            }
            kzbcalcExecute(calc_);
            const double current = kzbcalcGetCurrent(1, calc_);
            finite_ = finite_ && std::isfinite(current) && std::isfinite(kzbcalcGetTorque(calc_));
            peak_ = std::max(peak_, std::fabs(current));
            kzbcalcUpdate(calc_);
        }
    }
    bool finite() const { return finite_; }
    double peak() const { return peak_; }

  private:
    KZB_CALC* calc_ = nullptr;
    int status_;
    long long sample_ = 0;
    bool finite_ = true;
    double peak_ = 0.0;
};

TEST(LongRun, ten_million_steps_stay_finite_flat_in_memory_and_flat_in_time) {
    const RunFile file(run_named("pmsm_harmonic"));
    constexpr int parts = 200;
    constexpr int steps = 50000;
    std::vector<std::size_t> heap(parts);
    std::vector<long> resident(parts);
    RunningMachine old(file.path());
    RunningMachine fresh(file.path());
    ASSERT_EQ(old.status() + fresh.status(), 0);
    for (std::size_t part = 0; part < parts; ++part) {
        old.step(steps);
        heap[part] = mallinfo2().uordblks + mallinfo2().hblkhd;
        resident[part] = resident_kilobytes();
    }
    EXPECT_TRUE(old.finite());
    EXPECT_GT(old.peak(), 10.0);  // a machine that carries current
    EXPECT_LT(old.peak(), 1e4);
    constexpr std::size_t settled = parts / 20;
    EXPECT_LE(*std::max_element(heap.begin() + settled, heap.end()), heap[settled] + 4096);
    EXPECT_LE(*std::max_element(resident.begin() + settled, resident.end()), resident[settled] + 512);

    // In turn with one that has just started, so that both meet the same other programs; the quickest turn counts.
    double quickest[2] = {1.0, 1.0};
    for (int turn = 0; turn < 100; ++turn) {
        for (const bool is_old : {true, false}) {
            constexpr int count = 2500;
            const double start = processor_seconds();
            (is_old ? old : fresh).step(count);
            double& best = quickest[is_old ? 1 : 0];
            best = std::min(best, (processor_seconds() - start) / count);
        }
    }
    std::printf("a step: %.3f us at the start, %.3f us after ten million\n", 1e6 * quickest[0], 1e6 * quickest[1]);
    EXPECT_LT(quickest[1], 1.25 * quickest[0]);
}

}  // namespace
}  // namespace kzb_test
