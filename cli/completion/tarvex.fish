# Completion of tarvex for fish: options, parameters and attributes as the installed command tells them, then files.
complete -c tarvex -a "(tarvex --parameters 2>/dev/null | awk 'NR > 1 {print \$1 \"=\t\" \$2}')"
complete -c tarvex -a "(tarvex --help 2>/dev/null | string match -ar -- '--[a-z]+(?:-[a-z]+)*' | sort -u)"
complete -c tarvex -n 'contains -- --attributes (commandline -opc)' -a "(tarvex --attributes 2>/dev/null | awk 'NR > 1 {print \$1 \"\t\" \$2}')"
