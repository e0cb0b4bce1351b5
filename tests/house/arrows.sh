#!/usr/bin/env bash
# The folders of the library stand in layers, and an arrow points down only: by the includes of every file, and by the
# symbols that its object file takes from others. A folder of the same layer counts as up.
#   arrows.sh SOURCE OBJECTS     OBJECTS: the folder that holds src/...cpp.o
set -euo pipefail
cd "$1"
objects=$2
layers='runtime
env lu
body
simplex presolve files
barrier
lp
cuts heur
mip
model
attributes analysis
api'
status=0

rank_of() { # of a folder; empty for one that is in no layer
    local rank=0 line name
    while read -r line; do
        rank=$((rank + 1))
        for name in $line; do [ "$name" != "$1" ] || echo $rank; done
    done <<<"$layers"
}
declare -A rank
for folder in src/*/; do
    name=$(basename "$folder")
    rank[$name]=$(rank_of "$name")
    [ -n "${rank[$name]}" ] || { echo "folder $name is in no layer"; exit 1; }
done

# Lines "from to what" on standard input: every arrow that does not point down.
judge() {
    local from to what wrong=0
    while read -r from to what; do
        [ "$from" = "$to" ] || [ "${rank[$from]}" -gt "${rank[$to]:-99}" ] && continue
        echo "$from -> $to: $what"
        wrong=1
    done
    return $wrong
}

grep -rnoE '#include "[a-z_]+/[a-z_/]+\.h"' src |
    sed -E 's,^src/([a-z_]+)/([^:]*):([0-9]+):#include "([a-z_]+)/(.*)",\1 \4 \2:\3 includes \4/\5,' | sort |
    judge || status=1

if [ -d "$objects/src" ]; then
    defined=$(mktemp) wanted=$(mktemp)
    trap 'rm -f "$defined" "$wanted"' EXIT
    for folder in "${!rank[@]}"; do # objects of files that are gone may still lie there
        files=$(find "src/$folder" -name '*.cpp' -exec sh -c '[ -f "$0/$1.o" ] && echo "$0/$1.o"' "$objects" {} \;)
        [ -n "$files" ] || continue
        xargs nm -C --defined-only -g -f posix <<<"$files" |
            awk -v f="$folder" -F ' [TDBRV] ' 'NF > 1 { print $1 "\t" f }' >>"$defined"
        xargs nm -C -u -f posix <<<"$files" |
            awk -v f="$folder" -F ' U' 'NF > 1 { print $1 "\t" f }' >>"$wanted"
    done
    awk -F '\t' 'NR == FNR { home[$1] = $2; next } $1 in home { print $2, home[$1], "uses " $1 }' \
        "$defined" <(sort -u "$wanted") | judge || status=1
fi
exit $status
