#!/bin/bash
# Conditions: a program is run several times, once as `gcc --coverage -fcondition-coverage` built it
# and once as the tool set did. Each decision must have the outcomes that gcov says, and genhtml sees
# them all; where one process sees what another one does not, they join.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
# shellcheck source=tests/toolset/against_gcov.sh
. "$root/tests/toolset/against_gcov.sh"
needs jq
said=$work/result
gcc -fcondition-coverage -x c -S -o /dev/null /dev/null 2>why || skip "$(cat why)"

make_sources() {
    cat >range.h <<'C'
static inline int in_range(int x, int low, int high)
{
    return x >= low && x <= high;
}
C
    cat >decide.c <<'C'
#include "range.h"
int both(int a, int b)
{
    return a && b;
}
int always(int a, int b)
{
    return a && b;
}
int nested(int a, int b, int c)
{
    int n = 0;
    while (a && (b || (c && !in_range(a, 1, 3)) || (a > 2 && c > 2)) && n++ < 9)
        n += (a > b ? b || c : b && (c || a)) + (b || c) + !a;
    return n;
}
int forks_apart(int in_child, int b)
{
    return in_child && b;
}
int never(int a, int b)
{
    return a || b;
}
#define T8(a) (a) && (a) != 1 && (a) != 2 && (a) != 3 && (a) != 4 && (a) != 5 && (a) != 6 && (a) != 7
int too_many(int a)
{
    return T8(a) && T8(a) && T8(a) && T8(a) && T8(a) && T8(a) && T8(a) && T8(a) && a > 9;
}
C
    cat >between.h <<'C'
template <class T> bool between(T a, T b, T c)
{
    return (a < b && b < c) || a == c;
}
C
    cat >pick.cpp <<'C'
#include "between.h"
int pick(int a, int b, int c) { return between(a, b, c) + between<double>(b, a, 1.5); }
C
    cat >main.cpp <<'C'
#include "between.h"
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>
extern "C" {
#include "range.h"
int both(int a, int b);
int always(int a, int b);
int nested(int a, int b, int c);
int forks_apart(int in_child, int b);
int too_many(int a);
}
int pick(int a, int b, int c);
int main(int, char** argv)
{
    const int a = std::atoi(argv[1]), b = std::atoi(argv[2]), c = std::atoi(argv[3]);
    int sum = both(a, b) + always(1, 1) + nested(a, b, c) + pick(a, b, c);
    sum += in_range(b, 0, c) + between(c, b, 2) + too_many(a);
    const pid_t child = fork();
    sum += forks_apart(child == 0, b);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return sum == 12345;
}
C
}

# Runs that differ in what they see; the test's name gives them dump files of their own.
# shellcheck disable=SC2016 # variables of the build
commands='
$CC $flags -c decide.c
$CXX $flags -c pick.cpp main.cpp
rm -f libdecide.a
$AR rcs libdecide.a decide.o
$CXX main.o pick.o libdecide.a -o prog
./prog 1 1 0
LLTCOV_TEST=one ./prog 0 1 1
LLTCOV_TEST=two ./prog 1 0 1
./prog 1 1 0
LLTCOV_TEST=one ./prog 4 0 3
'

# Rows FILE LINE FUNCTION CONDITION COUNT COVERED NOT_TRUE NOT_FALSE of objects with "terms", lists
# of [true, false]; objects of one file, line and function are joined.
# shellcheck disable=SC2016 # variables of jq
rows='group_by([.file, .line, .function])[] | .[0] as $place |
    [[.[].conditions] | transpose[] | [transpose[] | [transpose[] | any]]] | to_entries[] |
    [$place.file, $place.line, $place.function, .key, (.value | length * 2),
        (.value | flatten | map(select(.)) | length),
        (.value | map(.[0]) | indices(false) | join(" ")),
        (.value | map(.[1]) | indices(false) | join(" "))] | @tsv'

gcov_rows() {
    find "$work/tree" -name '*.gcno' -print0 |
        xargs -0 -n 1 gcov --json-format --stdout -b --conditions 2>/dev/null |
        jq -n -r --arg root "$work/tree/" '[inputs.files[] | select(.file | startswith("/usr") | not) |
            (.file | ltrimstr($root)) as $file | .lines[] | select(.conditions != []) |
            {file: $file, line: .line_number, function: .function_name, conditions: [.conditions[] |
                .not_covered_true as $true | .not_covered_false as $false | [range(.count / 2) |
                    [([.] | inside($true) | not), ([.] | inside($false) | not)]]]}] | '"$rows" | sort
}

json_rows() {
    jq -r --arg root "$work/tree/" '[.sources[] | (.path | ltrimstr($root)) as $file |
        .condition_outcomes[] | {file: $file, line: .line, function: .symbol,
            conditions: [.conditions[] | [.[] | [.true, .false]]]}] | '"$rows" "$1" | sort
}

# A genhtml that knows conditions has to see all of them.
read_by_genhtml() { # read_by_genhtml WHAT
    genhtml --mcdc-coverage --version >"$work/said" 2>&1 || return
    # It always misses the last lines of functions, which older releases would not read.
    genhtml --mcdc-coverage --branch-coverage -o "$work/html" "$work/info" >"$work/said" 2>&1
    expect "$1: genhtml" '0 ' \
        "$? $(grep -E 'WARNING|ERROR' "$work/said" | grep -v derive_function_end_line)"
    awk -F '\t' '{ all += $5; hit += $6 } END { print "(" hit " of " all }' "$work/conditions" >"$work/expected"
    sed -n '/MC\/DC/s/.*\((.* of [0-9]*\).*/\1/p' "$work/said" >"$work/actual"
    expect_file "$1: what genhtml sees" "$work/expected" "$work/actual"
}

# compare MODE FLAGS
compare() {
    local what="$2, mode $1"
    export flags=$2 qmr_coverage_stub_mold=$1 LLTCOV_COUNT=conditions
    with_gcov "$work/source" "$commands" '' -fcondition-coverage || exit
    gcov_rows >"$work/gcov.conditions"
    flags="$2 -Werror" with_lltcov "$work/source" "$commands" || exit
    LLT_PROJECT=$work/tree lltcov export --json -o "$work/json" 2>"$work/err"
    LLT_PROJECT=$work/tree lltcov export --lcov -o "$work/info" 2>"$work/err"
    differing "$work/gcov.rows" "$work/lltcov.rows" >"$said"
    expect "$what" 0 $?
    json_rows "$work/json" >"$work/conditions"
    expect_file "$what: JSON" "$work/gcov.conditions" "$work/conditions"
    read_by_genhtml "$what"
}

mkdir "$work/source" && (cd "$work/source" && make_sources) || exit
compare 1 -O0
# Together the runs see all of "both"; "always" sees only true terms, "never" nothing, and the child
# of a fork what its parent does not: the first term true and false, the second true, false in the
# runs whose second number is 0.
awk -F '\t' '$1 == "decide.c" && ($3 ~ /^(both|always|never|forks_apart|too_many)$/) {
    print $3, $5, $6, "[" $7 "]", "[" $8 "]" }' "$work/conditions" | sort >"$work/actual"
cat >"$work/expected" <<'END'
always 4 2 [] [0 1]
both 4 4 [] []
forks_apart 4 4 [] []
never 4 0 [0 1] [0 1]
END
expect_file 'what is clear by hand' "$work/expected" "$work/actual"
compare 8 '-O2 -g'

finish
