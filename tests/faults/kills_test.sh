#!/bin/bash
# SIGKILL at the N-th system call of a step, then the step again: it leaves what it leaves
# undisturbed, and nothing beside it.
# usage: kills_test.sh PROGRAMS [SCENARIO...]
# shellcheck source=tests/faults/scenarios.sh
. "$(dirname "$0")/scenarios.sh"

for name in "${@:-archive_1 again_3 compile link dump export clean clean_all}"; do
    for scenario in $name; do
        prepare "$scenario"
        before=$failures runs=0
        for ((n = first; n < calls; n += stride)); do
            disturbed -e inject=all:signal=KILL:when="$n"
            recovers "$scenario killed at call $n: $(sed -n "${n}p" ../trace)"
            runs=$((runs + 1))
        done
        echo "kill at each call of $scenario: $runs of $calls, $((failures - before)) failed"
    done
done
finish
