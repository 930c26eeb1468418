#!/bin/sh
# Line coverage of the sources that each fuzz target is aimed at, by its seeds: fuzz/coverage.sh [TARGET...]
#
# Needs clang and llvm (llvm-profdata, llvm-cov). COVERAGE_BUILD names another build folder, SEEDS another folder of
# seeds, and DETAIL=1 lists the files.
set -eu
cd "$(dirname "$0")/.."
targets=${*:-$(cd fuzz && ls -d seeds/*/ | sed 's|seeds/\(.*\)/|\1|')}
build=${COVERAGE_BUILD:-build/fuzz-coverage}
seeds=${SEEDS:-fuzz/seeds}
tool() {
    command -v "$1" || ls /usr/bin/"$1"-[0-9]* 2>/dev/null | grep . | tail -1 | grep . ||
        { echo "$1 is missing: apt-get install llvm" >&2; exit 1; }
}
profdata=$(tool llvm-profdata)
cov=$(tool llvm-cov)

# What a target is aimed at. Left out are debug files and times, which nothing asks for here, memory for files of many
# megabytes, and what only another target or the command line calls.
sources() {
    case $1 in
        read_model)
            ls src/store/format/*.cpp src/store/format/*.h | grep -v -E 'writer|write_|sink|file_place|body_memory' ;;
        read_measured)
            ls src/store/measured/*.cpp src/store/measured/*.h ;;
        read_then_transform)
            ls src/store/transform/*.cpp src/store/transform/*.h src/store/format/*_writer.cpp \
                src/table/*.cpp src/table/*.h | grep -v -E 'table/(components|stopwatch)' ;;
        store_calls)
            ls src/store/*.cpp src/store/*.h | grep -v -E 'time_report|int_edits|lookup_front' ;;
        evaluate_expression)
            ls src/circuit/generic/expression.cpp src/circuit/generic/correction_set.cpp ;;
        build_generic)
            ls tools/kzb/generic_*.cpp tools/kzb/generic_*.h tools/kzb/build_generic*.cpp tools/kzb/build_row_grid.* \
                tools/kzb/csv_table.* | grep -v -E 'generic_(machine|simulation)|_command' ;;
        step_machine)
            ls src/models/*.cpp src/models/*.h src/circuit/*.cpp src/circuit/*.h src/interface/*.cpp \
                src/interface/*.h src/table/components.cpp src/store/lookup_front.* |
                grep -v -E '_debug|debug_file|coil_dump|message_table|interface/generic' ;;
        step_generic)
            ls src/circuit/generic/*.cpp src/circuit/generic/*.h src/interface/generic* src/store/record_list.* \
                src/store/subcategory.* | grep -v _debug ;;
    esac
}

if [ -z "${COVERAGE_BUILD:-}" ]; then
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE= -DKZB_BUILD_BENCH=OFF -DCMAKE_C_COMPILER=clang \
        -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS='-fprofile-instr-generate -fcoverage-mapping'
fi
for target in $targets; do
    cmake --build "$build" --target "fuzz_$target" >/dev/null
    LLVM_PROFILE_FILE="$build/$target.profraw" "$build/fuzz_$target" "$seeds/$target" >/dev/null 2>&1
    "$profdata" merge -sparse "$build/$target.profraw" -o "$build/$target.profdata"
    # shellcheck disable=SC2046
    "$cov" report "$build/fuzz_$target" -instr-profile="$build/$target.profdata" $(sources "$target") \
        >"$build/$target.coverage"
    [ -z "${DETAIL:-}" ] || cat "$build/$target.coverage"
    awk -v target="$target" '$1 == "TOTAL" { printf "%-20s %5d of %5d lines, %s\n", target, $8 - $9, $8, $10 }' \
        "$build/$target.coverage"
done
