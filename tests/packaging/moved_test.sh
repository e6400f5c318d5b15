#!/bin/bash
# An installation that is moved as a whole works; what is moved alone is named with its cure, in one line.
# shellcheck disable=SC2016 # texts for CMake
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
needs cmake
said=$work/said

installed=$work/installed
cmake --install "$programs" --prefix "$installed" >"$said"
PATH=${PATH#"$programs:"}
expect 'names of the installation for a shell' 'lltcov lltwrapper' "$(find "$installed/bin" -printf '%P\n' | sort | xargs)"

mkdir project && cd project || exit
echo 'int one(void) { return 1; }' >one.c
echo 'int one(void); int main(void) { return one() - 1; }' >main.c
cat >Makefile <<'M'
main: main.o libone.a ; $(CC) -o $@ main.o libone.a
libone.a: one.o ; rm -f $@ && $(AR) rcs $@ one.o
M
hits() { lltcov status | awk '/^total/ { print $4 }'; }

mv "$installed" "$work/moved" && PATH=$work/moved/bin:$PATH
lltcov run -- make -s >"$said" 2>&1
expect 'a build by a moved installation' '0 ' "$? $(cat "$said")"
./main
expect 'is counted' 2/2 "$(hits)"

# --- without shims the wrapper finds the drivers; those on PATH come first
LLT_PROJECT=$PWD && . "$work/moved/share/lltwrapper/TUSK_INIT.SH"
for row in 0:lltld 3:hotpatch 7:lltld_omu 8:link_fixaddr_hotpatch; do
    lltwrapper_cfg=${row%:*} lltwrapper gcc -o main main.o libone.a >"$said" 2>&1
    expect "link driver $row" "0 ${row#*:} " "$? $(grep -o " ${row#*:} " "$said" | sort -u | sed 's/^ //')"
done
mkdir own && printf '#!/bin/sh\necho own driver\n' >own/lltcc && chmod +x own/lltcc
expect 'a driver of the own' 'own driver' "$(PATH=$PWD/own:$PATH lltwrapper gcc -c one.c | tail -n 1)"

# one_line WHAT PATTERN COMMAND...: fails, and says what it is about in one line
one_line() {
    local what=$1 pattern=$2
    shift 2
    "$@" >"$said" 2>&1
    expect "$what fails" 1 $(($? != 0))
    expect "$what has one line" 1 "$(grep -c "^lltwrapper: .*$pattern" "$said")"
}
mkdir "$work/alone" && cp "$work/moved/bin/lltwrapper" "$work/alone"
one_line 'a wrapper alone' "driver 'lltcc' is neither on PATH nor installed with '$work/alone/lltwrapper'" \
    "$work/alone/lltwrapper" gcc -c one.c
rm "$work/moved/libexec/lltwrapper/hotpatch"
one_line 'a driver that is gone' "driver 'hotpatch' is neither" env lltwrapper_cfg=3 lltwrapper gcc -o main main.o libone.a
mv "$work/moved" "$work/again"
one_line 'a shim' "'$work/moved/bin/lltwrapper', which the shim .* runs, is gone" \
    env LLT_WRAP=1 "$PWD/.lltcov/shims/gcc" -c one.c
rm libone.a && LLTWRAPPER_EXACT_STATUS=0 "$work/again/bin/lltcov" run -- make -s >"$said" 2>&1
expect 'the stub of what was compiled before' 1 \
    "$(grep -c "^lltwrapper: '$work/moved/libexec/lltwrapper/lltcc', which the sources .* is gone" "$said")"

# --- the time of the banner, as __TIME__ and __DATE__ have it, in UTC
mkdir "$work/date" && cd "$work/date" || exit
printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(date NONE)' "include([[$root/cmake/source_date.cmake]])" \
    'file(WRITE built "${LLT_BUILT}")' >CMakeLists.txt
while IFS='|' read -r epoch built; do
    TZ=Asia/Tokyo SOURCE_DATE_EPOCH=$epoch cmake . >"$said" 2>&1
    expect "SOURCE_DATE_EPOCH=$epoch" ";LLTWRAPPER_BUILT=\"$built\"" "$(cat built)"
done <<'END'
1699000000|08:26:40 Nov  3 2023
1700000000|22:13:20 Nov 14 2023
END
finish
