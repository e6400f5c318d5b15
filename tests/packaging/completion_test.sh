#!/bin/bash
# What bash, zsh and fish complete for lltwrapper and lltcov, each as its own machinery gives it.
# shellcheck disable=SC2016,SC2317 # scripts for the shells; functions by their names
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
completions=$root/packaging/completions
printf '#!/bin/sh\n' >wrapped_tool && chmod +x wrapped_tool
PATH=$work:$PATH

in_bash() { # in_bash WORD...: candidates for the last word
    bash --norc -c '
        [ ! -r /usr/share/bash-completion/bash_completion ] || . /usr/share/bash-completion/bash_completion
        _wrapped() { COMPREPLY=(--of-the-tool); }
        complete -F _wrapped wrapped_tool
        . "$1" && shift
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE="$*" COMP_POINT=${#COMP_LINE} COMP_TYPE=9 COMP_KEY=9
        "_$1" "$1" "${!#}" "${COMP_WORDS[COMP_CWORD - 1]}"
        printf "%s\n" "${COMPREPLY[@]% }"' 2>/dev/null bash "$completions/$1.bash" "$@"
}
in_fish() {
    fish --no-config -c 'complete -c wrapped_tool -f -a --of-the-tool
        source $argv[1]; complete -C "$argv[2..-1]"' "$completions/$1.fish" "$@" | cut -f 1
}
cat >init.zsh <<Z
PROMPT= fpath=("$completions" \$fpath)
autoload -U compinit && compinit -u -D
_wrapped() { compadd -- --of-the-tool }; compdef _wrapped wrapped_tool
bindkey '^I' complete-word
comppostfuncs=(exit)
compadd() {
    [[ \${@[1,(i)(-|--)]} != *-(O|A|D)\ * ]] || { builtin compadd "\$@"; return }
    local -a hits
    builtin compadd -A hits "\$@"
    print -rl -- C:\$^hits
    builtin compadd "\$@"
}
print READY
Z
in_zsh() { # by its line editor, in a terminal of its own
    timeout 60 zsh -f -c 'zmodload zsh/zpty && zpty shell zsh -f -i && zpty -w shell "source ${(q)1}/init.zsh"
        while zpty -r shell line; do [[ $line = READY* ]] && break; done
        zpty -w -n shell "$2"
        while zpty -r shell line; do print -r -- "$line"; done' zsh "$work" "$*"$'\t' 2>/dev/null |
        tr -d '\r' | sed -n 's/.*C:\(.*\)/\1/p'
}

for shell in bash zsh fish; do
    command -v $shell >/dev/null || { echo "not tried: $shell is missing" && continue; }
    [ $shell != bash ] || [ -r /usr/share/bash-completion/bash_completion ] ||
        { echo 'not tried: bash-completion is missing' && continue; }
    while IFS='|' read -r words expected; do
        # shellcheck disable=SC2086 # words
        got=$("in_$shell" $words)
        # All that is expected is there; what begins with "!" is not.
        for word in $expected; do
            case $word in
                !*) expect "$shell: $words gives no ${word#!}" '' "$(grep -x -e "${word#!}" <<<"$got")" ;;
                *) expect "$shell: $words gives $word" "$word" "$(grep -x -m 1 -e "$word" <<<"$got")" ;;
            esac
        done
    done <<'END'
lltcov st|status !report
lltcov help do|doctor
lltcov export --c|--cobertura !--lcov
lltcov export --fail|--fail-under-line --fail-under-branch
lltcov clean --|--old --gone --all --dry-run !--include
lltcov run -- wrapped_t|wrapped_tool
lltcov run -- wrapped_tool --o|--of-the-tool !-o
lltwrapper -art|-artool
lltwrapper wrapped_t|wrapped_tool
lltwrapper wrapped_tool --o|--of-the-tool
lltwrapper -artool ar -arsuffix .a wrapped_tool --o|--of-the-tool !-objsuffix
END
done
[ $cases != 0 ] || skip 'no shell with completion'
finish
