#!/bin/bash
# Tells the truth? Builds and tests a sample project with `gcc --coverage` and through lltwrapper and
# the tool set, and compares lines, functions and branches that gcov and lltcov report, with their
# counts. What differs between two runs of the one build with gcov is left out.
# usage: compare_gcov.sh PROGRAMS PROJECT [FLAGS]     PROGRAMS: the folder of lltwrapper and lltcov;
#        PROJECT: a row of examples/projects.sh; FLAGS: CFLAGS and CXXFLAGS, else the project's own
# Exit status 77: jq is missing or the project cannot be fetched.
set -euo pipefail
unset CDPATH MAKEFLAGS CC CXX AR CFLAGS CXXFLAGS CPPFLAGS LDFLAGS "${!qmr_@}" "${!llt@}" "${!LLT@}"
export LC_ALL=C CCACHE_DISABLE=1

programs=$1 project=$2
if [ $# -gt 2 ]; then
    export CFLAGS=$3 CXXFLAGS=$3
fi
tests=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d /tmp/compare_gcov.XXXXXX)
trap 'rm -rf "$work"' EXIT
# shellcheck source=examples/projects.sh
. "$tests/../../examples/projects.sh"
# shellcheck source=tests/toolset/against_gcov.sh
. "$tests/against_gcov.sh"

skip() {
    echo "skipped: $*"
    exit 77
}

# Compilers that measure coverage while LLT_WRAP is on, as the shims of lltcov do.
make_gcov_shims() {
    local tool real
    mkdir "$work/gcov"
    # shellcheck disable=SC2016 # the shim's own variables
    for tool in cc c++ gcc g++; do
        real=$(command -v $tool)
        printf '#!/bin/sh\n[ "$LLT_WRAP" = 0 ] || set -- --coverage "$@"\nexec %s "$@"\n' \
            "$real" >"$work/gcov/$tool"
        chmod +x "$work/gcov/$tool"
    done
}

# build SHIMS, each time in the same folder, as paths appear in the reports
build() {
    fresh_tree "$work/source"
    PATH=$work/$1:$PATH LLT_WRAP=0 logged configure_project "$project"
    PATH=$work/$1:$PATH LLT_WRAP=1 logged build_project "$project"
}

# run_tests SHIMS: addresses, times and random numbers are the same in each run
run_tests() {
    cd "$work/tree"
    PATH=$work/$1:$PATH LLT_WRAP=1 LD_PRELOAD=$work/steady.so logged run_steadily
}

run_steadily() {
    setarch -R bash -c '. "$1" && test_project "$2"' run \
        "$tests/../../examples/projects.sh" "$project"
}

command -v jq >/dev/null || skip 'jq is missing'
get_project "$project" "$work/source" || skip "no sources of $project"
gcc -O1 -fPIC -shared -o "$work/steady.so" "$tests/steady.c"
make_gcov_shims
build gcov
cp -a "$work/tree" "$work/built"
run_tests gcov
gcov_verdicts "$work/tree" >"$work/gcov.rows"
rm -rf "$work/tree"
mv "$work/built" "$work/tree"
run_tests gcov
gcov_verdicts "$work/tree" >"$work/again.rows"

logged "$programs/lltcov" shims "$work/shims"
export LLT_PROJECT=$work/project
# shellcheck source=examples/toolset/TUSK_INIT.SH
. "$tests/../../examples/toolset/TUSK_INIT.SH"
build shims
run_tests shims
logged "$programs/lltcov" export --lcov -o "$work/report.info"
tracefile_verdicts "$work/tree" <"$work/report.info" >"$work/lltcov.rows"
differing "$work/gcov.rows" "$work/again.rows" "$work/lltcov.rows" >"$work/result" || status=$?
sed "\$s/^/$project ${CFLAGS:-}: /" "$work/result"
exit ${status:-0}
