// The end of every benchmark program: what was registered runs as the command line says.
#pragma once

#include <benchmark/benchmark.h>

namespace kzb_bench {

inline int run_registered(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace kzb_bench
