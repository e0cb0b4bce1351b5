#!/usr/bin/env bash
# Builds what users get and installs it below BUILD/prefix, then moves it to BUILD/moved, because an installed tree
# may be moved.
#   build.sh SOURCE BUILD [CMAKE-OPTION ...]
set -euo pipefail
source=$1 build=$2
shift 2
cmake -S "$source" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARVEX_TESTS=OFF "$@"
cmake --build "$build"
rm -rf "$build/prefix" "$build/moved"
cmake --install "$build" --prefix "$build/prefix"
mv "$build/prefix" "$build/moved"
