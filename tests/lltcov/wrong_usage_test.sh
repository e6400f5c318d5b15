#!/bin/bash
# What a newcomer does wrong: one line says what, where and what to do, and the cure works.
# shellcheck disable=SC2016 # a makefile
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
said=$work/said
mkdir p other
cd p || exit
echo 'int one(int x) { return x; }' >one.c
echo 'int one(int); int main(void) { return one(0); }' >main.c
printf '%s\n' 'all: libone.a' 'main: main.o libone.a ; $(CC) -o $@ main.o libone.a' \
    'libone.a: one.o ; rm -f $@ && $(AR) rcs$(THIN) $@ one.o' 'check: main ; ./main' 'clean: ; rm -f main *.[oa]' >Makefile

# says WHAT STATUS TEXT COMMAND...: TEXT is in the one line on standard error
says() {
    local what=$1 status=$2 text=$3
    shift 3
    "$@" >"$work/out" 2>"$said"
    expect "$what" "$status 1 1" "$? $(grep -c '^lltcov: ' "$said") $(grep -cF -e "$text" "$said")"
}
quiet() { make -s "$@" >"$said" 2>&1; }

# --- before a build
says 'merge before a build' 1 "holds no module with coverage data; build it ('make clean' if" lltcov merge ../other
expect 'merge leaves nothing there' 'Makefile main.c one.c' "$(echo *)"
expect 'the doctor before a build' 1 "$(lltcov doctor | grep -c .)"
says 'a command of the shell' 127 "there is no program 'make && make check'; for shell functions, '|' and '&&': lltcov run -- sh -c" \
    lltcov run -- 'make && make check'
says 'no command' 2 "there is no command 'stauts'; 'lltcov help' lists them" lltcov stauts
rm -r .lltcov && : >.lltcov
says 'a file in the place of the data' 1 "stopped at '$PWD/.lltcov/shims': Not a directory; check what" lltcov run -- make
rm .lltcov && ln -s ../other .lltcov
says 'data through a link' 2 "'$PWD/.lltcov' is a symbolic link; put a directory in its place" lltcov run -- make
rm .lltcov

# --- a build that names its compiler by a path; the next one is its cure
lltcov run -- make -s CC="$(command -v gcc)" >"$said" 2>&1
says 'a compiler that is named by a path' 1 'with CC=gcc if it names its compiler by a path' lltcov status
quiet clean

# --- a build whose tests are linked without us
expect 'a build' 0 "$(lltcov run -- make -s >"$said" 2>&1; echo $?)"
quiet check
expect 'tests that are linked without us fail' 2 $?
lltcov status >"$work/out" 2>"$said"
expect 'the report has the cure' 1 "$(grep -c "run the tests, by 'lltcov run -- make check' if" "$said")"
expect 'and so has the doctor' 1 "$(lltcov doctor | grep -c "dumps: no program .*libone.a': .*link a test with it, by lltcov run")"
expect 'which finds no problem' 0 "$(lltcov doctor >"$said"; echo $?)"
lltcov run -- make -s check >"$said" 2>&1
expect 'the cure, for what it compiles' '1/1 0' "$(lltcov status --files 2>"$said" | awk '$1 == "total" { print $2 }') $(grep -c . "$said")"

# --- built again without us
quiet clean && quiet check
lltcov status >"$work/out" 2>"$said"
expect 'what was built plainly is named' "libone.a' was built again without lltwrapper" \
    "$(grep -o "[a-z.]*' was built again without lltwrapper" "$said")"
expect "the doctor's cure" "$(printf '%s\n' 'make clean && lltcov run -- make' | sort -u)" \
    "$(lltcov doctor | sed -n 's/^objects: .*with make, type: //p' | sort -u)"
for thin in T ''; do
    quiet clean && lltcov run -- make -s check THIN=$thin >"$said" 2>&1
    lltcov status >"$work/out" 2>"$said"
    expect "after the cure, archive '$thin'" '' "$(cat "$said")"
done

# --- settings of another project
cp -r . ../second
says 'settings of another project' 0 "the project is '$PWD', of qmr_current_prj_path, not '$work/second': 'unset" \
    env -C ../second qmr_current_prj_path="$PWD/.lltcov" lltcov status
expect 'the project of this directory' '' "$(cd ../second && lltcov clean --project . 2>&1 >"$said")"
rm -r ../second

# --- a diff from standard input, standard output that is full, pages of sources that are gone
printf -- '--- a/one.c\n+++ b/one.c\n@@ -0,0 +1 @@\n+x\n' >change
expect 'a diff from a pipe' 'total 1/1 100.0' "$(lltcov diff - <change 2>"$said" | tail -n 1 | xargs)"
for words in 'clean --dry-run' 'clean --old' help --version 'help run' 'shims x' status doctor; do
    # shellcheck disable=SC2086 # words
    lltcov $words >/dev/full 2>"$said"
    expect "full: $words" '1 1' "$? $(grep -c 'standard output cannot be written' "$said")"
done
if command -v genhtml >/dev/null; then
    lltcov report >"$said" 2>&1 && cp -r .lltcov/html pages && mkdir -p .lltcov/html/gone && : >.lltcov/html/gone/old.c.gcov.html
    lltcov report >"$said" 2>&1
    expect 'pages of sources that are there' "$(cd pages && find . | sort)" "$(cd .lltcov/html && find . | sort)"
    mkdir own && : >own/mine.html && lltcov report -o own >"$said" 2>&1
    expect 'a directory that is named keeps what it has' own/mine.html "$(ls own/mine.html)"
fi

# --- moved
cd .. && mv p q && cd q || exit
expect 'runs of where it was' 'removed 0' "$(lltcov clean | cut -d ' ' -f 1,2)"
expect 'runs of here' 'removed 2' "$(lltcov clean --map "$work/p=$PWD" | cut -d ' ' -f 1,2)"
finish
