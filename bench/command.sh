#!/bin/bash
# Times one wrapped compile: before a driver that does nothing, before one that only passes the command on,
# and with the tool set.
# usage: command.sh [ROUNDS]
# shellcheck source=bench/figures.sh
. "$(dirname "${BASH_SOURCE[0]}")/figures.sh"

rounds=${1:-20}
begin_bench command
. "$root/toolset/TUSK_INIT.SH"
cd "$place"
mkdir nothing pass_on
echo 'int main(void) { return 0; }' | gcc -O2 -static -xc - -o nothing/lltcc
printf '%s\n' '#include <unistd.h>' 'int main(int n, char** words) { return execvp(words[n > 7 ? 7 : n], words + 7); }' |
    gcc -O2 -static -xc - -o pass_on/lltcc
cp nothing/lltcc nothing/gcc
cp "$root/build/release/lltwrapper" nothing
cp "$root/build/release/lltwrapper" pass_on
echo 'int one(int a) { return a > 3 ? a : 1; }' >one.c
words='gcc -c one.c -o one.o' wrapped='lltwrapper gcc -c one.c -o one.o'
prefix="-qmr_current_prj_path $qmr_current_prj_path -projectname LLTTEMP -qmr_coverage_stub_mold 1"
tools=$PATH

say "one command, $rounds rounds"
PATH=$place/nothing:$tools
compare "$rounds" 30 '' nothing.wrapped "$wrapped" \
    nothing.shell "sh -c 'lltcc $prefix $words'" nothing.ccache "ccache $words"
against 'a command that does nothing: wrapped to sh -c' nothing.wrapped nothing.shell 1.25
against 'the same: wrapped to ccache, its caching disabled' nothing.wrapped nothing.ccache 0.70

PATH=$place/pass_on:$tools
compare "$rounds" 10 '' passed.wrapped "$wrapped" passed.shell "sh -c 'lltcc $prefix $words'"
against 'gcc -c, driver passes on: wrapped to sh -c' passed.wrapped passed.shell 1.03

PATH=$root/build/release:$tools
compare "$rounds" 10 '' compile.wrapped "$wrapped" compile.plain "$words" \
    compile.gcov "gcc --coverage -c one.c -o one.gcov.o"
against 'gcc -c with the tool set: wrapped to plain' compile.wrapped compile.plain 1.25
say "beside it: gcc --coverage to plain $(ratio compile.gcov compile.plain)"
