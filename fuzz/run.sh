#!/bin/bash
# Runs fuzz targets one after the other, and ends with a table; status 1 when one found something. What
# is found, and the seeds that reach further, stay in BUILD: found/ and corpus/TARGET.
# usage: run.sh BUILD SECONDS [TARGET...]
set -euo pipefail
build=$1 seconds=$2 targets=("${@:3}")
cd "$(dirname "${BASH_SOURCE[0]}")"
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(basename -s .cpp targets/*.cpp)
table='' status=0

# fuzz_target TARGET: adds its row to the table
fuzz_target() {
    local target=$1 log=$build/$1.log outcome=clean
    mkdir -p "$build"/{found,"corpus/$target"}
    # The target changes its directory.
    "$build/fuzz/fuzz_$target" -max_total_time="$seconds" -timeout=60 -print_final_stats=1 \
        -artifact_prefix="$build/found/$target-" "$build/corpus/$target" "$PWD/seeds/$target" \
        >/dev/null 2>"$log" </dev/null || outcome="FAILED, see $log"
    table+=$(awk -v target="$target" -v outcome="$outcome" '
        /^stat::number_of_executed_units:/ { runs = $2 }
        /^stat::new_units_added:/ { seeds = $2 }
        END { printf "%-18s %12d %10d  %s", target, runs, seeds, outcome }' "$log")$'\n'
    [ "$outcome" = clean ]
}

for target in "${targets[@]}"; do
    [ -e "targets/$target.cpp" ] || { echo "run.sh: there is no target '$target'" >&2 && exit 2; }
    echo "fuzzing $target for $seconds s (log: $build/$target.log)"
    fuzz_target "$target" || status=1
done
printf '%-18s %12s %10s  %s\n%s' target runs 'new seeds' outcome "$table"
exit $status
