#!/usr/bin/env bash
# The public header compiles alone, twice included, as C99 and C++98 to C++20, without a warning.
#   header_alone.sh gcc|clang      77 when the compiler is not installed
set -euo pipefail
header=$(cd "$(dirname "$0")/../.." && pwd)/include/tarvex.h
case $1 in
gcc) cc=gcc cxx=g++ ;;
clang) cc=$(command -v clang-14 || echo clang) cxx=$(command -v clang++-14 || echo clang++) ;;
esac
if ! command -v "$cc" >/dev/null; then
    echo "skipped: $cc is not installed"
    exit 77
fi
strict="-fsyntax-only -pedantic -Wall -Wextra -Wshadow -Wconversion -Werror"
source=$(printf '#include "%s"\n#include "%s"\nextern int unused;\n' "$header" "$header")
for standard in c99 c11; do
    "$cc" -x c -std=$standard $strict -Wstrict-prototypes - <<<"$source"
done
for standard in c++98 c++11 c++20; do
    "$cxx" -x c++ -std=$standard $strict - <<<"$source"
done
