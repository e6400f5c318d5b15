#!/bin/bash
# What lltcc makes of one compile: the options it passes, who defines the array, which headers it
# counts; and how the stubs of an archive and of a link align their arrays.
# usage: lltcc_compile_test.sh PROGRAMS [GCC]
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
real=$(command -v "${1:-gcc}")
said=$work/log

# A compiler that has a header directory of its own and notes its options.
make_compiler() {
    mkdir "$work/bin" "$work/own" "$work/user"
    cat >"$work/bin/gcc" <<END
#!/bin/sh
printf '%s\n' "\$@" >>'$work/options'
exec '$real' -isystem '$work/own' "\$@"
END
    chmod +x "$work/bin/gcc"
    echo 'static inline int in_own(int x) { return x + 1; }' >"$work/own/own.h"
    echo 'static inline int in_user(int x) { return x + 2; }' >"$work/user/user.h"
    cat >"$work/a.c" <<'C'
#include <own.h>
#include <user.h>
int in_source(int x)
{
    return in_own(x) + in_user(x);
}
C
}

# compile MODE WORD...: a.c into a.o, in a new project
compile() {
    rm -rf "$work/project" "$work/options" "$work/a.o"
    logged lltcc -qmr_current_prj_path "$work/project" -projectname LLTTEMP \
        -qmr_coverage_stub_mold "$1" "$work/bin/gcc" -c "${@:2}" "$work/a.c" -o "$work/a.o"
}

# functions: those that a.o counts, by their names in the source
functions() {
    grep -a '^function ' "$work/a.o" | sed -E 's/.* //; s/^_ZL?[0-9]+(.*)i$/\1/' | sort | paste -sd ' '
}

make_compiler

# --- counts that are read early: environment, how often the option is passed
while read -r setting times; do
    (export "${setting%,*}" "${setting#*,}" && compile 1 -I "$work/user")
    expect "$setting" "$times" "$(grep -cx -e -fno-tree-loop-im "$work/options")"
done <<'END'
TimerPolicy=0,SignalPolicy=0 0
TimerPolicy=1 1
SignalPolicy=1 1
END

# --- the array: stub mode, its type in the object; sizes have other units, so each mode has its own symbol
while read -r mode type; do
    compile "$mode" -I "$work/user"
    expect "mode $mode" "$type" "$(nm "$work/a.o" | awk '/ g_QMRCovData_/ { print $(NF - 1) }')"
    nm "$work/a.o" | grep -o 'g_QMRCovData_.*' >>symbols
done <<'END'
0 U
1 U
2 U
5 C
7 C
8 C
9 C
END
expect 'symbols of 7 modes' 7 "$(sort -u symbols | wc -l)"

# --- headers: the compiler's own are not counted, the user's are, wherever the compiler is told of them
for option in -I -iquote -isystem; do
    [ $option = -iquote ] && sed -i 's/<user.h>/"user.h"/' "$work/a.c"
    compile 1 $option "$work/user"
    expect "headers, $option" 'in_source in_user' "$(functions)"
done
compile 1 -fprofile-exclude-files='/user\.h$' -isystem "$work/user"
expect 'headers that the command excludes' in_source "$(functions)"
while read -r variable language; do
    (export "$variable=$work/user" && compile 1 -x "$language")
    expect "headers, $variable, $language" 'in_source in_user' "$(functions)"
done <<'END'
CPATH c
CPATH c++
C_INCLUDE_PATH c
CPLUS_INCLUDE_PATH c++
END

# --- a stub's headers: short ones for the stub, the C library's own for what a compile command adds
printf '#include <stdio.h>\n#include <stdlib.h>\nstatic FILE *users_own(void) { return abort(), stdout; }\n' \
    >"$work/added.h"
cat >"$work/stub.c" <<'C'
#include <stdio.h>
#include <stdlib.h>
#include <errno.h>
int starts(void *p) { errno = 0; return p == NULL || printf("%d", 1) < 0; }
C
for language in c c++; do
    for added in '' "-include $work/added.h"; do
        # shellcheck disable=SC2086 # words
        lltcc -stub "$real" -x $language -Wall -Wno-unused -Werror -H $added -o "$work/stub.o" \
            -c "$work/stub.c" >"$work/log" 2>&1
        expect "stub in $language $added" 0 $?
        expect "the C library's stdio.h in it" 0 "$(grep -c '^\.* /.*/include/stdio.h' "$work/log")"
    done
done

# --- the stubs' arrays, of 8 bytes and of 24 in each: none may begin where another one ends
mkdir "$work/tree"
cd "$work/tree" || exit
for name in a b c d; do
    echo "int $name(int x) { return x; }" >$name.c
done
for name in b d; do
    echo "int ${name}_more(int x) { return x ? 1 : 2; }" >>$name.c
done
printf 'int a(int), b(int), c(int), d(int);\nint main(void)\n{\n    return a(0) + b(0) + c(2) + d(3);\n}\n' >main.c
enter_project "$work/tree"
wrapped="lltwrapper $real"

# offsets FILE: arrays that the file defines, and of these the ones not at a multiple of 64 (hexadecimal)
offsets() {
    nm "$1" | awk '/ [bBvVdDwW] g_QMRCovData_/ { all++; odd += $1 !~ /[048c]0$/ } END { print all + 0, odd + 0 }'
}

for mode in 1 2; do
    export qmr_coverage_stub_mold=$mode
    rm -rf LLTTEMP ./*.o ./*.a prog
    {
        for name in a b c d main; do $wrapped -c $name.c; done
        lltwrapper -artool ar -arsuffix .a ar rcs libtwo.a c.o d.o
        $wrapped main.o a.o b.o libtwo.a -o prog
    } >"$work/log" 2>&1
    expect "stub of the archive, mode $mode" '2 0' "$(offsets libtwo.a)"
    expect "its section's alignment" 64 \
        "$(readelf -SW libtwo.a | awk '/ \.bss / && $NF > most { most = $NF } END { print most }')"
    expect "stub of the link, mode $mode" '5 0' "$(offsets prog)"
    expect 'the program, mode '$mode 5 "$(./prog >>"$work/log" 2>&1; echo $?)"
done
finish
