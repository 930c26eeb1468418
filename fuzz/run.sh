#!/bin/sh
# Runs the fuzz targets, each for some seconds: fuzz/run.sh [SECONDS [TARGET...]]
#
# New inputs gather in build/fuzz/corpus_TARGET, from where the next run goes on; an input that fails is left in
# build/fuzz as TARGET-crash-*, TARGET-timeout-* and the like. FUZZ_BUILD names another build folder. Without clang and its
# libFuzzer the targets replay their seeds.
set -eu
seconds=${1:-60}
[ $# -eq 0 ] || shift
cd "$(dirname "$0")/.."
targets=${*:-$(cd fuzz && ls -d seeds/*/ | sed 's|seeds/\(.*\)/|\1|')}

libfuzzer_works() {
    command -v clang++ >/dev/null || return 1
    echo 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }' |
        clang++ -x c++ -fsanitize=fuzzer,address - -o /dev/null 2>/dev/null
}

if ! libfuzzer_works; then
    echo "No clang with libFuzzer here: the targets replay their seeds."
    cmake --preset release
    for target in $targets; do
        cmake --build --preset release --target "fuzz_$target"
        build/release/fuzz_"$target" "fuzz/seeds/$target"
    done
    exit 0
fi

build=${FUZZ_BUILD:-build/fuzz}
[ -n "${FUZZ_BUILD:-}" ] || cmake --preset fuzz
# Short stacks of allocations and a small quarantine: half the time of an execution went there. An input that fails tells
# more by itself: build/fuzz/fuzz_TARGET INPUT.
options="malloc_context_size=1:quarantine_size_mb=1:thread_local_quarantine_size_kb=64:${ASAN_OPTIONS:-}"
for target in $targets; do
    cmake --build "$build" --target "fuzz_$target"
    mkdir -p "$build/corpus_$target"
    echo "$target, $seconds s"
    status=0
    words=
    [ ! -f "fuzz/$target.dict" ] || words="-dict=fuzz/$target.dict"
    # An environment of its own: what a program compares with comes to stand in the inputs that are found.
    # shellcheck disable=SC2086
    env -i PATH=/usr/bin:/bin ASAN_OPTIONS="$options" "$build/fuzz_$target" -max_total_time="$seconds" \
        -reload=0 -rss_limit_mb=2048 -timeout=60 -max_len=4096 -entropic=0 -close_fd_mask=3 -print_final_stats=1 $words \
        -artifact_prefix="$build/$target-" "$build/corpus_$target" "fuzz/seeds/$target" \
        >"$build/$target.log" 2>&1 || status=$?
    grep -E '^stat::(number_of_executed_units|average_exec_per_sec|slowest|peak)' "$build/$target.log" || true
    if [ $status -ne 0 ]; then
        tail -40 "$build/$target.log"
        exit $status
    fi
done
