#!/bin/sh
# Runs the benchmark programs of a build directory and prints their ratios to the plain reference. Builds nothing.
#
#   bench/run.sh BUILD_DIR [--short] [--strict] [--only lookup|step|load]
#
# --short   a few seconds instead of some minutes, figures rougher
# --strict  exit 1 when a wanted ratio is missed
# --only    one subject
# The results of the programs stay in BUILD_DIR/bench-results as JSON.
set -eu

usage() {
    sed -n 's/^#   \(bench.*\)/usage: \1/p' "$0" >&2
    exit 2
}

[ $# -ge 1 ] || usage
build=$1
shift
min_time=0.03
repetitions=9
strict=
only=
while [ $# -gt 0 ]; do
    case $1 in
        --short) min_time=0.02 repetitions=1 ;;
        --strict) strict=--strict ;;
        --only)
            [ $# -ge 2 ] || usage
            shift
            only=$1
            ;;
        *) usage ;;
    esac
    shift
done

here=$(dirname "$0")
results=$build/bench-results
mkdir -p "$results"
set --
steps=$(cd "$here" && ls -- *_step.cpp | sed 's/\.cpp$//')
for program in table_lookup $steps store_load; do
    case $program in
        table_lookup) subject=lookup ;;
        store_load) subject=load ;;
        *) subject=step ;;
    esac
    if [ -n "$only" ] && [ "$only" != "$subject" ]; then
        continue
    fi
    if [ ! -x "$build/$program" ]; then
        echo "bench/run.sh: $build/$program is missing; build first" >&2
        exit 1
    fi
    echo "running $program ..." >&2
    time=$min_time
    [ "$subject" = load ] && time=0.3 # some files at least
    # the statistics' own environment must not be on, and a lookup must not be forced onto the generic path
    env -u KZB_OUTPUT_ELAPSED_TIME -u KZBFILEHANDLER_DEBUG_MODE -u USE_GENERIC_INTERPOLATION -u DORN_KZ_DEBUG_OUTPUT \
        "$build/$program" --benchmark_min_time="$time" --benchmark_repetitions="$repetitions" \
        --benchmark_enable_random_interleaving=true --benchmark_format=json \
        --benchmark_out="$results/$program.json" --benchmark_out_format=json > /dev/null
    set -- "$@" "$results/$program.json"
done
[ $# -gt 0 ] || usage
exec python3 "$here/ratios.py" $strict "$@"
