# shellcheck shell=bash
# Completion of lltcov for bash: subcommands and options as lltcov itself tells them, and after "--"
# those of the command there.

# _lltcov_words [COMMAND]: the subcommands, or the options of one
_lltcov_words() {
    if [[ $# = 0 ]]; then
        lltcov help | sed -n 's/^  \([a-z]*\) .*/\1/p'
        return
    fi
    { lltcov help "$1" && lltcov help; } | awk 'NR == 1 { all = /SELECTION/; print }
        /^SELECTION:/ { on = all } /^The project/ { on = 0 } on' | grep -oE -- '-(o\>|-[a-z-]*)'
}

_lltcov() {
    local i word=${COMP_WORDS[COMP_CWORD]} words=''
    for ((i = 2; i < COMP_CWORD; i++)); do
        [[ ${COMP_WORDS[i]} = -- ]] || continue
        if declare -F _comp_command_offset >/dev/null; then
            _comp_command_offset $((i + 1))
        elif declare -F _command_offset >/dev/null; then
            _command_offset $((i + 1))
        elif [[ $COMP_CWORD -eq $((i + 1)) ]]; then
            mapfile -t COMPREPLY < <(compgen -c -- "$word")
        fi
        return
    done
    case $COMP_CWORD:${COMP_WORDS[1]}:$word in
        1:*) words="$(_lltcov_words 2>/dev/null) help --version" ;;
        2:help:*) words=$(_lltcov_words 2>/dev/null) ;;
        *:-*) words=$(_lltcov_words "${COMP_WORDS[1]}" 2>/dev/null) ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _lltcov lltcov
