#!/bin/bash
# Disturbs every step at all places, and prints a table; status 1 when something did not hold.
# usage: all.sh PROGRAMS [TEST...]      TEST: kills, failing_calls, "kills link", ...
set -uo pipefail
programs=$1
shift
cd "$(dirname "${BASH_SOURCE[0]}")" || exit
export programs logs=$programs/faults

# Each line: a test, and a scenario of it, if it has several.
rows() {
    local scenario
    for scenario in archive_{1,3,12} again_{1,3,12} compile link dump export clean clean_all; do
        echo "kills $scenario"
        [[ $scenario = *_12 || $scenario = dump ]] || echo "failing_calls $scenario"
        [ "$scenario" = dump ] || echo "failing_allocations $scenario"
    done
    printf '%s\n' cut_files parallel runtime_sharing
}

# row TEST [SCENARIO]: all places, and a line of the table
row() {
    local log=$logs/$1${2:+-$2}.log outcome=held test=./$1_test.sh
    [ -e "$test" ] || test=../toolset/$1_test.sh
    STRIDE=1 FIRST=1 LIBRARIES=40 ROUNDS=20 RUNS=100000 "$test" "$programs" ${2:+"$2"} >"$log" 2>&1 ||
        outcome="see $log"
    printf '%-34s %10s  %s\n' "$*" "$(sed -n 's/ cases, .*//p' "$log")" "$outcome"
    [ "$outcome" = held ]
}
export -f row

rm -rf "$logs"
mkdir -p "$logs"
printf '%-34s %10s  %s\n' fault cases outcome
rows | grep -E "^($(IFS='|' && echo "${*:-.*}"))( |\$)" | xargs -P "$(nproc)" -I{} bash -c 'row {}'
