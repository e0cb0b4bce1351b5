#!/usr/bin/env bash
# bench/work writes its table, is content with the same build, and names what grew by more than 10 % or ended otherwise.
#   work_table.sh SOURCE
set -euo pipefail
command -v python3 >/dev/null || exit 77
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# A probe that costs what the file "cost" says, and a model to be its argument.
cat >probe <<'END'
#!/bin/sh
case "$*" in *LPMethod=1*) . ./dual ;; *LPMethod=0*) . ./primal ;; *) . ./presolved ;; esac
echo "the log"
echo "{\"status\": \"$status\", \"iterations\": $iterations, \"factorizations\": 50, \"work\": $work}"
END
chmod +x probe
printf 'NAME m\nROWS\n N o\nENDATA\n' >m.mps
cost() { echo "status=$2 iterations=$3 work=$4" >"$1"; }
work() { "$SOURCE/bench/work" --probe ./probe --table table.csv --jobs 1 "$@" m.mps 2>/dev/null; }
expect() { # exit code, text that has to be there
    local code=0 said
    said=$(work) || code=$?
    if [ $code != "$1" ] || ! grep -qF "$2" <<<"$said"; then
        printf 'expected exit code %s and "%s", got %s and:\n%s\n' "$1" "$2" "$code" "$said"
        exit 1
    fi
}
SOURCE=$1

cost primal optimal 1000 50000
cost dual optimal 2000 90000
cost presolved optimal 500 20000
expect 1 "3 of 3 runs are not in the table"
work --update >/dev/null
expect 0 "work: geometric mean 1.000 of the table's over 3 runs; 0 fell"
cost dual optimal 2190 98000 # less than 10 %
expect 0 "work: geometric mean"
cost dual optimal 2000 99100
expect 1 "m dual: work 90000 -> 99100 (+10 %)"
cost dual optimal 2300 50000 # one count up, another down
expect 1 "m dual: iterations 2000 -> 2300 (+15 %)"
cost dual limit 2000 90000
expect 1 "m dual: was optimal, is limit"
cost dual optimal 1000 45000
expect 0 "1 fell by more than 10 %"
work --update >/dev/null
cost dual optimal 2000 90000
expect 1 "m dual: iterations 1000 -> 2000 (+100 %)"
