#!/usr/bin/env bash
# Configuring goes on without what a part needs, says so, and leaves the part out; asked for, the part must be there.
#   parts.sh SOURCE
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
lacking="-DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON"
said=$(cmake -S "$1" -B "$folder/without" $lacking 2>&1)
for part in "without the command line: CLI11" "without the tests: GoogleTest"; do
    grep -qF -- "-- tarvex: $part" <<<"$said" || { echo "not said: $part"; exit 1; }
done
for part in TARVEX_CLI TARVEX_TESTS; do
    if cmake -S "$1" -B "$folder/asked_$part" $lacking -D$part=ON >"$folder/log" 2>&1; then
        echo "$part=ON, but nothing is amiss"
        exit 1
    fi
    grep -q "$part=ON" "$folder/log"
done
