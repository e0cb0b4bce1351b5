#!/usr/bin/env bash
# Completion for bash offers options, parameters, words for values, and files.
#   completion.sh SOURCE COMMAND
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
ln -s "$2" "$folder/tarvex"
PATH=$folder:$PATH
cd "$folder"
touch plan.mps plan.lp
compopt() { :; } # works inside a completion only
source "$1/cli/completion/tarvex.bash"

offers() { # the words typed so far, the last one unfinished; what has to be offered, and nothing else
    COMP_WORDS=(tarvex $1)
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _tarvex
    local offered
    offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort | xargs)
    [ "$offered" = "$2" ] && return
    echo "'tarvex $1' offers '$offered' instead of '$2'"
    exit 1
}
offers "--solution-f" "--solution-file"
offers "--time" "--time-limit"
offers "--mip-gap-" "--mip-gap-abs"
offers "--lp" "--lp-method"
offers "--method p" "primal"
offers "--presolve a" "aggressive auto"
offers "LPMethod = b" "barrier"
offers "Presolve =" "aggressive auto conservative off"
offers "Tim" "TimeLimit="
offers "--quiet plan.m" "plan.mps"
offers "--start pl" "plan.lp plan.mps"
offers "--format m" "mps"
offers "--attributes IISC" "IISConstr"
