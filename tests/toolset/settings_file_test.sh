#!/bin/bash
# The settings file in every shell that is here, also in its strict mode and sourced twice.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
init=$root/toolset/TUSK_INIT.SH
for shell in sh dash bash ksh mksh zsh 'zsh --emulate sh' 'busybox sh'; do
    command -v "${shell%% *}" > /dev/null || continue
    while IFS='|' read -r before expected; do
        rm -rf "$work/p"
        mkdir -p "$work/p/sub"
        # shellcheck disable=SC2086
        actual=$(cd "$work/p" && env -i PATH="$PATH" $shell -euc "set -- one 'two three'
            $before
            settings() { env | sort | sed '/^PWD=/d; /^OLDPWD=/d; /^_=/d'; }
            . '$init'; first=\$(settings); cd sub; . '$init'
            [ \"\$first\" = \"\$(settings)\" ] || echo changed
            [ \"\$*\" = 'one two three' ] || echo arguments
            (. '$init'; : > on)
            [ -f on ] || echo a subshell ended
            [ -d \"\$lltcovRootpath\" ] && [ -d $work/p/LLTTEMP/codemeasure/obj/after ] || echo missing
            echo \$qmr_current_prj_path \$lltcovRootpath \$TimerPolicy" 2>&1)
        expect "$shell: $before" "$(eval "echo $expected")" "$actual"
    done <<'ROWS'
:|$work/p $work/p/llt_result 0
LLT_PROJECT=../p/x.prj|$work/p/../p/x.prj $work/p/../p/llt_result 0
LLT_PROJECT=$PWD; export qmr_current_prj_path=/old lltcovRootpath=/old/llt_result|$work/p $work/p/llt_result 0
export TimerPolicy=1 lltcovRootpath=$PWD/r|$work/p $work/p/r 1
ROWS
done
finish
