#!/bin/bash
# A system call of a step fails at its N-th use: the step does all the same what it does undisturbed,
# or says on standard error that it did not; the step after it repairs everything.
# usage: failing_calls_test.sh PROGRAMS [SCENARIO...]
# shellcheck source=tests/faults/scenarios.sh
. "$(dirname "$0")/scenarios.sh"

# Calls, and how they fail.
faults='openat EMFILE EACCES EINTR
read EIO EINTR
write ENOSPC EIO EINTR
copy_file_range EXDEV ENOSPC EINTR
getdents64 EIO
newfstatat EACCES
close EIO
rename ENOSPC EACCES
mkdir ENOSPC EACCES
unlink EACCES
clone,clone3,vfork EAGAIN
wait4 EINTR
flock EINTR ENOLCK
mmap ENOMEM'

# As a shell sees a process that a signal ended.
ended_by_signal() { [ "$status" -gt 128 ] && [ "$status" -lt 160 ]; }

check() { # check CALL ERROR N
    disturbed -e inject="$1:error=$2:when=$3"
    local what
    what="$scenario: $1 $2 at use $3: $(grep -m1 INJECTED ../trace)"
    ended_by_signal && expect "$what" 'no crash' "$status $(cat ../err)"
    tree >../left
    if [ "$status" = 0 ] && [ ! -s ../err ] && ! cmp -s ../left ../undisturbed; then
        expect "$what: silent, status 0" "$(cat ../undisturbed)" "$(cat ../left)"
    fi
    # A step that could not read what was superseded leaves it for good, and says so.
    recovers "$what, and the step after it" without_superseded
}

fail_each() { # fail_each CALL ERROR...
    local call=$1 error n uses loader=0
    uses=$(grep -cE "^(${call//,/|})\(" ../calls)
    # What comes before the first munmap are calls of the dynamic loader, which crashes without memory.
    [ "$call" != mmap ] || ! grep -q ld.so.cache ../calls ||
        loader=$(sed '/^munmap/q' ../calls | grep -c '^mmap(')
    shift
    for error; do
        for ((n = 1 + loader + first % stride; n <= uses; n += stride)); do
            check "$call" "$error" "$n"
            runs=$((runs + 1))
        done
    done
}

for name in "${@:-archive_3 again_1 compile link export clean clean_all}"; do
    for scenario in $name; do
        prepare "$scenario"
        before=$failures runs=0
        while read -ra fault; do fail_each "${fault[@]}"; done <<<"$faults"
        echo "each call of $scenario failing: $runs runs, $((failures - before)) failed"
    done
done
finish
