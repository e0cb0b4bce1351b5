#!/usr/bin/env bash
# The folders of the library stand in layers, and an arrow points down only: by the includes of every file, and by the
# symbols that its object file takes from others. A folder of the same layer counts as up. From another folder only its
# public headers are included.
#   arrows.sh SOURCE OBJECTS     OBJECTS: the folder that holds src/...cpp.o
set -euo pipefail
cd "$1"
objects=$2
layers='runtime
env lu
body
domain
simplex presolve files
barrier
lp
cuts heur
mip
model
attributes analysis
api'
# A folder, and its headers for other folders; each is named in the README of the folder.
public='runtime *
env env callback limits
lu lufact
body body build row_kind signs row_activity quality certificate double_double
domain domain propagation_rows clique_table implication_log bounds
simplex simplex resolve
presolve presolve dualise
files files draft
lp lp
heur heur
mip mip
model model solution attribute_cache pending warm_start
attributes sensitivity'
status=0

declare -A rank public_of
height=0
while read -r line; do
    height=$((height + 1))
    for name in $line; do rank[$name]=$height; done
done <<<"$layers"
for folder in src/*/; do
    [ -n "${rank[$(basename "$folder")]:-}" ] || { echo "$folder is in no layer"; exit 1; }
done
while read -r folder names; do
    public_of[$folder]=" $names "
    [ "$names" = '*' ] && continue
    for name in $names; do
        grep -qF "\`$name.h\`" "src/$folder/README.md" ||
            { echo "src/$folder/README.md does not name $name.h as public"; status=1; }
    done
done <<<"$public"

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

# Own headers are included as "folder/file.h" and in no other way; no file of code is included.
includes=$(grep -rnE '^[[:space:]]*#[[:space:]]*include' src)
rooms=$(IFS='|'; echo "${!rank[*]}")
odd=$(grep -E "\.\./|[<\"](src/)?($rooms)/|\.cpp[>\"]" <<<"$includes" | grep -vE ':#include "[a-z_]+/[a-z0-9_/]+\.h"$' || true)
[ -z "$odd" ] || { echo "not of the form #include \"folder/file.h\":"; echo "$odd"; status=1; }
sed -nE 's,^src/([a-z_]+)/([^:]*):([0-9]+):#include "([a-z_]+)/(.*)",\1 \4 \2:\3 includes \4/\5,p' <<<"$includes" |
    judge || status=1
while read -r from to header where; do
    [[ $from = "$to" || ${public_of[$to]:-} = ' * ' || ${public_of[$to]:-} = *" $header "* ]] && continue
    echo "src/$from/$where includes $to/$header.h, which is not for other folders"
    status=1
done < <(sed -nE 's,^src/([a-z_]+)/([^:]*:[0-9]+):#include "([a-z_]+)/(.*)\.h",\1 \3 \4 \2,p' <<<"$includes")
# The command uses the public header, the opener of files, and the texts of parameters and attributes, which include
# nothing.
odd=$(grep -rnE "#[[:space:]]*include[[:space:]]*[<\"](\.\./|src/|($rooms)/)" cli |
    grep -vE '"(runtime/file|env/parameter_texts|attributes/attribute_texts)\.h"' || true)
[ -z "$odd" ] || { echo "the command includes:"; echo "$odd"; status=1; }

# A symbol belongs to the lowest folder that defines it: templates and inline functions have copies above.
[ -d "$objects/src" ] || { echo "no objects in $objects: build the library first"; exit 1; }
symbols=$(mktemp)
trap 'rm -f "$symbols"' EXIT
missing=$(find src -name '*.cpp' | while read -r source; do
    [ -f "$objects/$source.o" ] || echo "no object of $source"
done)
[ -z "$missing" ] || { echo "$missing"; exit 1; }
while read -r source; do # objects of files that are gone may still lie there
    folder=${source#src/}
    nm -g -P "$objects/$source.o" |
        awk -v f="${folder%%/*}" -v r="${rank[${folder%%/*}]}" '{ print $2 ~ /^[Uwv]$/ ? "uses" : "has", r, f, $1 }'
done < <(find src -name '*.cpp') | sort -u >"$symbols"
sort -k1,1 -k2,2n "$symbols" |
    awk '$1 == "has" && !($4 in home) { home[$4] = $3 }
         $1 == "uses" && $4 in home { print $3, home[$4], "uses " $4 }' | c++filt | judge || status=1
exit $status
