#!/usr/bin/env bash
# Other projects find the installed package, build the examples with both libraries and run them: one of C and C++, one
# of C alone, and an example compiled with what pkg-config says.
#   consumer.sh SOURCE PREFIX BUILD
set -euo pipefail
for languages in "C;CXX" C; do
    build=$3/${languages/;/_}
    cmake -S "$1/tests/install" -B "$build" -G Ninja -DCMAKE_PREFIX_PATH="$2" -DCONSUMER_LANGUAGES="$languages"
    cmake --build "$build"
    ctest --test-dir "$build" --output-on-failure
done
command -v pkg-config >/dev/null || exit 0
PKG_CONFIG_PATH=$(dirname "$(find "$2" -name tarvex.pc)")
export PKG_CONFIG_PATH
libdir=$(pkg-config --variable=libdir tarvex)
cc "$1/examples/bakery.c" -o "$3/shared" $(pkg-config --cflags --libs tarvex)
LD_LIBRARY_PATH=$libdir "$3/shared" | grep -q 'profit 852.73'
cc "$1/examples/bakery.c" -o "$3/static" $(pkg-config --cflags tarvex) "$libdir/libtarvex.a" \
    $(pkg-config --static --libs-only-l tarvex | sed 's/-ltarvex//')
"$3/static" | grep -q 'profit 852.73'
