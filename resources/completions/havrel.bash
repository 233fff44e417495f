# SPDX-License-Identifier: MIT
# Completion for havrel(1). The program's own help says what there is, so that this never falls behind it.

_havrel_words() {
    local words=() word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word == -* ]] || words+=("$word")
    done
    printf '%s\n' "${words[@]:0:2}"
}

_havrel() {
    local current=${COMP_WORDS[COMP_CWORD]} words help candidates
    mapfile -t words < <(_havrel_words)
    [[ -n ${words[0]} ]] || words=()
    if [[ ${words[0]} == integrations && $current != -* ]]; then
        candidates="add remove"
        [[ -z ${words[1]} ]] || candidates=$(havrel integrations --json 2>/dev/null | sed -n 's/^{"name":"\([^"]*\)".*/\1/p')
    else
        help=$(havrel "${words[@]}" --help 2>/dev/null)
        candidates=$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p' <<<"$help")
        [[ $current != -* ]] || candidates=$(grep -oE -- '^  (-[a-zA-Z0-9],)?--[a-z-]+' <<<"$help" | sed 's/.*--/--/')
    fi
    if [[ -n $candidates ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$current")
    else
        compopt -o default
        COMPREPLY=()
    fi
}

complete -F _havrel havrel
