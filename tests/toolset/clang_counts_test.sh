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
mkdir native
cp -r "$root/tests/toolset/counted" project
cd project
enter_project "$PWD"
cat >Makefile <<'M'
all: both statements throws
both: one.o libtwo.a
	$(CC) $(LINK) -o $@ one.o -L. -ltwo
libtwo.a: two.o
	rm -f $@
	$(AR) rcs $@ $^
statements: statements.o
	$(CC) $(LINK) -o $@ $^
throws: throws.o shapes.o
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
    rm -f ./*.o ./*.a
    logged make FLAGS="$flags" "$@"
}

run() { ./both && ./both 1 && ./statements && ./throws; }

# counts FILE: its counts, one a line, those of the two ways of a decision together; where in a line
# a decision stands, among several, is not said the same way by all
counts() {
    awk -F '[:,]' '
        $1 == "SF" { sub("^SF:.*/", ""); name = $0 }
        $1 == "DA" { print name, "line", $2, $3 }
        $1 == "FN" { sub("^FN:", ""); print name, "function", $0 }
        $1 == "FNDA" { sub("^FNDA:", ""); print name, "calls", $0 }
        $1 == "BRDA" { is_first = !is_first; if (is_first) { first = $5; next } }
        $1 == "BRDA" { print name, "branch", $2, first, $5 }' "$1" | sort
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
    "$tools/llvm-cov" export -format=lcov -instr-profile="$work/native/all" both -object statements -object throws \
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

touch all.h
lltcov export --lcov -o "$work/info" 2>"$work/err" || true
counts "$work/native/info" | sed '/^all.h /d' >"$work/expected"
is_expected 'a changed header, whose lines are left out'

finish
