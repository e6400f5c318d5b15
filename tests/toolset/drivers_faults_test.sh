#!/bin/bash
# The compiler driver and the link driver in bad circumstances: each step gives an object that counts
# and a program that runs, or says that and why it does not count; what a killed one leaves goes with
# the next.
# shellcheck disable=SC2016,SC2030,SC2031 # texts for "eval"; one compiler is for one call
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
said=$work/said
mkdir "$work/p" && cd "$work/p" && enter_project "$PWD"
area=$PWD/LLTTEMP/codemeasure
echo 'int twice(int a) { return a + a; }' >twice.c
echo 'int twice(int); int main(void) { return twice(2) - 4; }' >main.c
call="-qmr_current_prj_path $PWD -projectname main -qmr_coverage_stub_mold 1"
# shellcheck disable=SC2086 # words
compile() { lltcc $call "$compiler" -c "${1:-twice.c}" -o "${2:-twice.o}" "${@:3}" 2>"$said"; }
# shellcheck disable=SC2086
join() { lltld $call "$compiler" main.o twice.o -o main >"$work/out" 2>"$said"; }
counted() { nm "$1" 2>/dev/null | grep -c " g_QMRCovData_"; } # arrays that it names
works() { # works WHAT COMMAND...: after it both are counted, by a program that runs
    rm -rf twice.o main main_exe LLTTEMP/codemeasure/db/dbtwice*
    expect "$1" "0 1 2" "$(eval "${*:2}" >"$said" 2>&1; echo "$(./main >/dev/null; echo $?) $(counted twice.o) $(counted main)")"
}
both='compile && join'
compile main.c main.o
works 'undisturbed' "$both"
tree() { (cd "$area" && find . -type f ! -name '*.lock' -exec md5sum {} + | sort -k 2); }
tree >"$work/undisturbed"

# --- one object by 8 compiles at once, one program by 8 links
for round in 1 2 3; do
    rm -f twice.o main statuses
    for _ in 1 2 3 4 5 6 7 8; do { compile; echo $? >>statuses; cat "$said" >>statuses; } & done; wait
    expect "8 compiles, round $round" '8 0, 1' "$(sort statuses | uniq -c | xargs), $(counted twice.o)"
    for _ in 1 2 3 4 5 6 7 8; do { join || echo failed >>statuses; } & done; wait
    expect "8 links, round $round" '8 0, 2 0' "$(sort statuses | uniq -c | xargs), $(counted main) $(./main; echo $?)"
done

# --- limits, streams and the environment
works 'a small stack' "(ulimit -s 64; compile) && (ulimit -s 64; join)"
works 'closed streams' "{ $both; } <&- >&- 2>&-"
works 'a full standard error' "{ compile twice.c twice.o -Wall; join; } 2>/dev/full"
works 'huge variables' "PLAIN=$(head -c 100000 /dev/zero | tr '\0' x) LLTCOV_UPDATE= LLTCOV_COUNT= LLTCOV_RUNTIME= LIBRARY_PATH=:$(head -c 20000 /dev/zero | tr '\0' y) CCACHE_EXTRAFILES=$(head -c 20000 /dev/zero | tr '\0' z); export PLAIN LIBRARY_PATH CCACHE_EXTRAFILES; $both"
for name in 'a b.c' "it's.c" 'a"b.c' 'x$y`z;&.c' 'ü[*]?.c' '-dash.c'; do
    cp twice.c "./$name"
    works "source $name" "compile './${name//\'/\'\\\'\'}' && join"
done
line=$'line\nend.c' && cp twice.c "$line"
expect 'a line end' '0 0' "$(compile "$line"; echo $? "$(counted twice.o)")"
expect 'is said' 'lltcc: compiled without coverage: a word of the command holds a line end' "$(cat "$said")"

# --- where programs are looked for: a compile that finds our assembler where it looks for the compiler's own
mkdir other
printf '%s\n' '#!/bin/sh' "env | grep -c LLTCC_RECORD >'$work/handed'" 'exec as "$@"' >other/as && chmod +x other/as
works "another assembler" 'compile twice.c twice.o "-B$work/p/other" && join'
handed=$(cat "$work/handed")
expect "is no part of the compile" 0 "$handed"
if [ "$handed" = 0 ]; then # else it would start itself for ever
    works "ours by -B" 'compile twice.c twice.o "-B$programs/lltcc.d" && join'
    works "ours by PATH" 'PATH=$programs/lltcc.d:$PATH compile && join'
fi
expect "ours, plain compile" 0 "$(PATH=$programs/lltcc.d:$PATH $compiler -c twice.c -o twice.o; echo $?)"

# --- options of the assembler, and what it alone takes
expect "a listing is the compile's" $'2\n0' "$({ compile main.c main.o -v -Wa,-alh && compile twice.c twice.o -v -Wa,-alh; } | grep -c 'LISTING.*page 1$'; join; grep -c 'LISTING\|version' "$work/out" "$said" | grep -vc ':0$')"
: >f.s
# shellcheck disable=SC2086
expect 'assembly among sources' $'lltcc: compiled without coverage: \'f.s\' is assembly\n1' "$(lltcc $call "$compiler" -c twice.c f.s 2>&1; counted twice.o)"

# --- names of arrays without records: texts of a program that builds test programs
seq 3000 | sed 's/.*/.asciz "g_QMRCovData_t&_c"/' | "$compiler" -x assembler -c -o texts.o -
works 'texts like names' 'compile; timeout 60 lltld $call "$compiler" main.o twice.o texts.o -o main'
expect 'which is said' 'lltld: records of 3000 counter arrays are gone in all' "$(grep 'in all' "$said")"

# --- no room for records, no tools
chmod -R u+w LLTTEMP && mv LLTTEMP away && : >LLTTEMP
expect 'a file where records would be' '0 0' "$(compile; echo $? "$(counted twice.o)")"
expect 'is said once' 1 "$(grep -c "^lltcc: compiled without coverage: cannot create '$PWD/LLTTEMP" "$said")"
rm LLTTEMP && mv away LLTTEMP
expect 'no compiler' '127 lltcc:' "$(compiler=/nowhere/gcc; compile; echo $? "$(grep -o '^lltcc:' "$said" | head -1)")"
expect 'no record' 'damaged' "$(compile; for f in "$area"/db/dbtwice*/record; do : >"$f"; done; join; ./main; lltcov status 2>&1 | grep -o damaged || echo sound)"

# --- killed at a system call, then a clean run: as if undisturbed
if command -v strace >/dev/null && strace -f -o /dev/null true 2>/dev/null; then
    for name in openat rename mkdir write; do
        for number in 1 2 3 5 8; do
            rm -rf LLTTEMP twice.o
            # shellcheck disable=SC2086
            { strace -o /dev/null -e "trace=$name" -e "inject=$name:signal=KILL:when=$number" \
                lltcc $call "$compiler" -c twice.c -o twice.o; } >/dev/null 2>&1
            compile && compile main.c main.o
            expect "killed at $name $number" "$(cat "$work/undisturbed")" "$(tree)"
        done
    done
fi
finish
