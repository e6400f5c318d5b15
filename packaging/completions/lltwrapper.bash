# shellcheck shell=bash
# Completion of lltwrapper for bash: its own options, then those of the wrapped command.
_lltwrapper() {
    local i=1 word=${COMP_WORDS[COMP_CWORD]}
    while [[ ${COMP_WORDS[i]} = -* && $i -lt $COMP_CWORD ]]; do
        i=$((i + 2)) # each of its own has a value
    done
    if [[ $i -eq $COMP_CWORD && $word = -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W '-artool -arsuffix -objsuffix -binsuffix --help --version' -- "$word")
    elif [[ $i -gt $COMP_CWORD ]]; then
        COMPREPLY=()
    elif declare -F _comp_command_offset >/dev/null; then
        _comp_command_offset "$i"
    elif declare -F _command_offset >/dev/null; then
        _command_offset "$i"
    elif [[ $i -eq $COMP_CWORD ]]; then
        mapfile -t COMPREPLY < <(compgen -c -- "$word")
    fi
}
complete -o default -F _lltwrapper lltwrapper
