# shellcheck shell=bash
# Builds and tests a sample project twice, without lltwrapper and through it. To be sourced by a
# script of ./dev, which has built the program in build/release before.
set -euo pipefail
unset CDPATH
export LC_ALL=C
# Neither the caller's flags nor its coverage settings are to change what is built.
unset MAKEFLAGS CC CXX AR CFLAGS CXXFLAGS CPPFLAGS LDFLAGS "${!qmr_@}" "${!llt@}" "${!LLT@}"

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=examples/projects.sh
. "$root/examples/projects.sh"

say() { echo "$(basename "$0" .sh): $*"; }

die() {
    say "FAILED: $*" >&2
    exit 1
}

# logged LOG COMMAND...: output goes to LOG.log of the project's work directory
logged() {
    local log=$work/$1.log
    shift
    "$@" >"$log" 2>&1 && return
    tail -n 20 "$log" >&2
    die "$* (log: $log)"
}

# fetch NAME WORK: makes an empty work directory with the project's sources in it
fetch() {
    rm -rf "$2"
    mkdir -p "$2"
    get_project "$1" "$2/source"
}

# fetch_or_hello NAME DIRECTORY: as fetch, into DIRECTORY/NAME, or takes what needs no network; sets name
fetch_or_hello() {
    local reason
    name=$1
    reason=$(fetch "$name" "$2/$name" 2>&1) && return
    say "$reason; taking the bundled sample project instead"
    name=hello
    fetch hello "$2/hello"
}

# prepare NAME WORK: sets name, work and place. The tools get the project's path as one word, and
# build systems put the path of the sources into commands: a checkout path with a blank cannot
# serve as place.
prepare() {
    name=$1 work=$2 place=$2
    case $place in
        *[!A-Za-z0-9_./+,:=@%-]*)
            place=$(mktemp -d /tmp/lltwrapper.XXXXXX)
            trap 'rm -rf "$place"' EXIT
            ;;
    esac
}

# wrapper_environment DRIVERS: what a project that is built through lltwrapper and the drivers of
# that directory sets up. Its compilers and archivers are shims, which do nothing special in configure
# steps, with LLT_WRAP=0.
wrapper_environment() {
    logged shims "$root/build/release/lltcov" shims "$place/shims"
    PATH=$place/shims:$1:$PATH
    export LLT_PROJECT=$place/project
    # shellcheck source=toolset/TUSK_INIT.SH
    . "$root/toolset/TUSK_INIT.SH"
}

# build_and_test BUILD: in place/tree both times, as commands and outputs may hold its path. Leaves
# BUILD.built, a list of the files that the build made, BUILD.build.log and BUILD.test.log.
build_and_test() {
    rm -rf "$place/tree"
    cp -a "$work/source" "$place/tree"
    cd "$place/tree"
    LLT_WRAP=0 logged "$1.configure" configure_project "$name"
    find . -type f | sort >"$work/$1.configured"
    LLT_WRAP=1 logged "$1.build" build_project "$name"
    find . -type f | sort | comm -13 "$work/$1.configured" - >"$work/$1.built"
    LLT_WRAP=1 logged "$1.test" test_project "$name"
}

# Times differ from run to run, and so do the random numbers of libtommath's tests.
test_results() {
    sed -E -e 's/[0-9.]+ ?s(ec)?\b//' -e '/SEED|mp_to_[us]bin/d' "$work/$1.test.log"
}

compare_builds() {
    local list
    for list in configured built; do
        diff "$work/plain.$list" "$work/wrapped.$list" || die "$name: the builds made different files"
    done
    diff <(test_results plain) <(test_results wrapped) || die "$name: the tests gave other results"
}
