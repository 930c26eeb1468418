// What the benchmarks of a step have in common: the machine in its file, the loop over samples, the three ways.
#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "bench/program.h"
#include "bench/reference/lookup.h"
#include "bench/reference/store.h"

namespace kzb_bench {

// A machine in memory and in a file that goes away with the object.
class Machine {
  public:
    // fill(store) makes the machine; `name` tells its file from the program's others.
    template <class Fill>
    Machine(const std::string& name, Fill fill)
        : path_(std::filesystem::temp_directory_path() / ("kzb_" + name + '_' + std::to_string(getpid()) + ".kzb")) {
        fill(store_);
        kzb_reference::write_model_file(path_.c_str(), store_);
    }
    ~Machine() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
    kzb_reference::Store& store() { return store_; }
    const char* path() const { return path_.c_str(); }

  private:
    kzb_reference::Store store_;
    std::filesystem::path path_;
};

// Calls step(time, sample), which tells a current, with the samples of the run over and over while the time goes on.
// The highest current tells that the run is one of a loaded machine.
template <class Sample, class Step>
void measure(benchmark::State& state, const std::vector<Sample>& run, double step_width, Step step) {
    std::size_t next = 0;
    double time = 0.0;
    double peak = 0.0;
    for (auto _ : state) {
        peak = std::fmax(peak, std::fabs(step(time, run[next])));
        time += step_width;
        if (++next == run.size()) {
            next = 0;
        }
    }
    state.counters["peak_current"] = peak;
}

// exported(state, arguments...) under `title` and "exported"; reference(state, arguments..., lookup) without clocks and
// environment tests as "bare", with them as "clocks".
template <class Exported, class Reference, class... Arguments>
void register_ways(const std::string& title, Exported exported, Reference reference, const Arguments&... arguments) {
    using namespace kzb_reference;
    benchmark::RegisterBenchmark((title + "exported").c_str(), exported, arguments...);
    benchmark::RegisterBenchmark((title + "bare").c_str(), reference, arguments...,
                                 static_cast<Lookup>(kzb_get_table_interpolated_value<Bare>));
    benchmark::RegisterBenchmark((title + "clocks").c_str(), reference, arguments...,
                                 static_cast<Lookup>(kzb_get_table_interpolated_value<WithClocks>));
}

}  // namespace kzb_bench
