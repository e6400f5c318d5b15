#!/bin/bash
# The N-th allocation of a step fails, or all from there on: the step does all the same what it does
# undisturbed, or says on standard error that it did not; the step after it repairs everything.
# usage: failing_allocations_test.sh PROGRAMS [SCENARIO...]
# shellcheck source=tests/faults/scenarios.sh
. "$(dirname "$0")/scenarios.sh"
[ -x "$programs/tests/lltwrapper_failing" ] || skip 'no programs with a failing allocator'

fail_allocation() { # fail_allocation N: status 1 when there is no such one
    begin
    rm -f ../failed
    local what="$scenario: allocation $1"
    FAILED_ALLOCATION=$work/$scenario/failed FAIL_ALLOCATION=$1 \
        "$programs/tests/$(basename "${step[0]}")_failing" "${step[@]:1}" >../log 2>../err
    status=$?
    [ -e ../failed ] || return
    [ "$status" -le 125 ] || expect "$what" 'no crash' "$status $(cat ../err)"
    tree >../left
    if [ "$status" = 0 ] && [ ! -s ../err ] && ! cmp -s ../left ../undisturbed; then
        expect "$what: silent, status 0" "$(cat ../undisturbed)" "$(cat ../left)"
    fi
    recovers "$what, and the step after it" without_superseded
    runs=$((runs + 1))
}

for name in "${@:-archive_3 again_1 compile link export clean clean_all}"; do
    for scenario in $name; do
        prepare "$scenario"
        before=$failures runs=0
        for ((n = first; ; n += stride)); do
            fail_allocation "$n" || break
            fail_allocation "-$n"
        done
        echo "each allocation of $scenario failing: $runs runs, $((failures - before)) failed"
    done
done
finish
