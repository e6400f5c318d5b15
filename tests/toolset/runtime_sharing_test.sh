#!/bin/bash
# The files that many processes share: at once, while some are killed or stopped, and damaged ones.
# usage: runtime_sharing_test.sh PROGRAMS      RUNS in the environment: how many, 64 at a time
runs=${RUNS:-3000}
# shellcheck source=tests/toolset/runtime_fixture.sh
. "$(dirname "$0")/runtime_fixture.sh"
build static "$exec_part" "$binaries/liblltcov_rt.a" -ldl -pthread

export LLTCOV_ROOT=root
./static exit
first=$(echo root/*.0.lltcov)
hash=${first%.0.lltcov}
hash=${hash##*.}
slot() { echo "root/program-m.Q1.$hash.$1.lltcov"; }

# many at once
rm -rf root
seq "$runs" | xargs -P 64 -n 1 ./static exit
expect "64 at once" "0=$runs of $runs" "$(sums program-m)"
expect "in few files" yes "$([ "$(files)" -le 16 ] && echo yes)"
expect "with one beside each" "$(files)" "$(files '.*.tmp')"

# Writers that are killed: each of their dumps that ended is there, and at most one more.
rm -rf root
for round in 1 2 3 4 5; do (
    for writer in 1 2 3 4 5 6 7 8; do
        timeout -s KILL "0.0$((round * writer + 10))" ./static endless \
            > "done.$round.$writer" &
    done
    wait
) done 2> messages
dumped=$(cat done.* | wc -c)
total=$(sums program-m | sed -n 's/^0=\([0-9]*\) of .*/\1/p')
expect "killed writers" yes "$([ "$total" -ge "$dumped" ] && [ "$total" -le $((dumped + 40)) ] &&
    [ "$dumped" -gt 40 ] && echo yes || echo "$(sums program-m), $dumped were done")"
./static exit
expect "a run after them" "$((total + 1))" "$(sums program-m | sed 's/^0=\([0-9]*\) of .*/\1/')"

# What lies beside a slot is used, unless it is a file of another name too.
beside=root/.$(basename "$(slot 0)").tmp
head -c 9000 /dev/zero | tr '\0' y > outside
for make in 'cp' 'ln' 'ln -s'; do
    rm -rf root
    mkdir root
    $make "$PWD/outside" "$beside"
    ./static exit
    ./static exit
    expect "$make beside: a run" "0=2 of 2 in 1" "$(sums program-m) in $(files)"
done
expect "others are left alone" 9000 "$(tr -dc y < outside | wc -c)"

# A process that is stopped while it has a slot blocks nobody.
milliseconds() {
    local start
    start=$(date +%s%N)
    "$@"
    echo $((($(date +%s%N) - start) / 1000000))
}
rm -rf root
mkdir root
holders=()
hold() { # hold SLOT...
    for held; do
        (flock -x 9 && exec sleep 60) 9>> "$(slot "$held")" &
        holders+=($!)
        disown $!
        while flock -n "$(slot "$held")" true; do sleep 0.01; done
        kill -STOP $!
    done
}
hold 0
time_taken=$(milliseconds ./static exit)
expect "one slot is held: time" yes "$([ "$time_taken" -lt 500 ] && echo yes || echo "$time_taken ms")"
expect "one slot is held" "0=1 of 1" "$(sums program-m)"
expect "the next is taken" 1 "$(words "$(slot 1)" | head -n 1 | xargs)"
hold 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15
time_taken=$(milliseconds ./static exit)
expect "all slots are held: time" yes "$([ "$time_taken" -lt 4000 ] && echo yes || echo "$time_taken ms")"
expect "all slots are held" "0=2 of 2" "$(sums program-m)"
kill -KILL "${holders[@]}"
flock "$(slot 0)" true
./static exit
expect "a slot is free again" "0=3 of 3 in 17" "$(sums program-m) in $(files)"

# Files that are damaged stay as they are.
rm -rf root
./static exit
cp "$(slot 0)" whole
for slot in 0 1 2 3; do head -c 400 whole > "$(slot $slot)"; done
for slot in 4 5 6 7; do { cat whole; echo; } > "$(slot $slot)"; done
for slot in 8 9 10 11; do sed 's/^mode 1/mode 2/' whole > "$(slot $slot)"; done
for slot in 12 13; do mkdir "$(slot $slot)"; done
: > outside
for slot in 14 15; do ln -s ../outside "$(slot $slot)"; done
cp -a root damaged
./static dump__exit
mv "$(slot 16)" .
expect "damaged files stay" "" "$(rm root/.*.16.lltcov.tmp; diff -r --no-dereference root damaged)$(cat outside)"
rm -rf root
mkdir root
mv program-m.* root
expect "the next one is taken" "0=1 2=1 of 1" "$(sums program-m)"
rm -rf root
mkdir root
: > "$(slot 0)"
./static exit
expect "an empty file is a new one" "0=1 of 1 in 1" "$(sums program-m) in $(files)"

finish
