# shellcheck shell=bash
# What every script test stands on, to be sourced first: a scrubbed environment with the built programs
# first on PATH, an empty directory as the current one, one way to compare, to skip and to end.
#
#     NAME_test.sh PROGRAMS [ARGUMENT...]     PROGRAMS: the directory of the built programs
#
# It sets `root` (the source tree), `programs`, `work` (the directory), `compiler` (CC, else gcc), and
# takes PROGRAMS from the arguments. The directory is removed after a success, kept and named after a failure.
set -u
unset CDPATH
for variable in $(compgen -e); do
    case $variable in
        PATH | PWD | HOME | TMPDIR | STRICT | CC | *_proxy | *_PROXY | *SAN_OPTIONS) ;;
        *) unset "$variable" ;;
    esac
done
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
programs=$(cd "${1:?no directory of the programs}" && pwd) || exit 2
shift
# shellcheck disable=SC2034 # for the tests
compiler=${CC:-gcc}
unset CC
export PATH=$programs:$PATH LC_ALL=C TZ=UTC CCACHE_DISABLE=1
work=$(mktemp -d "${TMPDIR:-/tmp}/$(basename "$0" .sh).XXXXXX") && cd -P "$work" || exit 2
work=$PWD cases=0 failures=0
said=/dev/null # a file whose end explains a failure: what was said last

leave() {
    local status=$?
    cd /
    if [ $status = 0 ] || [ $status = 77 ]; then
        chmod -R u+w "$work" && rm -rf "$work"
    else
        echo "data of this test: $work" >&2
    fi
}
trap leave EXIT

# expect WHAT EXPECTED ACTUAL
expect() {
    cases=$((cases + 1))
    [ "$2" != "$3" ] || return 0
    failures=$((failures + 1))
    echo "FAILED $1 (< expected, > actual)"
    diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") ||
        tail -n 20 "$said" 2>/dev/null || true
}

# expect_file WHAT EXPECTED ACTUAL: the same of what two files hold, and the first holds something
expect_file() { expect "$1" "$(grep . "$2" || echo something)" "$(cat "$3")"; }

# finish: the last line of a test
finish() {
    echo "$cases cases, $failures failed"
    exit $((cases == 0 || failures > 0))
}

# skip WHY: ends a test that cannot be made here
skip() {
    echo "skipped: $*"
    exit 77
}

# needs PROGRAM...: the test is skipped without them
needs() {
    local program
    for program; do command -v "$program" >/dev/null || skip "$program is missing"; done
}

# enter_project DIRECTORY: the settings of a project whose data go into the directory itself, as a path
# that was set before does, and no longer those of another one
enter_project() {
    unset lltcovRootpath
    qmr_current_prj_path=$1
    # shellcheck source=toolset/TUSK_INIT.SH
    . "$root/toolset/TUSK_INIT.SH"
}

# logged COMMAND...: quiet while all is well
logged() {
    "$@" >"$work/log" 2>&1 && return
    tail -n 40 "$work/log" >&2
    echo "FAILED: $*" >&2
    return 1
}
