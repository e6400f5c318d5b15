#!/bin/bash
# SIGKILL at the N-th system call of a step, then the step again: it leaves what it leaves
# undisturbed, and nothing beside it.
# usage: kills_test.sh PROGRAMS [SCENARIO...]
# shellcheck source=tests/faults/scenarios.sh
. "$(dirname "$0")/scenarios.sh"

# killed_at N: at the N-th call of all. A tracer counts the uses of each call by itself.
killed_at() {
    local call
    call=$(sed -n "$1s/(.*//p" ../calls)
    disturbed -e inject="$call:signal=KILL:when=$(head -n "$1" ../calls | grep -c "^$call(")"
}

for name in "${@:-archive_1 again_3 compile link dump export clean clean_all}"; do
    for scenario in $name; do
        prepare "$scenario"
        sed -i '/^[a-z]/!d' ../calls # signals
        before=$failures runs=0 killed=0
        for ((n = first; n < calls; n += stride)); do
            killed_at "$n"
            [ "$status" != 137 ] || killed=$((killed + 1))
            recovers "$scenario killed at call $n: $(sed -n "${n}p" ../calls)"
            runs=$((runs + 1))
        done
        # Memory that the system places elsewhere may cost a call more or less.
        expect "$scenario: nearly each was killed" yes "$( ((killed * 20 >= runs * 19)) && echo yes || echo "$killed of $runs")"
        echo "kill at each call of $scenario: $killed of $calls, $((failures - before)) failed"
    done
done
finish
