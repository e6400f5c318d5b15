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
            [ -d \"\$lltcovRootpath\" ] && [ -d \${qmr_current_prj_path%/*.prj}/LLTTEMP/codemeasure/obj/after ] || echo missing
            echo \$qmr_current_prj_path \$lltcovRootpath \$TimerPolicy
            ls -A $work/p; cat $work/p/.lltcov/.gitignore" 2>&1 | tr '\n' ' ')
        set -f
        expect "$shell: $before" "$(eval "echo $expected") " "$actual"
        set +f
    done <<'ROWS'
:|$work/p/.lltcov $work/p/.lltcov/llt_result 0 .lltcov sub *
LLT_PROJECT=../p/x.prj|$work/p/../p/.lltcov/x.prj $work/p/../p/.lltcov/llt_result 0 .lltcov sub *
LLT_PROJECT=$PWD/; export qmr_current_prj_path=/old/.lltcov lltcovRootpath=/old/.lltcov/llt_result|$work/p/.lltcov $work/p/.lltcov/llt_result 0 .lltcov sub *
export TimerPolicy=1 lltcovRootpath=$PWD/r|$work/p/.lltcov $work/p/r 1 .lltcov r sub *
mkdir .lltcov; echo mine >.lltcov/.gitignore; export qmr_current_prj_path=$PWD|$work/p $work/p/llt_result 0 .lltcov LLTTEMP llt_result sub mine
ROWS
done

# What is said in a second directory: DIRECTORY | BEFORE | project | lines on standard error
mkdir -p "$work/A/sub" "$work/B"
for shell in sh bash; do
    while IFS='|' read -r directory before project lines; do
        before=${before//INIT/\'$init\'}
        actual=$(cd "$work/A" && env -i PATH="$PATH" $shell -euc ". '$init'; cd '$directory'; $before . '$init'
            echo \${qmr_current_prj_path#'$work/'} \${lltcovRootpath#'$work/'}" 2>"$work/messages")
        expect "$shell: $before in $directory" "$project/.lltcov $project/.lltcov/llt_result, $lines" \
            "$actual, $(grep -c "the project stays '.*/$project/.lltcov'.*LLT_PROJECT=\$PWD" "$work/messages")"
    done <<'ROWS'
.||A|0
sub||A|0
../B||A|1
../B|LLT_PROJECT=$PWD;|B|0
../B|LLT_PROJECT=$PWD; . INIT; cd ../A; LLT_PROJECT=$PWD;|A|0
../B|LLT_PROJECT=$PWD; . INIT; cd ../A;|B|1
ROWS
done
finish
