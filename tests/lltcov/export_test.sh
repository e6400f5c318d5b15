#!/bin/bash
# A library and a program built through the wrapper and the tool set, run, exported; runs of tests; dumps
# of other builds, and one that is being written.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
enter_project "$work"

# expect_export WHAT STATUS SUMMARY [PATTERN]: the end of the closing line, and what else is said
expect_export() {
    lltcov export --lcov -o report.info 2> said
    expect "$1: status" "$2" $?
    expect "$1: summary" "$3" "$(sed -n '$s/.*report.info: //p' said)"
    [ -z "${4-}" ] || grep -q "$4" said || expect "$1: said" "$4" "$(cat said)"
}

cat > lib.c <<'C'
int twice(int x)
{
    if (x > 100)
        return 0;
    return 2 * x;
}
int never(int x)
{
    return x;
}
C
cat > main.c <<'C'
int twice(int);
int main(int argc, char **argv)
{
    int sum = argv == 0;
    for (int i = 0; i < argc; ++i)
        sum += twice(i);
    return sum > 100;
}
C
build() {
    for source in lib main; do
        lltwrapper gcc -g -O0 -c $source.c -o $source.o || return
    done
    rm -f liblib.a
    lltwrapper -artool ar -arsuffix .a ar rcs liblib.a lib.o || return
    lltwrapper gcc main.o liblib.a -o prog
}
rebuild() {
    sleep 1 # a build id has a resolution of one second
    build > build.log 2>&1 || { cat build.log; exit 1; }
}

build > build.log 2>&1 || { cat build.log; exit 1; }
expect_export 'before any run' 1 '0 of 11 lines hit (0.0 %), 0 of 3 functions, 0 of 4 branches, in 2 sources' \
    'no run of this project'
./prog
./prog 1 2

# What gcov refuses is left out and named, and takes nothing else along.
record=liblib/codemeasure/db/db0/record
while IFS='|' read -r what change reason; do
    cp $record sound
    sed -Ei "$change" $record
    expect_export "$what" 1 '5 of 5 lines hit (100.0 %), 1 of 1 functions, 2 of 2 branches, in 1 sources' \
        "lib.o' is left out: .* cannot read its records: .*$reason"
    mv sound $record
done <<'ROWS'
notes of another compile|s/^(function [0-9]+ [0-9]+ )1/\12/; t; s/^(function [0-9]+ [0-9]+ )[0-9]/\11/|mismatch
notes that are none|s/oncg/none/|not a gcov notes file
ROWS

expect_export 'two runs' 0 '8 of 11 lines hit (72.7 %), 2 of 3 functions, 3 of 4 branches, in 2 sources'
expect 'lines of the tracefile' 'DA:1,4 DA:3,4 DA:4,0 DA:5,4 DA:7,0 DA:9,0' \
    "$(sed -n '/lib\.c$/,/^end/{/^DA/p}' report.info | paste -sd ' ')"

if command -v genhtml > /dev/null; then
    genhtml -q -o html report.info > said 2>&1
    expect 'genhtml takes it' 0 $?
    # Releases from 2 on miss the last lines of functions, which older ones would not read.
    expect 'genhtml says' '' "$(grep -E 'ERROR|WARNING' said | grep -v derive_function_end_line)"
fi
expect 'status' 'liblib 1 1 3/6 50.0 1/2 50.0 1/2 50.0 2 liblib.a
prog_exe 1 1 5/5 100.0 1/1 100.0 2/2 100.0 2 prog
total 2 2 8/11 72.7 2/3 66.7 3/4 75.0 4' \
    "$(lltcov status | sed '1d; s/  */ /g; s/ [0-9-]* [0-9][0-9]:[0-9:]*//')"
expect 'total in JSON' '"total": {"sources": 2, "symbols": 2, "lines": {"hit": 8, "total": 11},' \
    "$(lltcov status --json | sed -n 's/ "functions".*//; /"total": {"s/p')"

if command -v lcov > /dev/null; then
    lltcov export --gcda data
    expect 'notes and data' 0 $?
    lcov -q --capture -d data -o captured.info > lcov.log 2>&1
    expect 'lcov reads them' "$(grep -E '^(SF|DA):' report.info)" \
        "$(lcov -q -a captured.info -o - 2> lcov.log | grep -E '^(SF|DA):')"
fi
expect 'conditions are not there' '' "$(LLTCOV_COUNT=conditions lltcov status | grep CONDITIONS)"
LLTCOV_COUNT=lines lltcov export --lcov > lines.info
expect 'lines only' "$(grep -v ^BR report.info)" "$(cat lines.info)"
lltcov tests > out 2> said
expect 'no names of tests' '1 no run' "$? $(grep -o 'no run' said)"
LLTCOV_TEST=one ./prog
LLTCOV_TEST=two ./prog 1
LLTCOV_TEST=two ./prog 1 2
LLTCOV_TEST=huge ./prog $(seq 101)
expect 'tests' 'huge 9/11 81.8 one 8/11 72.7 two 8/11 72.7' \
    "$(lltcov tests | sed '1d; s/  */ /g' | paste -sd ' ')"
expect 'tests of a line' 'huge 102 one 1 two 5' \
    "$(lltcov tests lib.c:3 | sed '1d; s/  */ /g' | paste -sd ' ')"
expect 'tests that alone reach a line or branch' 'huge 1 1' \
    "$(lltcov tests --unique | sed '1d; s/  */ /g')"
expect 'no test' "lltcov: no test reaches '$work/lib.c:9'" "$(lltcov tests lib.c:9 2>&1 >out)"
lltcov tests lib.c:2 > out 2> said
expect 'no line' "1 no line that is counted" "$? $(grep -o 'no line that is counted' said)"
lltcov export --lcov -o report.info 2> said
expect 'by test' 'DA:1,4 DA:1,102 DA:1,1 DA:1,5' "$(grep ^DA:1, report.info | paste -sd ' ')"
expect 'names of tests' 'TN: TN:huge TN:one TN:two' \
    "$(grep ^TN: report.info | uniq | paste -sd ' ')"

rebuild
expect_export 'built again, nothing run' 1 \
    '0 of 11 lines hit (0.0 %), 0 of 3 functions, 0 of 4 branches, in 2 sources' \
    '4 dumps of liblib are of build .*: not counted .*lltcov clean, then run'
sed 's/^buid .*/buid older/' "$(echo llt_result/liblib.* | sed 's/ .*//')" >llt_result/liblib.1.older.0.lltcov
expect_export 'dumps of two builds' 1 '0 of 11 lines hit (0.0 %), 0 of 3 functions, 0 of 4 branches, in 2 sources' \
    "5 dumps of liblib are of several other builds, '.*liblib.a' is of build"
rm llt_result/*
./prog
expect_export 'and run' 0 '8 of 11 lines hit (72.7 %), 2 of 3 functions, 3 of 4 branches, in 2 sources'

# Who writes a dump holds a lock of it.
dump=$(echo llt_result/prog_exe.*)
cp "$dump" whole
(exec 9<"$dump" && flock 9 && : >"$dump" && : >held && sleep 0.3 && cat whole >"$dump") &
until [ -e held ] || ! kill -0 $! 2>/dev/null; do sleep 0.01; done
expect_export 'beside a writer' 0 '8 of 11 lines hit (72.7 %), 2 of 3 functions, 3 of 4 branches, in 2 sources'
wait

mkdir empty
lltcov export --lcov --project empty -o none.info 2> said
expect 'a project without modules' '1 holds no module' "$? $(grep -o 'holds no module' said)"
expect 'and no report of it' '' "$(ls none.info 2> /dev/null)"

finish
