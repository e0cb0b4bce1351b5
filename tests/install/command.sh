#!/usr/bin/env bash
# The installed command finds its library, solves the example, and has a manual page that formats without warnings.
#   command.sh SOURCE PREFIX
set -euo pipefail
"$2/bin/tarvex" --version | grep -q '^Tarvex 3'
"$2/bin/tarvex" --solution "$1/examples/bakery.mps" | grep -q '^cake 5.8181818'
page=$2/share/man/man1/tarvex.1
[ -f "$page" ]
for file in docs/parameters.md examples/transport.cpp; do # README links to both
    [ -f "$2/share/doc/tarvex/$file" ]
done
[ -f "$2/share/bash-completion/completions/tarvex" ]
if command -v man >/dev/null; then
    warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ= man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
    [ -z "$warnings" ] || { echo "$warnings"; exit 1; }
fi
