#!/usr/bin/env bash
# A page of docs/ that is made from tables is what they give.
#   made_page.sh SOURCE PROGRAM PAGE      PROGRAM: tools/..._page.cpp, built
set -euo pipefail
"$2" | diff - "$1/$3" || { echo "$3 is not what the tables give: make docs"; exit 1; }
