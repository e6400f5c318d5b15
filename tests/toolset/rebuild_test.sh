#!/bin/sh
# A project through the whole chain, built again after one change at a time: what the report shows
# then must be the sources as they are, with the counts of runs of this build alone.
# usage: rebuild_test.sh LLTCOV TUSK_INIT.SH
set -eu
lltcov=$1 init=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cases=0 failures=0
unset CC CFLAGS MAKEFLAGS LLT_PROJECT LLTCOV_ROOT
mkdir "$work/project"
cd "$work/project"
PATH=${lltcov%/*}:$PATH
# shellcheck source=toolset/TUSK_INIT.SH
. "$init"
lltcov shims "$work/shims" >"$work/log"
PATH=$work/shims:$PATH
export LLT_WRAP=1

# build [ARGUMENT...]
build() {
    make -j8 "$@" >"$work/log" 2>&1 && return
    cat "$work/log"
    exit 1
}

run() { ./prog && ./prog; }

# shown: "SOURCE LINE:COUNT..." of each source in the report
shown() {
    lltcov export --lcov -o "$work/info" 2>"$work/err" || true
    awk -F '[:,]' '
        $1 == "SF" { sub(".*/", ""); name = $0; lines[name] = "" }
        $1 == "DA" { lines[name] = lines[name] " " $2 ":" $3 }
        END { for (name in lines) print name lines[name] }' "$work/info" | sort
}

# expect WHAT ACTUAL EXPECTED
expect() {
    cases=$((cases + 1))
    [ "$2" = "$3" ] && return
    failures=$((failures + 1))
    printf 'FAILED %s\n  expected:\n%s\n  actual:\n%s\n' "$1" "$3" "$2"
    cat "$work/err"
}

cat >shape.h <<'C'
static inline int twice(int x)
{
    return 2 * x;
}
C
cat >area.c <<'C'
int area(int w, int h)
{
    if (w < 0)
        return 0;
    return w * h;
}
C
cat >volume.c <<'C'
#include "shape.h"
int volume(int a)
{
    return twice(a);
}
int never(void)
{
    return 1;
}
C
cat >main.c <<'C'
#include "shape.h"
int area(int w, int h);
int volume(int a);
int main(void)
{
    return area(2, 3) + volume(4) == twice(7) ? 0 : 1;
}
C
cat >Makefile <<'M'
sources = $(wildcard area.c region.c) volume.c
prog: main.o libshape.a
	cc -o $@ main.o libshape.a
libshape.a: $(sources:.c=.o)
	rm -f $@
	ar rcs $@ $^
main.o volume.o: shape.h
M

area='area.c 1:2 3:2 4:0 5:2'
others='main.c 4:2 6:2
shape.h 1:4 3:4
volume.c 2:2 4:2 6:0 8:0'
never_run='area.c 1:0 3:0 4:0 5:0
main.c 4:0 6:0
shape.h 1:0 3:0
volume.c 2:0 4:0 6:0 8:0'

build
expect 'a build that never ran' "$(shown)" "$never_run"
run
expect 'a build and two runs' "$(shown)" "$area
$others"
build
expect 'nothing to do' "$(shown)" "$area
$others"

rm libshape.a prog
sleep 1 # a build id holds the time in seconds
build
expect 'the library made again of the same objects' "$(shown)" "$never_run"
run
expect 'and run, beside the dumps of the build before' "$(shown)" "$area
$others"
expect 'which are refused' "$(grep -c 'refused dumps\| of build' "$work/err")" 2
lltcov clean >/dev/null

printf '/* A rectangle. */\nint area(int w, int h)\n{\n    return w * h;\n}\n' >area.c
expect 'an edited source before the build' "$(shown)" "$(echo "$never_run" | grep -v area)"
build
run
expect 'and after it: no line of the old text' "$(shown)" "area.c 2:2 4:2
$others"
expect 'without a complaint' "$(lltcov status >"$work/err" 2>&1; echo $?)" 0

lltcov clean >/dev/null
touch shape.h
build
run
expect 'a touched header' "$(shown)" "area.c 2:2 4:2
$others"

lltcov clean >/dev/null
mv area.c region.c
build
run
expect 'a renamed source' "$(shown)" "$(echo "$others" | sed '1a region.c 2:2 4:2')"

lltcov clean >/dev/null
touch ./*.c
build -B
build
run
expect 'everything compiled again' "$(shown)" "$(echo "$others" | sed '1a region.c 2:2 4:2')"

# One library built in two folders, by two options: both share one work area, the second one has it.
lltcov clean --all >/dev/null
cat >Makefile <<'M'
one/prog two/prog: %/prog: %/main.o %/libshape.a
	cc -o $@ $^
one/libshape.a two/libshape.a: %/libshape.a: %/region.o
	rm -f $@
	ar rcs $@ $^
two/region.o: CFLAGS = -DTWICE
one/%.o two/%.o:
	cc $(CFLAGS) -c -o $@ $(*F).c
M
cat >region.c <<'C'
int area(int w, int h)
{
#ifdef TWICE
    w *= 2;
#endif
    return w * h;
}
int unused(void)
{
    return 2;
}
C
printf 'int area(int w, int h);\nint main(void) { return area(2, 3) == 6 ? 0 : 1; }\n' >main.c
mkdir one two
build one/prog
sleep 1
build two/prog
one/prog && one/prog
two/prog && exit 1
both='main.c 2:3
region.c 1:3 4:1 6:3 8:0 10:0'
expect 'a library built in two folders' "$(shown)" "$both"
expect 'each of them in the table' "$(lltcov status | grep -c '/libshape.a$')" 2
rm one/libshape.a one/prog
sleep 1
build one/prog
expect 'the first one made again' "$(shown)" 'main.c 2:1
region.c 1:1 4:1 6:1 8:0 10:0'
one/prog
expect 'and run' "$(shown)" 'main.c 2:2
region.c 1:2 4:1 6:2 8:0 10:0'

echo "$((cases - failures)) passed, $failures failed"
[ $failures = 0 ]
