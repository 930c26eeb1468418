// A process whose first calls of the library come from sixteen threads at once: each opens PATH and runs it. Prints the
// hash of the results, which are the same on every thread; else fails.
//
//   first_calls RUN PATH
#include <barrier>
#include <cstdio>
#include <thread>
#include <vector>

#include "same_bits/runs.h"

int main(int argc, char** argv) {
    using namespace kzb_test;
    if (argc != 3) {
        return 2;
    }
    constexpr int thread_count = 16;
    constexpr int samples = 4;
    const MachineRun& run = run_named(argv[1]);
    std::barrier start(thread_count);
    std::vector<Bits> seen(thread_count);
    std::vector<std::thread> threads;
    for (Bits& bits : seen) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            bits = results_of(run, argv[2], samples);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Bits& bits : seen) {
        if (!(bits == seen[0])) {
            return 1;
        }
    }
    std::printf("%llx\n", static_cast<unsigned long long>(seen[0].hash()));
    return 0;
}
