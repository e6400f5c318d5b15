#!/bin/bash
# A project through the whole chain, built again after one change at a time: what the report shows
# then must be the sources as they are, with the counts of runs of this build alone.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
set -e
said=$work/err
mkdir project
cd project
enter_project "$PWD"
logged lltcov shims "$work/shims"
PATH=$work/shims:$PATH
export LLT_WRAP=1

# build [ARGUMENT...]
build() { logged make -j8 "$@"; }

run() { ./prog && ./prog; }

# shown: "SOURCE LINE:COUNT..." of each source in the report
shown() {
    lltcov export --lcov -o "$work/info" 2>"$work/err" || true
    awk -F '[:,]' '
        $1 == "SF" { sub(".*/", ""); name = $0; lines[name] = "" }
        $1 == "DA" { lines[name] = lines[name] " " $2 ":" $3 }
        END { for (name in lines) print name lines[name] }' "$work/info" | sort
}

# shows WHAT EXPECTED
shows() { expect "$1" "$2" "$(shown)"; }

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
shows 'a build that never ran' "$never_run"
run
shows 'a build and two runs' "$area
$others"
build
shows 'nothing to do' "$area
$others"

rm libshape.a prog
sleep 1 # a build id holds the time in seconds
build
shows 'the library made again of the same objects' "$never_run"
run
shows 'and run, beside the dumps of the build before' "$area
$others"
expect 'which are refused' 2 "$(grep -c 'refused dumps\| of build' "$work/err")"
lltcov clean >/dev/null

printf '/* A rectangle. */\nint area(int w, int h)\n{\n    return w * h;\n}\n' >area.c
shows 'an edited source before the build' "$(echo "$never_run" | grep -v area)"
build
run
shows 'and after it: no line of the old text' "area.c 2:2 4:2
$others"
expect 'without a complaint' 0 "$(lltcov status >"$work/err" 2>&1; echo $?)"

lltcov clean >/dev/null
touch shape.h
build
run
shows 'a touched header' "area.c 2:2 4:2
$others"

lltcov clean >/dev/null
mv area.c region.c
build
run
shows 'a renamed source' "$(echo "$others" | sed '1a region.c 2:2 4:2')"

lltcov clean >/dev/null
touch ./*.c
build -B
build
run
shows 'everything compiled again' "$(echo "$others" | sed '1a region.c 2:2 4:2')"

expect 'one work area for all links of the program' prog_exe "$(echo prog_exe*)"
finish
