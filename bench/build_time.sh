#!/bin/bash
# Times whole builds of a sample project: plain, through lltwrapper with the tool set, and with
# gcc --coverage; the builds take turns, so that a busy moment of the machine hits all of them.
# usage: build_time.sh [NAME [ROUNDS]]      (./dev bench builds the program first)
# shellcheck source-path=SCRIPTDIR
. "$(dirname "${BASH_SOURCE[0]}")/../examples/build_twice.sh"

variants=(plain wrapped gcov)
rounds=${2:-7}

# set_up VARIANT: the environment of a build
set_up() {
    case $1 in
        wrapped) wrapper_environment "$root/build/release" ;;
        gcov) export CC='gcc --coverage' CXX='g++ --coverage' ;;
    esac
}

# One tree for each, configured once.
make_tree() {
    set_up "$1"
    cp -a "$work/source" "$place/$1"
    cd "$place/$1"
    LLT_WRAP=0 logged "$1.configure" configure_project "$name"
    cp -a "$place/$1" "$place/$1.configured"
}

# Milliseconds of one build from the configured tree, appended to VARIANT.times.
time_build() {
    set_up "$1"
    rm -rf "${place:?}/$1"
    cp -a "$place/$1.configured" "$place/$1"
    cd "$place/$1"
    local began=${EPOCHREALTIME/[.,]/}
    LLT_WRAP=1 logged "$1.build" build_project "$name"
    echo $(((${EPOCHREALTIME/[.,]/} - began) / 1000)) >>"$work/$1.times"
}

# nth N VARIANT: the N-th smallest time
nth() { sort -n "$work/$2.times" | sed -n "$1p"; }

fetch_or_hello "${1:-zlib}" "$root/build/bench"
prepare "$name" "$root/build/bench/$name"
say "$name: $rounds builds of each kind in turn, on $(nproc) processors"
for variant in "${variants[@]}"; do (make_tree "$variant"); done
for ((round = 0; round < rounds; round++)); do
    for variant in "${variants[@]}"; do (time_build "$variant"); done
done
middle=$(((rounds + 1) / 2))
printf '%-10s %12s %12s %18s\n' build 'minimum ms' 'median ms' 'median to plain'
for variant in "${variants[@]}"; do
    printf '%-10s %12s %12s %18s\n' "$variant" "$(nth 1 "$variant")" "$(nth $middle "$variant")" \
        "$(awk "BEGIN { printf \"%.2f\", $(nth $middle "$variant") / $(nth $middle plain) }")"
done
