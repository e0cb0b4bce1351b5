#!/usr/bin/env bash
# Another project finds the installed package, builds the examples with it and runs them.
#   consumer.sh SOURCE PREFIX BUILD
set -euo pipefail
cmake -S "$1/tests/install" -B "$3" -G Ninja -DCMAKE_PREFIX_PATH="$2"
cmake --build "$3"
ctest --test-dir "$3" --output-on-failure
