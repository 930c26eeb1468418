#!/bin/sh
# Builds the library with g++ and clang++, with and without optimisation, and lets each build compare its results with
# the hashes. Each also meets a host that traps floating-point exceptions: that rests on what a compiler may move.
#
#   tests/same_bits/compilers.sh SOURCE-FOLDER BUILD-FOLDER
#
# CMAKE_CXX_COMPILER_LAUNCHER in the environment is taken as it is, for a compiler cache.
set -eu

if [ $# -ne 2 ]; then
    sed -n 's/^#   \(tests.*\)/usage: \1/p' "$0" >&2
    exit 2
fi
source=$1
builds=$2
mkdir -p "$builds"
for compiler in g++ clang++; do
    c_compiler=$(echo "$compiler" | sed 's/clang++/clang/; s/g++/gcc/')
    for type in Debug Release; do
        build=$builds/$compiler-$type
        echo "== $compiler, $type"
        cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=$type -DCMAKE_CXX_COMPILER="$compiler" \
            -DCMAKE_C_COMPILER="$c_compiler" -DKZB_BUILD_TOOLS=OFF -DKZB_BUILD_BENCH=OFF > "$build.log" 2>&1 ||
            { cat "$build.log"; exit 1; }
        cmake --build "$build" --target same_bits_tests host_tests > "$build.log" 2>&1 ||
            { cat "$build.log"; exit 1; }
        "$build/same_bits_tests" --gtest_brief=1
        "$build/host_tests" --gtest_brief=1 --gtest_filter='*FloatTraps*'
    done
done
