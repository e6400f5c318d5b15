#!/bin/bash
# Programs that clang compiled, once for its own tools and once through the whole chain: every line,
# function and branch must have the same count in both reports.
# usage: clang_counts_test.sh PROGRAMS [CLANG]
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
set -e
clang=${1:-clang} said=$work/err
needs "$clang"
# The tools of this clang are beside its program, in a directory of its version.
tools=$(dirname "$(readlink -f "$(command -v "$clang")")")
needs "$tools/llvm-profdata" "$tools/llvm-cov"
mkdir project native
cd project
enter_project "$PWD"

cat >sum.h <<'C'
#define TWICE(x) ((x) + (x))
static inline int sum_to(int n)
{
    int sum = 0;
    for (int i = 0; i < n; ++i) sum += TWICE(i);
    return sum;
}
static inline int never(int x) { return x ? 1 : 2; }
C
cat >left.c <<'C'
#include "sum.h"
static int part(int x)
{
    if (x < 0)
        return -1;
    return x > 2 && x < 9 ? x : 2 * x;
}
int left(int x)
{
    switch (x) {
    case 0:
    case 1:
        return part(-x);
    case 2:
        return sum_to(part(x));
    default:
        break;
    }
    return part(x) + sum_to(0);
}
C
cat >right.c <<'C'
#include "sum.h"
static int part(int x)
{
    int n = 0;
    while (x-- > 0)
        n += x % 2 ? 1 : 0;
    return n;
}
int right(int x)
{
    return x > 5 ? part(x) : sum_to(x) || part(1);
}
int uncalled(int x)
{
    do {
        --x;
    } while (x > 0);
    return x;
}
C
cat >main.c <<'C'
#include <stdlib.h>
int left(int x);
int right(int x);
int main(int argc, char** argv)
{
    int sum = 0;
    for (int i = 1; i < argc; ++i)
        sum += left(atoi(argv[i])) + right(atoi(argv[i]));
    return sum == 12345;
}
C
cat >pick.h <<'C'
#include <vector>
template <class T> T pick(T a, T b)
{
    return a > b ? a : b;
}
inline int count(const std::vector<int>& all)
{
    int n = 0;
    for (int x : all) if (x > 1) ++n;
    return n;
}
struct Shape {
    virtual ~Shape() = default;
    virtual int area() const { return 0; }
};
inline int unused(int x)
{
    return x ? 3 : 4;
}
C
cat >other.cpp <<'C'
#include "pick.h"
namespace
{
struct Square : Shape {
    int area() const override { return 4; }
};
} // namespace
static int help(int x)
{
    auto times = [x](int y) { return x > 1 ? x * y : y; };
    return times(2) + times(3);
}
int other(int x)
{
    Square square;
    return pick(x, 2) + int(pick(1.5, 2.5)) + count({1, 2, 3}) + help(x) + square.area();
}
C
cat >program.cpp <<'C'
#include "pick.h"
#include <stdexcept>
int other(int x);
static int help(int x)
{
    if (x > 2)
        throw std::runtime_error("large");
    return x;
}
int main(int argc, char** argv)
{
    int sum = 0;
    for (int i = 0; i < argc + 2; ++i) {
        try {
            sum += help(i) + pick(i, 1) + count({i}) + other(i);
        } catch (const std::runtime_error&) {
            return sum == 12345;
        }
    }
    return argv[0] == nullptr;
}
C
cat >Makefile <<'M'
both: one two
one: main.o liblr.a
	$(CC) $(LINK) -o $@ main.o -L. -llr
liblr.a: left.o right.o
	rm -f $@
	$(AR) rcs $@ $^
two: program.o other.o
	$(CXX) $(LINK) -o $@ $^
%.o: %.c
	$(CC) $(FLAGS) -c -o $@ $<
%.o: %.cpp
	$(CXX) $(FLAGS) -c -o $@ $<
M

# build FLAGS [VARIABLE=VALUE...]: everything from the start
build() {
    flags=$1
    shift
    rm -f ./*.o ./*.a one two
    make FLAGS="$flags" "$@" >"$work/log" 2>&1 && return
    cat "$work/log"
    exit 1
}

run() { ./one && ./one 1 2 && ./one 5 8 0 && ./two && ./two 1 2 3; }

# counts FILE: its counts, one a line, those of the two ways of a decision together; where in a line
# a decision stands, among several, is not said the same way by all
counts() {
    awk -F '[:,]' '
        $1 == "SF" { sub("^SF:.*/", ""); name = $0 }
        $1 == "DA" { print name, "line", $2, $3 }
        $1 == "FN" { sub("^FN:", ""); print name, "function", $0 }
        $1 == "FNDA" { sub("^FNDA:", ""); print name, "calls", $0 }
        $1 == "BRDA" && !first { first = $5; next }
        $1 == "BRDA" { print name, "branch", $2, first, $5; first = "" }' "$1" | sort
}

# is_expected WHAT: of the report in "$work/info" what is in "$work/expected"
is_expected() {
    counts "$work/info" >"$work/actual"
    expect_file "$1" "$work/expected" "$work/actual"
}

# compare WHAT [FLAG...]: the driver leaves link-time optimisation out, so clang's own build has none
compare() {
    what=$1
    shift
    native="$*"
    native=${native/-flto/}
    build "$native -fprofile-instr-generate -fcoverage-mapping" "CC=$clang" "CXX=$clang++" AR=ar \
        LINK="$native -fprofile-instr-generate"
    rm -f "$work"/native/*
    (export LLVM_PROFILE_FILE="$work/native/%p.profraw" && run)
    "$tools/llvm-profdata" merge -o "$work/native/all" "$work"/native/*.profraw
    "$tools/llvm-cov" export -format=lcov -instr-profile="$work/native/all" one -object two \
        >"$work/native/info"
    lltcov clean --all >/dev/null
    build "$*" "CC=lltwrapper $clang" "CXX=lltwrapper $clang++" "AR=lltwrapper ar" LINK="$*"
    run
    lltcov export --lcov -o "$work/info" 2>"$work/err" || true
    counts "$work/native/info" >"$work/expected"
    is_expected "$what"
}

compare 'as it is' -O0
compare 'with debug information' -O0 -g
compare 'position-independent' -O1 -fPIC
compare 'optimised' -O2 -ffunction-sections
compare 'optimised more' -O3 -march=native
compare 'for link-time optimisation' -O2 -flto

LLTCOV_COUNT=lines lltcov export --lcov -o "$work/info" 2>"$work/err" || true
sed -i '/ branch /d' "$work/expected"
is_expected 'without branches'

touch sum.h
lltcov export --lcov -o "$work/info" 2>"$work/err" || true
counts "$work/native/info" | sed '/^sum.h /d' >"$work/expected"
is_expected 'a changed header, whose lines are left out'

finish
