#!/bin/bash
# A clean that is killed before each of its changes: the next one ends as an undisturbed one.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
needs strace
strace -qq -o /dev/null -e inject=rmdir:error=EIO:when=9 true || skip 'strace breaks no calls here'

# A library and a program with runs, a module's directory with a file of its own, one without a mark.
mkdir -p p/{liba,libb,prog_exe,plain}/codemeasure/db/db0 p/LLTTEMP/codemeasure/db/dbS p/llt_result
for module in liba libb; do
    printf '[project]\nBUID=Q1\nsutpath=/gone/%s.a\n' $module > p/$module/codemeasure/.prj
    touch p/$module/codemeasure/db/.tab p/$module/codemeasure/db/db0/record
    printf 'lltcov 2\narea %s/codemeasure\norder little\ncounts 8\n\1\0\0\0\0\0\0\0' $module \
        > p/llt_result/$module.Q1.0.0.lltcov
done
touch p/libb/mine.c p/LLTTEMP/codemeasure/db/dbS/record p/llt_result/.liba.Q1.0.0.lltcov.tmp
echo 'lltlibraries 1' > p/prog_exe/codemeasure/libraries.txt

tree() { find p | sort; }
for row in --all --gone '--all without LLTTEMP'; do
    [ "$row" = "${row% *}" ] || rm -r p/LLTTEMP
    clean() { "$@" lltcov clean "${row%% *}" --project p > said 2>&1; }
    rm -rf saved && cp -a p saved
    clean
    expect "$row" 0 $?
    undisturbed=$(tree)
    kills=0
    for change in unlink unlinkat rmdir rename; do # of each the first, the second, ...
        at=0 status=137
        while [ $status = 137 ]; do
            rm -rf p && cp -a saved p
            at=$((at + 1)) kills=$((kills + 1))
            { clean strace -qq -o /dev/null -e "inject=$change:signal=KILL:when=$at"; } 2> killed
            status=$?
            [ $status != 137 ] || clean
            expect "$row, killed before $change $at" "$undisturbed" "$(tree)"
        done
    done
    expect "$row: changes" yes "$([ $kills -gt 15 ] && echo yes || echo $kills)"
    rm -rf p && mv saved p
done
expect 'of --all, nothing is left but' 'p p/libb p/libb/mine.c p/llt_result' \
    "$(lltcov clean --all --project p > said; tree | xargs)"
finish
