#!/bin/bash
# Code and compiler options on which counting stumbles easily: each row is built and run with
# `gcc --coverage` and through the tool set, and gcov and lltcov have to say the same of it.
# usage: gcc_counts_test.sh PROGRAMS [NAME]     PROGRAMS: the directory of lltwrapper, lltcc and lltcov
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
# shellcheck source=tests/toolset/against_gcov.sh
. "$root/tests/toolset/against_gcov.sh"
needs jq
only=${1:-} said=$work/result

# Name ("x86:" in front: for that machine only), commands that build and run in the directory "cases".
cases() {
    cat <<'END'
statements          | $CC -c statements.c && $CC statements.o -o prog && ./prog
statements -O2      | $CC -O2 -g -c statements.c && $CC statements.o -o prog && ./prog
statements -O3      | $CC -O3 -funroll-loops -c statements.c && $CC statements.o -o prog && ./prog
statements -Os      | $CC -Os -fPIE -c statements.c && $CC -pie statements.o -o prog && ./prog
split debug data    | $CC -O2 -g -gsplit-dwarf -c statements.c && $CC -g -gsplit-dwarf statements.o -o prog && ./prog
old debug data      | $CC -g -gdwarf-4 -fdebug-types-section -c statements.c && $CC statements.o -o prog && ./prog
early constructor   | $CC -O2 -fPIC -c early.c && $CC early.o -o prog && ./prog
precompiled C       | $CC -x c-header all.h -o all.h.gch && $CC -include all.h -c header.c && $CC header.o -o prog && ./prog
precompiled -O2     | $CC -O2 -g all.h && $CC -O2 -g -include all.h -c header.c && $CC header.o -o prog && ./prog
precompiled C++     | $CXX -x c++-header all.h -o all.h.gch && $CXX -include all.h -c throws.cpp shapes.cpp && $CXX throws.o shapes.o -o prog && ./prog
exceptions          | $CXX -c throws.cpp shapes.cpp && $CXX throws.o shapes.o -o prog && ./prog
C++ library         | $CXX -g -c library.cpp && $CXX library.o -o prog && ./prog
C++ library -O3     | $CXX -O0 -O3 -c library.cpp && $CXX library.o -o prog && ./prog
jumps               | $CC -c jumps.c && $CC jumps.o -o prog && ./prog
jumps -O2           | $CC -O2 -c jumps.c && $CC jumps.o -o prog && ./prog
threads             | $CC -O2 -pthread -c threads.c && $CC -pthread threads.o -o prog && ./prog
static of one name  | $CC -c one.c two.c && $CC one.o two.o -o prog && ./prog
sections            | $CC -O2 -fdata-sections -ffunction-sections -c one.c && $CC -O2 -fdata-sections -ffunction-sections -c two.c && $CC -Wl,--gc-sections one.o two.o -o prog && ./prog
sections C++        | $CXX -fdata-sections -ffunction-sections -c throws.cpp shapes.cpp && $CXX -Wl,--gc-sections throws.o shapes.o -o prog && ./prog
compile and link    | $CC -O2 one.c two.c -o prog && ./prog
partial link        | $CC -c one.c && $CC -c two.c && ld -r one.o two.o -o both.o && $CC both.o -o prog && ./prog
archive             | $CC -O2 -c one.c && $CC -O2 -c two.c && $AR rcs libtwo.a two.o && $CC one.o -L. -ltwo -o prog && ./prog
archive, mode 8     | export qmr_coverage_stub_mold=8 && $CC -c one.c && $CC -c two.c && $AR rcs libtwo.a two.o && $CC one.o -L. -ltwo -o prog && ./prog
shared library      | $CC -fPIC -c two.c && $CC -shared two.o -o libtwo.so && $CC -c one.c && $CC one.o -L. -ltwo -Wl,-rpath,$PWD -o prog && ./prog
static program      | $CC -O2 -c statements.c && $CC -static statements.o -o prog && ./prog
x86:intel syntax    | $CC -O2 -masm=intel -c statements.c && $CC statements.o -o prog && ./prog
x86:large model     | $CC -O1 -mcmodel=large -c statements.c && $CC statements.o -o prog && ./prog
x86:vectors         | $CC -O3 -mavx2 -c statements.c && $CC statements.o -o prog && ./prog
address sanitizer   | $CC -fsanitize=address -O1 -g -c statements.c && $CC -fsanitize=address statements.o -o prog && ./prog
saved temporaries   | $CC -save-temps -O2 -c statements.c && $CC statements.o -o prog && ./prog
response file       | echo -O2 -g statements.c -o s.o >args && $CC -c @args && $CC s.o -o prog && ./prog
other directory     | mkdir out && cd out && $CC -O2 -c ../statements.c -o s.o && $CC s.o -o ../prog && ../prog
without a suffix    | $CC -x c -c plain -o plain.o && $CC plain.o -o prog && ./prog
link-time optimiser | $CC -O2 -flto -ffat-lto-objects -c statements.c && $CC -fno-lto statements.o -o prog && ./prog
atomic counts       | $CC -O2 -fprofile-update=atomic -c statements.c && $CC statements.o -o prog && ./prog
END
}

check() { # check NAME COMMANDS
    : >"$said"
    with_gcov "$work/cases" "$2" && with_lltcov "$work/cases" "$2" &&
        differing "$work/gcov.rows" "$work/lltcov.rows" >"$said"
    expect "$1" 0 $?
}

# The counters' room must stay small: bytes of bss in the program just built, beside those of none.
check_room() {
    local plain
    plain=$(cd "$work/cases" && gcc -O2 statements.c -o "$work/plain" && bss_of "$work/plain")
    # shellcheck disable=SC2016 # variables of the build
    with_lltcov "$work/cases" '$CC -O2 -c statements.c && $CC statements.o -o prog && ./prog'
    local counted=$(($(bss_of "$work/tree/prog") - plain))
    expect 'room for counters' yes "$([ $counted -lt 16384 ] && echo yes || echo "$counted bytes")"
}

bss_of() { size "$1" | awk 'NR == 2 { print $3 }'; }

cp -r "$root/tests/toolset/counted" cases
printf 'int main(void)\n{\n    return 0;\n}\n' >cases/plain
while IFS='|' read -r name commands; do
    name=${name%"${name##*[! ]}"}
    [ -z "$only" ] || [ "$name" = "$only" ] || continue
    [ "$name" = "${name#x86:}" ] || [ "$(uname -m)" = x86_64 ] || continue
    check "$name" "$commands"
done < <(cases)
[ -n "$only" ] || check_room
finish
