#!/bin/bash
# Tells the truth? Builds and tests a sample project once with `gcc --coverage` and once through
# lltwrapper and the tool set, and compares the lines that gcov and lltcov report: in each line that
# both report, hit or not hit has to be the same, but for the lines that compare_gcov.txt lists.
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

skip() {
    echo "skipped: $*"
    exit 77
}

logged() {
    "$@" >"$work/log" 2>&1 && return
    tail -n 40 "$work/log" >&2
    echo "FAILED: $*" >&2
    exit 1
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

# build_and_test SHIMS: both times in the same folder, as paths appear in the reports
build_and_test() {
    rm -rf "$work/tree"
    cp -a "$work/source" "$work/tree"
    cd "$work/tree"
    PATH=$work/$1:$PATH LLT_WRAP=0 logged configure_project "$project"
    PATH=$work/$1:$PATH LLT_WRAP=1 logged build_project "$project"
    PATH=$work/$1:$PATH LLT_WRAP=1 logged test_project "$project"
}

# Both give lines "FILE LINE HIT", HIT 0 or 1, files relative to the project's folder.

lines_of_gcov() {
    find "$work/tree" -name '*.gcno' | while read -r notes; do
        cd "$(dirname "$notes")"
        gcov --json-format --stdout "$(basename "$notes")"
    done 2>/dev/null | jq -r '.current_working_directory as $folder | .files[] |
        (if .file | startswith("/") then .file else $folder + "/" + .file end) as $file |
        .lines[] | "\($file) \(.line_number) \(.count)"' | project_lines
}

lines_of_lltcov() {
    "$programs/lltcov" export --lcov | awk -F '[:,]' '
        $1 == "SF" { file = $2 }
        $1 == "DA" { print file, $2, $3 }' | project_lines
}

# A file may be in several objects; its path may go over "..".
project_lines() {
    awk -v root="$work/tree/" '{
            while (sub(/\/[^\/]+\/\.\.\//, "/", $1) || sub(/\/\.\//, "/", $1)) { }
            if (index($1, root) == 1) hit[substr($1, length(root) + 1) " " $2] += $3
        }
        END { for (line in hit) print line, (hit[line] > 0) }' | sort
}

# Rows of compare_gcov.txt: project, flags ("*": any), file, a regular expression for the line's text
judge() {
    awk -v project="$project" -v flags="${CFLAGS:-}" -v list="$tests/compare_gcov.txt" \
        -v root="$work/tree/" '
        BEGIN {
            while ((getline row < list) > 0) {
                split(row, field, / +[|] +/)
                if (row !~ /^#/ && field[1] == project && (field[2] == "*" || field[2] == flags)) {
                    file[++listed] = field[3]
                    text[listed] = field[4]
                }
            }
        }
        FNR == NR { gcov[$1 " " $2] = $3; next }
        !(($1 " " $2) in gcov) { alone++; next }
        { both++ }
        gcov[$1 " " $2] != $3 {
            differ++
            path = root $1
            for (n = 0; n < $2; n++) getline line < path
            close(path)
            known = 0
            for (i = 1; i <= listed; i++) if (file[i] == $1 && line ~ text[i]) known = used[i] = 1
            unknown += !known
            print $1 ":" $2 ": gcov " gcov[$1 " " $2] ", lltcov " $3 (known ? ", listed:" : ":") line
        }
        END {
            for (i = 1; i <= listed; i++) if (!used[i]) print "no difference any more: " file[i] " | " text[i]
            printf "%s %s: %d lines in both reports, %d differ, %d of them unlisted; %d only in gcov, %d only in lltcov\n",
                project, flags, both, differ, unknown, length(gcov) - both, alone
            exit unknown > 0 || both == 0 || both * 10 < length(gcov) * 8
        }' "$work/gcov.lines" "$work/lltcov.lines"
}

command -v jq >/dev/null || skip 'jq is missing'
get_project "$project" "$work/source" || skip "no sources of $project"
make_gcov_shims
build_and_test gcov
lines_of_gcov >"$work/gcov.lines"

logged "$programs/lltcov" shims "$work/shims"
export LLT_PROJECT=$work/project
# shellcheck source=examples/toolset/TUSK_INIT.SH
. "$tests/../../examples/toolset/TUSK_INIT.SH"
build_and_test shims
lines_of_lltcov >"$work/lltcov.lines"
judge
