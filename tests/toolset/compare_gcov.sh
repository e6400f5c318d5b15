#!/bin/bash
# Does lltcov tell the truth? Builds and tests a sample project with `gcc --coverage` and through lltwrapper and
# the tool set, and compares lines, functions and branches that gcov and lltcov report, with their
# counts. Where they differ, gcov is asked again, with the texts of the programs moved by one byte and
# more: what it counts otherwise then depends on where data lie (hash functions read aligned keys by
# words) or on the run, and is left out.
# usage: compare_gcov.sh PROGRAMS PROJECT [FLAGS]     PROGRAMS: the directory of lltwrapper and lltcov;
#        PROJECT: a row of examples/projects.sh; FLAGS: CFLAGS and CXXFLAGS, else the project's own
# Exit status 77: jq is missing or the project cannot be fetched.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
set -e
# shellcheck source=tests/toolset/against_gcov.sh
. "$root/tests/toolset/against_gcov.sh"
# shellcheck source=examples/projects.sh
. "$root/examples/projects.sh"
project=$1
if [ $# -gt 1 ]; then
    export CFLAGS=$2 CXXFLAGS=$2
fi

# Compilers that measure coverage while LLT_WRAP is on, as the shims of lltcov do.
gcov_shims() {
    local tool real
    rm -rf "$work/shims"
    mkdir "$work/shims"
    # shellcheck disable=SC2016 # the shim's own variables
    for tool in cc c++ gcc g++; do
        real=$(command -v $tool)
        printf '#!/bin/sh\n[ "$LLT_WRAP" = 0 ] || set -- --coverage "$@"\nexec %s "$@"\n' \
            "$real" >"$work/shims/$tool"
        chmod +x "$work/shims/$tool"
    done
}

# Each time in the same directory, as paths appear in the reports.
build() {
    fresh_tree "$work/source"
    PATH=$work/shims:$PATH LLT_WRAP=0 logged configure_project "$project"
    PATH=$work/shims:$PATH LLT_WRAP=1 logged build_project "$project"
}

# Addresses, times and random numbers are the same in each run; even a longer environment would
# move the arguments of programs.
run_tests() {
    cd "$work/tree"
    # shellcheck disable=SC2016 # arguments of the inner shell
    PATH=$work/shims:$PATH LLT_WRAP=1 LD_PRELOAD=$work/steady.so logged setarch -R bash -ec \
        '. "$1" && test_project "$2"' run "$root/examples/projects.sh" "$project"
}

# ask_gcov NAME: NAME.rows
ask_gcov() {
    gcov_shims
    build
    run_tests
    gcov_verdicts "$work/tree" >"$work/$1.rows"
    rm -r "$work/shims"
}

# ask_gcov_again BYTES: a text of so many bytes comes before those of each program
ask_gcov_again() {
    printf '.section .rodata.str1.1,"aMS",%%progbits,1\n.fill %s,1,1\n.byte 0\n' $(($1 - 1)) |
        gcc -x assembler -c -o "$work/moved.o" -
    LDFLAGS="$work/moved.o ${LDFLAGS:-}" ask_gcov "again.$1"
}

compare() {
    differing "$work/gcov.rows" "$work/lltcov.rows" "$work"/again.*.rows >"$work/result"
}

shopt -s nullglob
needs jq
get_project "$project" "$work/source" || skip "no sources of $project"
gcc -O1 -fPIC -shared -o "$work/steady.so" "$root/tests/toolset/steady.c"
enter_project "$work/project"

ask_gcov gcov
logged lltcov shims "$work/shims"
build
run_tests
logged lltcov export --lcov --no-markers -o "$work/report.info"
tracefile_verdicts "$work/tree" <"$work/report.info" >"$work/lltcov.rows"
for bytes in 1 2 3; do
    if compare; then break; fi
    ask_gcov_again $bytes
done
compare && status=0 || status=1
sed "\$s/^/$project ${CFLAGS:-}: /" "$work/result"
exit "$status"
