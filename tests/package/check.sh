#!/bin/sh
# Installs the build tree below a fresh folder and builds the consumer against it, both ways, and runs it.
# check.sh BUILD_TREE CONSUMER WORK C_COMPILER CXX_COMPILER [FLAGS...]
set -eu
build=$1 consumer=$2 work=$3 c_compiler=$4 cxx_compiler=$5
shift 5

rm -rf "$work"
cmake --install "$build" --prefix "$work/installed" >/dev/null

cmake -S "$consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/installed" -DCMAKE_C_COMPILER="$c_compiler" \
    -DCMAKE_CXX_COMPILER="$cxx_compiler" -DCMAKE_C_FLAGS="$*" -DCMAKE_CXX_FLAGS="$*" >/dev/null
cmake --build "$work/consumer" >/dev/null
"$work/consumer/consumer_c"
"$work/consumer/consumer_cxx"

pc=$(find "$work/installed" -name KZBCalculator.pc)
library=$(dirname "$(dirname "$pc")")
# The prefix is told to pkg-config because this tree was not installed below the configured one.
flags=$(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --define-variable=libdir="$library" \
    --define-variable=includedir="$work/installed/include" --cflags --libs KZBCalculator)
# shellcheck disable=SC2086
"$c_compiler" "$@" -o "$work/by_pkg_config" "$consumer/main.c" $flags -Wl,-rpath,"$library"
"$work/by_pkg_config"
test -x "$work/installed/bin/kzb"
"$work/installed/bin/kzb" --version
