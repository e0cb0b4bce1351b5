#!/usr/bin/env bash
# An example is compiled with what pkg-config says, against the shared and the static library.
#   pkgconfig.sh SOURCE PREFIX FOLDER
set -euo pipefail
if ! command -v pkg-config >/dev/null; then
    echo "skipped: pkg-config is not installed"
    exit 77
fi
PKG_CONFIG_PATH=$(dirname "$(find "$2" -name tarvex.pc)")
export PKG_CONFIG_PATH
libdir=$(pkg-config --variable=libdir tarvex)
mkdir -p "$3"
cc "$1/examples/bakery.c" -o "$3/shared" $(pkg-config --cflags --libs tarvex)
LD_LIBRARY_PATH=$libdir "$3/shared" | grep -q 'profit 852.73'
cc "$1/examples/bakery.c" -o "$3/static" $(pkg-config --cflags tarvex) "$libdir/libtarvex.a" \
    $(pkg-config --static --libs-only-l tarvex | sed 's/-ltarvex//')
"$3/static" | grep -q 'profit 852.73'
