# Completion of tarvex for bash: options, parameters and their words, attributes as the installed command tells them, then files.

# Options of the command, and each parameter as an option.
_tarvex_options() {
    {
        tarvex --help 2>/dev/null | grep -oE -- '--[a-z]+(-[a-z]+)*'
        _tarvex_names parameters | sed -E 's/([a-z])([A-Z])/\1-\2/g; s/([A-Z])([A-Z][a-z])/\1-\2/g; s/.*/--\L&/'
    } | sort -u
}

# All "parameters", or all "attributes".
_tarvex_names() {
    tarvex "--$1" 2>/dev/null | awk 'NR > 1 {print $1}'
}

# Words for the values of a parameter: "  Words: auto (-1), off (0)".
_tarvex_words() {
    tarvex --parameters "$1" 2>/dev/null | sed -n '/^  Words: /,$p' |
        grep -oE '[a-z]+ \(' | tr -d ' ('
}

_tarvex_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_tarvex() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} name=
    COMPREPLY=()
    # "=" is a word of its own to bash: Presolve = off
    if [ "$word" = = ]; then
        name=$before word=
    elif [ "$before" = = ]; then
        name=${COMP_WORDS[COMP_CWORD - 2]}
    elif [[ $before == --* ]]; then
        name=$before
    fi
    case $name in
    --attributes) mapfile -t COMPREPLY < <(compgen -W "$(_tarvex_names attributes)" -- "$word"); return ;;
    --format) mapfile -t COMPREPLY < <(compgen -W "mps lp" -- "$word"); return ;;
    --start | --params | --json | --solution | --solution-file | --log-file | --result-file | LogFile | ResultFile)
        [ "$before" = --solution ] || { _tarvex_files "$word"; return; } ;;
    --method) name=LPMethod ;;
    --*) name=${name//-/} ;;
    esac
    if [ -n "$name" ]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_tarvex_words "$name")" -- "$word")
        [ ${#COMPREPLY[@]} -eq 0 ] || return 0
    fi
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_tarvex_options)" -- "$word")
        return
    fi
    if [[ $word == [A-Z]* ]]; then
        mapfile -t COMPREPLY < <(compgen -S = -W "$(_tarvex_names parameters)" -- "$word"; compgen -f -- "$word")
        compopt -o nospace
    else
        _tarvex_files "$word"
    fi
}
complete -F _tarvex tarvex
