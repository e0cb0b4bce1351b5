#!/usr/bin/env bash
# Every source file that a README or a page of docs/ names is there, and every folder of the library has a README. The C
# example in the README is the one in examples/, which is built and run.
#   pages.sh SOURCE
set -euo pipefail
cd "$1"
status=0
complain() { echo "$*"; status=1; }

all=$(find src cli tests bench examples include -type f -printf '%f\n' | sort -u)
for page in README.md docs/*.md $(find src cli tests bench examples -name README.md); do
    for name in $(grep -oE '`[^` ]*\.(cpp|h|c|py|sh|map)`' "$page" | tr -d '`' | sed 's,.*/,,' | sort -u); do
        case $name in *[*A-Z]* | .*) continue ;; esac # a pattern, or the second half of a pair
        grep -qxF "$name" <<<"$all" || complain "$page names $name, which is not there"
    done
done
for folder in src/*/ src/presolve/reduce cli; do
    [ -f "$folder/README.md" ] || complain "$folder has no README.md"
done
diff <(sed -n '/^```c$/,/^```$/p' README.md | sed '1d;$d') examples/bakery.c || status=1
exit $status
