#!/usr/bin/env bash
# A project of C alone takes Tarvex in by add_subdirectory, with no build type and static libraries only; what it then
# installs serves find_package and pkg-config, and no shared library is needed anywhere.
#   subproject.sh SOURCE BUILD
set -euo pipefail
use() { # folder, options
    local folder=$1
    shift
    cmake -S "$SOURCE/tests/install" -B "$folder" -G Ninja -DCONSUMER_LANGUAGES=C "$@"
    cmake --build "$folder"
    ctest --test-dir "$folder" --output-on-failure
    if objdump -p "$folder/bakery_tarvex" | grep libtarvex; then
        echo "tarvex::tarvex is not static"
        exit 1
    fi
}
SOURCE=$1
rm -rf "$2/prefix"
use "$2/build" -DTARVEX_SOURCE="$SOURCE" -DBUILD_SHARED_LIBS=OFF -DTARVEX_INSTALL=ON
cmake --install "$2/build" --prefix "$2/prefix"
[ -z "$(find "$2" -name 'libtarvex.so*')" ]
use "$2/found" -DCMAKE_PREFIX_PATH="$2/prefix"
if command -v pkg-config >/dev/null; then
    PKG_CONFIG_PATH=$(dirname "$(find "$2/prefix" -name tarvex.pc)")
    export PKG_CONFIG_PATH
    cc "$SOURCE/examples/bakery.c" -o "$2/by_pkg_config" $(pkg-config --cflags --libs tarvex)
    "$2/by_pkg_config" | grep -q 'profit 852.73'
fi
