#!/usr/bin/env bash
# The shared library exports exactly the functions that the header declares, and depends on the C library alone. The
# library throws nothing, calls nothing that throws, and allocates through the C library only: of the C++ run-time
# library it needs number conversion and no more.
#   symbols.sh STATIC-LIBRARY SHARED-LIBRARY HEADER
set -euo pipefail
declared=$(cpp -P "$3" | grep -oE '\bTVX[A-Za-z0-9_]+ *\(' | tr -d ' (' | sort)
exported=$(nm -D --defined-only "$2" | awk '{print $3}' | sort)
[ -n "$declared" ]
diff <(echo "$declared") <(echo "$exported") # < declared only, > exported only
allowed='^_ZSt(10from_chars|8to_chars)'
wanted=$(nm -u "$1" 2>/dev/null | awk '$1 == "U" && $2 ~ /^(_Z|__cxa)/ {print $2}' | sort -u)
defined=$(nm --defined-only "$1" 2>/dev/null | awk 'NF == 3 {print $3}' | sort -u)
runtime=$(comm -23 <(echo "$wanted") <(echo "$defined") | grep -Ev "$allowed" || true)
[ -z "$runtime" ] || echo "needs of the C++ run-time library:" $(c++filt <<<"$runtime")
libraries=$(objdump -p "$2" | awk '$1 == "NEEDED" {print $2}' | grep -Ev '^(libc|libm|libpthread|ld-linux.*)\.so' || true)
[ -z "$libraries" ] || echo "depends on:" $libraries
[ -z "$runtime$libraries" ]
