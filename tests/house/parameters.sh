#!/usr/bin/env bash
# Each parameter has one text, and "not used yet" stands with those that nothing reads.
#   parameters.sh SOURCE PROGRAM      PROGRAM: tools/parameters_page.cpp, built
set -euo pipefail
cd "$1"
status=0
complain() { echo "$*"; status=1; }

diff <("$2" --uses | cut -d' ' -f1) \
    <(grep -oE '^ +(INT|DBL|STR)\(\w+' src/env/parameter_table.h | sed 's/.*(//') ||
    complain "parameter_texts.h and parameter_table.h name different parameters"

# Where the value of a parameter is read. Presets of MIPFocus, values assigned to an inner solve and lines that only print
# a value are no use of it.
read_of='([eE]nv->|TVXenv::|TVXenv, )[A-Z]\w+'
reads=$(grep -rhE --include=*.cpp --include=*.h --exclude=mip_focus.cpp "$read_of" src | grep -vE '^ *//|TVXmsg\(' |
    sed -E 's/[eE]nv->\w+ = //g' | grep -oE "$read_of" | sed -E 's/.*[^A-Za-z0-9_]//' | sort -u)
while read -r name use; do
    found=unused
    grep -qxF "$name" <<<"$reads" && found=used
    [ "$use" = "$found" ] || complain "$name is $found, and parameter_texts.h calls it $use"
done < <("$2" --uses)
exit $status
