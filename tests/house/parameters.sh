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

# Where the value of a parameter is read. The presets of MIPFocus hand values on to a search that is not there, and a line
# that only prints a value is no use of it.
reads=$(grep -rhoE --include=*.cpp --include=*.h --exclude=mip_focus.cpp '^.*([eE]nv->|TVXenv::|TVXenv, )[A-Z]\w+' src |
    grep -vE '^ *//|TVXmsg\(' | grep -oE '([eE]nv->|TVXenv::|TVXenv, )[A-Z]\w+' | sed -E 's/.*[^A-Za-z0-9_]//' | sort -u)
while read -r name use; do
    found=unused
    grep -qxF "$name" <<<"$reads" && found=used
    [ "$use" = "$found" ] || complain "$name is $found, and parameter_texts.h calls it $use"
done < <("$2" --uses)
exit $status
