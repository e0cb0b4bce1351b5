#!/usr/bin/env bash
# The C example in the README is the one in examples/, which is built and run.
#   readme_example.sh SOURCE
set -euo pipefail
diff <(sed -n '/^```c$/,/^```$/p' "$1/README.md" | sed '1d;$d') "$1/examples/bakery.c"
