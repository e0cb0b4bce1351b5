#!/usr/bin/env bash
# The shared library exports exactly the functions that the header declares.
#   exports.sh LIBRARY HEADER
set -euo pipefail
declared=$(cpp -P "$2" | grep -oE '\bTVX[A-Za-z0-9_]+ *\(' | tr -d ' (' | sort)
exported=$(nm -D --defined-only "$1" | awk '{print $3}' | sort)
[ -n "$declared" ]
missing=$(comm -23 <(echo "$declared") <(echo "$exported"))
extra=$(comm -13 <(echo "$declared") <(echo "$exported"))
[ -z "$missing" ] || echo "declared but not exported:" $missing
[ -z "$extra" ] || echo "exported but not declared:" $extra
[ -z "$missing$extra" ]
