#!/bin/bash
# A newcomer's road: run a build, test, look at the report, at a change, at parts; build and look again.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
said=$work/said

cat >lib.c <<'C'
int twice(int x)
{
    if (x > 100)
        return 0; /* LCOV_EXCL_LINE */
    return 2 * x;
}
C
mkdir sub
cat >sub/main.c <<'C'
int twice(int);
int main(int argc, char **argv)
{
    (void)argv;
    if (argc > 1)
        return twice(argc) == 0;
    return 0;
}
C
cat >Makefile <<'M'
prog: sub/main.o libtwice.a ; $(CC) -o $@ sub/main.o libtwice.a
libtwice.a: lib.o ; rm -f $@ && $(AR) rcs $@ lib.o
check: prog ; ./prog && echo checked
M
run() { lltcov run -- "$@" >"$work/out" 2>"$said"; }
files() { lltcov status --files "$@" 2>"$said" | sed 1d | awk '{ print $1, $2 }' | xargs; }

# --- build, test, report
run make -s CFLAGS='-g -O0'
expect 'the build, which says nothing of its own' '0 ' "$? $(cat "$work/out" "$said")"
expect 'its tests without us' checked "$(make -s check 2>"$said")"
expect 'hits: the marked line does not count' 'lib.c 0/3 sub/main.c 3/4 total 3/7' "$(files)"
expect 'hits without marks' 'lib.c 0/4 sub/main.c 3/4 total 3/8' "$(files --no-markers)"
expect 'hits from below' 'sub/main.c 3/4 total 3/4' "$(cd sub && files --exclude lib.c)"
expect 'hits by directory' '. 0/3 sub 3/4 total 3/7' \
    "$(lltcov status --directories | sed 1d | awk '{ print $1, $2 }' | xargs)"
expect 'a gate that is missed' '1 42.9 % of the lines are hit (3 of 7), less than --fail-under-line 60' \
    "$(lltcov export --json --fail-under-line 60 2>&1 >/dev/null | sed 's/^lltcov: //' >"$said"; echo "${PIPESTATUS[0]} $(cat "$said")")"
if command -v genhtml >/dev/null; then
    lltcov report >"$work/out" 2>"$said"
    expect 'report' "0 3 of 7 lines hit (42.9 %), 1 of 2 functions, 1 of 4 branches, in 2 sources $PWD/.lltcov/html/index.html" \
        "$? $(xargs -a "$work/out" -d '\n')"
    expect 'pages' 2 "$(find .lltcov/html -name '*.c.gcov.html' | wc -l)"
fi

expect 'doctor misses no setting' "nothing found: 2 modules in '$PWD'" "$(lltcov doctor)"
expect 'but before a build' '1 project path: no setting is set;' \
    "$(mkdir new && lltcov doctor --project new >"$said"; echo "$? $(grep -o '^project path: no setting is set;' "$said")")"

sleep 1 # a build id has the second of the build
# --- a change: what runs after a build counts, what ran before it does not
sed -i '5s/.*/    int two = 2;\n    return two * x;/' lib.c
run make -s CFLAGS='-g -O0'
expect 'a second build' 0 $?
expect 'counts of the build before are gone' '0' "$(find .lltcov/llt_result -name '*.lltcov' | wc -l)"
lltcov export --lcov -o info 2>"$said"
expect 'nothing ran' 1 $?
lltcov export --lcov -o info --allow-empty 2>"$said"
expect 'which may be' 0 $?
./prog 1
printf -- '--- a/lib.c\n+++ b/lib.c\n@@ -5 +5,2 @@\n-    return 2 * x;\n+    int two = 2;\n+    return two * x;\n' >change
diff_said=$(cd sub && lltcov diff ../change --fail-under-line 100 2>"$said")
expect 'a change that ran' "0 lib.c:5: 1: int two = 2; lib.c:6: 1: return two * x; SOURCE CHANGED LINES HIT % lib.c 2/2 100.0 total 2/2 100.0" \
    "$? $(xargs <<<"$diff_said")"
lltcov clean >/dev/null && ./prog
diff_said=$(lltcov diff change --fail-under-line 50 2>"$said")
expect 'a change that did not' "1 lib.c:5: not run: int two = 2; lib.c:6: not run: return two * x; SOURCE CHANGED LINES HIT % lib.c 0/2 0.0 total 0/2 0.0" \
    "$? $(xargs <<<"$diff_said")"
if git init -q . 2>/dev/null && git add lib.c sub/main.c && git -c user.name=t -c user.email=t@t commit -qm all; then
    mkdir vendor && cp lib.c vendor/ && git add vendor && git -c user.name=t -c user.email=t@t commit -qm vendor
    sed -i '5s/2/3/' vendor/lib.c
    expect 'nothing changed since a revision but a file of the same name' 'lltcov: no changed line is counted 0' \
        "$({ lltcov diff HEAD 2>&1; echo $?; } | xargs)"
fi

for base in sub Makefile none; do
    expect "$base is no change" 1 "$(lltcov diff $base >"$said" 2>&1; echo $?)"
done

# --- the command's own end, and what cannot be
expect 'children whose ends the parent ignores' 7 "$(env --ignore-signal=CHLD lltcov run -- sh -c 'exit 7'; echo $?)"
expect 'exit status' 7 "$(lltcov run -- sh -c 'exit 7'; echo $?)"
expect 'a signal' 143 "$(lltcov run -- sh -c 'kill $$' 2>/dev/null; echo $?)"
expect 'no such command' 127 "$(lltcov run -- ./nothing 2>/dev/null; echo $?)"
export qmr_current_prj_path=$work/other/data
expect 'a project that the environment names, and nobody has made' "$work/other/data" \
    "$(lltcov run -- printenv qmr_current_prj_path)"
expect 'its shims' "$work/other/data/LLTTEMP/shims/cc" "$(lltcov run -- sh -c 'command -v cc')"
unset qmr_current_prj_path
mkdir 'a b' && cd 'a b' || exit
expect 'a path with a blank' '1 nothing is run' \
    "$(lltcov run --project . -- touch ran 2>&1 >/dev/null | grep -o 'nothing is run' >"$said"; echo "${PIPESTATUS[0]} $(cat "$said")")"
expect 'is not run' '' "$(find . -name ran)"
finish
