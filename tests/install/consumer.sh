#!/usr/bin/env bash
# Other projects find the installed package, build the examples with both libraries and run them: one of C and C++, one
# of C alone.
#   consumer.sh SOURCE PREFIX BUILD
set -euo pipefail
for languages in "C;CXX" C; do
    build=$3/${languages/;/_}
    cmake -S "$1/tests/install" -B "$build" -G Ninja -DCMAKE_PREFIX_PATH="$2" -DCONSUMER_LANGUAGES="$languages"
    cmake --build "$build"
    ctest --test-dir "$build" --output-on-failure
done
