#!/bin/sh
# Compiles each public header alone. headers.sh STANDARD C_COMPILER CXX_COMPILER INCLUDE_FOLDER
set -eu
standard=$1
compiler=$2
language=c
case $standard in c++*) compiler=$3 language=c++ ;; esac
for header in "$4"/KZBCalculator/*.h; do
    "$compiler" -x "$language" -std="$standard" -Wall -Wextra -pedantic -Werror -fsyntax-only -I"$4" "$header"
done
