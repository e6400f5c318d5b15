#!/bin/bash
# Times whole builds of a sample project: plain, through lltwrapper with the tool set, and with
# gcc --coverage.
# usage: build_time.sh [NAME [ROUNDS [GOAL]]]     GOAL: of the wrapped build's time to that with gcov
# shellcheck source=bench/turns.sh
. "$(dirname "${BASH_SOURCE[0]}")/turns.sh"

rounds=${2:-7}

# From the configured tree.
time_build() {
    set_up "$1"
    rm -rf "${place:?}/$1"
    cp -a "$place/$1.configured" "$place/$1"
    cd "$place/$1"
    LLT_WRAP=1 timed "$1" logged "$1.build" build_project "$name"
}

fetch_or_hello "${1:-zlib}" "$root/build/bench"
prepare "$name" "$root/build/bench/$name"
begin_results "build-$name"
say "$name: $rounds builds of each kind in turn, on $(nproc) processors"
for variant in "${variants[@]}"; do
    (make_tree "$variant")
    cp -a "$place/$variant" "$place/$variant.configured"
done
for ((round = 0; round < rounds; round++)); do
    for variant in "${variants[@]}"; do (time_build "$variant"); done
done
printf '%-10s %12s %12s %18s\n' build 'minimum ms' 'median ms' 'median to plain'
for variant in "${variants[@]}"; do
    printf '%-10s %12s %12s %18s\n' "$variant" "$(nth 1 "$variant")" "$(typical "$variant")" \
        "$(ratio "$variant" plain)"
done
against "$name: build, wrapped to gcov" wrapped gcov "${3:-1.05}"
