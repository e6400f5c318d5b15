#!/bin/bash
# Each step of a small project under valgrind, with the processes that it starts but the compilers'
# own. The programs are linked dynamically: in static ones valgrind cannot tell the allocator apart.
# usage: valgrind.sh PROGRAMS
# shellcheck source=tests/common.sh
. "$(dirname "$0")/common.sh"
needs valgrind

# watched COMMAND...: it succeeds, and valgrind has nothing to say
watched() {
    valgrind -q --error-exitcode=99 --log-file="$work/said.%p" --trace-children=yes \
        --trace-children-skip='*/cc1*,*/clang*,*/collect2,*/ld*,*/bin/ar,*/bin/as,*/gcov*,*/llvm-*' \
        "$@" >"$work/out" 2>&1
    expect "status of $*" 0 $?
    expect "valgrind of $*" '' "$(cat "$work"/said.*)"
    rm -f "$work"/said.*
}

mkdir p && cd p || exit
enter_project "$PWD"
for i in 1 2 3; do printf 'int f%d(int a)\n{\n    return a > %d ? a : 0;\n}\n' "$i" "$i" >"m$i.c"; done
echo 'int f1(int); int main(void) { return f1(2) - 2; }' >main.c
for compiler in gcc clang; do
    command -v $compiler >/dev/null || continue
    for source in m1 m2 m3 main; do watched lltwrapper $compiler -O2 -c $source.c; done
    watched lltwrapper -artool ar -arsuffix .a ar rcs libx.a m1.o m2.o m3.o
    echo 'int changed;' >>m2.c
    watched lltwrapper $compiler -c m2.c
    watched lltwrapper -artool ar -arsuffix .a ar rcs libx.a m1.o m2.o m3.o
    watched lltwrapper $compiler -o prog main.o libx.a
    watched ./prog
    for words in 'export --lcov -o info' 'export --json -o json' 'export --cobertura -o xml' status \
        'explain gcc -c m1.c' doctor clean; do
        read -ra words <<<"$words"
        watched lltcov "${words[@]}"
    done
done
watched lltcov clean --all
finish
