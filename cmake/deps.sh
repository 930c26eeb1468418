#!/bin/sh
# Installs the Debian packages that the project needs and that are missing. Asks for nothing where all is there.
set -eu

packages="g++ clang llvm libclang-rt-14-dev clang-format clang-tidy cmake ninja-build git make python3 pkg-config
  libboost-dev libboost-locale-dev libmuparser-dev libcli11-dev libfmt-dev libtomlplusplus-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libbenchmark-dev gnuplot-nox gcovr locales"

missing=""
for package in $packages; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
[ "$(id -u)" -eq 0 ] || as_root="sudo"
echo "installing:$missing"
$as_root apt-get update -qq
# shellcheck disable=SC2086
DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends $missing
