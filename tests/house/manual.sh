#!/usr/bin/env bash
# The manual knows every option of the command and no other, and the examples of manual and README run.
#   manual.sh SOURCE COMMAND
set -euo pipefail
source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
ln -s "$2" "$folder/tarvex"
PATH=$folder:$PATH
page=$source/docs/tarvex.1

options() { grep -oE -- '--[a-z]+(-[a-z]+)*' | sort -u; }
text=$(sed 's/\\-/-/g; s/\\fR//g' "$page")
of_help=$(tarvex --help | options)
unknown=$(comm -23 <(echo "$of_help") <(options <<<"$text"))
[ -z "$unknown" ] || { echo "not in tarvex.1:" $unknown; exit 1; }
for option in $(comm -13 <(echo "$of_help") <(options <<<"$text")); do
    name=$(tr -d - <<<"$option")
    tarvex --parameters "$name" >/dev/null || { echo "in tarvex.1, and unknown: $option"; exit 1; }
done

# Each example, in a folder with a plan.mps and an afiro.mps.
run_examples() {
    local example
    while read -r example; do
        echo "+ $example"
        (cd "$folder" && bash -e -o pipefail -c "$example") || { echo "failed: $example"; exit 1; }
    done
}
cp "$source/examples/bakery.mps" "$folder/plan.mps"
cp "$source/examples/bakery.mps" "$folder/afiro.mps"
gzip -k "$folder/plan.mps"
sed -n '/^\.SH EXAMPLES/,$p' <<<"$text" | grep -E '^(tarvex|gunzip) ' | run_examples
sed -n '/^## The command/,/^## /p' "$source/README.md" | grep -E '^    (tarvex|gunzip) ' | run_examples
