#!/bin/bash
# What a step costs for each source, in small and large projects: processor time of all processes of the
# step, divided by the number of sources. Small projects are measured several times.
# usage: large.sh [SOURCES...]     100 1000 5000; the first one is what the others are compared with
# shellcheck source=bench/figures.sh
. "$(dirname "${BASH_SOURCE[0]}")/figures.sh"

sizes=("$@")
[ $# -gt 0 ] || sizes=(100 1000 5000)
most=$((sizes[-1] > 1000 ? 1000 : sizes[-1]))
steps=(compile archive link run export status doctor)

# worked LIST COMMAND...: appends the milliseconds of processor time that the command takes
worked() {
    local list=$1
    shift
    local TIMEFORMAT='%3U %3S'
    { time logged "$list" "$@" 2>&3; } 3>&2 2>"$work/time"
    awk '{ print ($1 + $2) * 1000 }' "$work/time" >>"$work/$list.times"
}

# measure N: all steps, in a new project of N sources
measure() {
    rm -rf "$place/tree" "$place/project"
    logged large_project "$root/bench/large_project.sh" "$1" "$place/tree"
    wrapper_environment "$root/build/release"
    export LLT_WRAP=1
    cd "$place/tree"
    worked "compile.$1" make -j "$(nproc)" objects
    worked "archive.$1" make libraries
    worked "link.$1" make programs
    worked "run.$1" make run
    worked "export.$1" lltcov export --lcov -o "$work/report.info"
    worked "status.$1" lltcov status
    worked "doctor.$1" lltcov doctor
}

begin_bench large
for size in "${sizes[@]}"; do
    rounds=$((most / size > 5 ? 5 : most / size < 1 ? 1 : most / size))
    say "$size sources, $rounds times"
    for ((round = 0; round < rounds; round++)); do (measure "$size"); done
done
rm -rf "$place/tree" "$place/project"

# per_source STEP SIZE: milliseconds
per_source() { awk "BEGIN { printf \"%.3f\", $(typical "$1.$2") / $2 }"; }

printf '%-10s' 'ms/source'
printf '%12d' "${sizes[@]}"
for step in "${steps[@]}"; do
    printf '\n%-10s' "$step"
    for size in "${sizes[@]}"; do printf '%12s' "$(per_source "$step" "$size")"; done
done
echo
for step in "${steps[@]}"; do
    for size in "${sizes[@]:1}"; do
        result "$step: a source, $size to ${sizes[0]}" \
            "$(awk "BEGIN { printf \"%.2f\", $(per_source "$step" "$size") / $(per_source "$step" "${sizes[0]}") }")" x 1
    done
done
