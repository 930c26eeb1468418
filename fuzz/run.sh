#!/bin/sh
# Builds the fuzz targets with clang and libFuzzer and runs each for the seconds given. New inputs stay in build/.
set -eu
seconds=${1:-60}
cd "$(dirname "$0")/.."
cmake --preset fuzz
targets=$(cd fuzz && ls ./*.cpp | sed -n 's/^\.\/\(.*\)\.cpp$/\1/p' | grep -v '^replay_main$')
for target in $targets; do
    cmake --build --preset fuzz --target "fuzz_$target"
    mkdir -p "build/fuzz/corpus_$target"
    "build/fuzz/fuzz_$target" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=10 -close_fd_mask=3 \
        "build/fuzz/corpus_$target" "fuzz/seeds/$target"
done
