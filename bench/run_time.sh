#!/bin/bash
# Times programs of sample projects that were built plainly, through lltwrapper with the tool set and
# with gcc --coverage: long runs, many short ones, and the report of them.
# usage: run_time.sh [ROUNDS]
# shellcheck source=bench/turns.sh
. "$(dirname "${BASH_SOURCE[0]}")/turns.sh"

rounds=${1:-5}
short=1000
data=$root/build/bench/data

build_tree() {
    make_tree "$1"
    LLT_WRAP=1 logged "$1.build" build_project "$name"
}

# Each runs in the tree of a variant.
long_zlib() { ./minigzip <"$data" >/dev/null; }
long_lz4() { LD_LIBRARY_PATH=lib programs/lz4 -9 -q -c "$data" >/dev/null; }
many() {
    local i
    for ((i = 0; i < short; i++)); do "$@" >/dev/null; done
}
short_zlib() { many ./minigzip -c zlib.pc; }
short_libtommath() { many ./test trivial_stuff; }

# in_turn LIST COMMAND: in each variant, ROUNDS times
in_turn() {
    local round variant
    for ((round = 0; round < rounds; round++)); do
        for variant in "${variants[@]}"; do
            (cd "$place/$variant" && timed "$1.$variant" "$2")
        done
    done
    say "$name: $1 runs: $(for variant in "${variants[@]}"; do
        printf '%s %s ms, ' "$variant" "$(typical "$1.$variant")"
    done)wrapped to plain $(ratio "$1.wrapped" "$1.plain")"
}

use_project() {
    fetch "$1" "$root/build/bench/$1" || return
    prepare "$1" "$root/build/bench/$1"
    for variant in "${variants[@]}"; do (build_tree "$variant"); done
}

report_lltcov() { logged export lltcov export --lcov -o "$work/report.info"; }
report_lcov() { logged capture lcov --capture --directory "$place/gcov" -o "$work/gcov.info"; }

# After the runs: both tools have the same to tell.
time_reports() {
    local round
    set_up wrapped
    for ((round = 0; round < rounds; round++)); do
        timed report.lltcov report_lltcov
        timed report.lcov report_lcov
    done
    say "$name: report: lltcov $(typical report.lltcov) ms, lcov $(typical report.lcov) ms"
}

begin_results run
cat /usr/bin/* 2>/dev/null | head -c 60000000 >"$data" || true
if use_project zlib; then
    in_turn long long_zlib
    against 'minigzip, 60 MB: wrapped to gcov' long.wrapped long.gcov 1.03
    in_turn short short_zlib
    against "$short runs of minigzip: wrapped to gcov" short.wrapped short.gcov 0.65
fi
if use_project libtommath; then
    in_turn short short_libtommath
    against "$short runs of 150 objects: wrapped to gcov" short.wrapped short.gcov 0.65
    (time_reports)
    against 'report: lltcov export to lcov --capture' report.lltcov report.lcov 0.10
fi
if use_project lz4; then
    in_turn long long_lz4
    against 'lz4, 60 MB: wrapped to gcov' long.wrapped long.gcov 1.03
fi
