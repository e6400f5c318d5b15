# shellcheck shell=bash
# Measured times, and what is said of them: a list is a file of milliseconds, one a line; each ratio is
# printed beside its goal and goes into a file of JSON. To be sourced by all benchmarks; ./dev bench builds
# the program before.
# shellcheck source=examples/build_twice.sh
. "$(dirname "${BASH_SOURCE[0]}")/../examples/build_twice.sh"

export CCACHE_DISABLE=1 # meson takes it when it is there: the plain build would be of cached objects

# begin_results NAME: what is measured from now on goes to build/bench/NAME.json
begin_results() {
    results=$root/build/bench/$1.json
    mkdir -p "${results%/*}"
    jq -n --arg system "$(uname -srm)" --arg processors "$(nproc)" \
        '{system: $system, processors: ($processors | tonumber), results: []}' >"$results"
}

percent=50 # of a list's times, sorted: where the one is that stands for the list

# begin_bench NAME: makes an empty work directory, build/bench/NAME, for what needs no sample project. Such
# work is short: the time at a tenth of the sorted list says what it takes when nothing comes between.
begin_bench() {
    percent=10
    rm -rf "$root/build/bench/$1"
    mkdir -p "$root/build/bench/$1"
    prepare "$1" "$root/build/bench/$1"
    begin_results "$1"
    export LLT_PROJECT=$place/project
}

# timed LIST COMMAND...: appends its milliseconds to LIST.times of the work directory
timed() {
    local list=$work/$1.times began=${EPOCHREALTIME/[.,]/}
    shift
    "$@"
    echo $(((${EPOCHREALTIME/[.,]/} - began) / 1000)) >>"$list"
}

# compare ROUNDS RUNS PREPARE [LIST COMMAND]...: so many times, hyperfine starts each command RUNS times,
# after PREPARE each time unless that is empty. Many rounds of few runs: a busy moment of the machine
# hits all of the commands. The mean processor time of each round goes to LIST.work.
compare() {
    local rounds=$1 runs=$2 round list options=(--shell=none --style=none --export-json "$work/round.json")
    [ -z "$3" ] || options+=(--prepare "$3")
    shift 3
    local lists=() commands=()
    while [ $# -gt 0 ]; do
        lists+=("$1") commands+=("$2")
        shift 2
    done
    for ((round = 0; round < rounds; round++)); do
        logged hyperfine hyperfine --runs "$runs" "${options[@]}" "${commands[@]}"
        for list in "${!lists[@]}"; do
            jq ".results[$list].times[] * 1000" "$work/round.json" >>"$work/${lists[list]}.times"
            jq ".results[$list] | (.user + .system) * 1000" "$work/round.json" >>"$work/${lists[list]}.work.times"
        done
    done
}

# nth N LIST: the N-th smallest time
nth() { sort -g "$work/$2.times" | sed -n "$1p"; }

# typical LIST: the time that stands for the list
typical() { nth $((($(wc -l <"$work/$1.times") * percent + 99) / 100)) "$1"; }

# ratio LIST LIST
ratio() { awk "BEGIN { printf \"%.2f\", $(typical "$1") / $(typical "$2") }"; }

# result WHAT VALUE UNIT GOAL [WORK]: prints a value beside the most that it may be; WORK is what it is in
# processor time
result() {
    awk -v is="$2" -v unit="$3" -v goal="$4" -v what="$1" -v work="${5:-}" 'BEGIN {
        printf "%-52s %7s %s   goal: at most %s %s%s%s\n", what, is, unit, goal, unit,
            (is + 0 > goal + 0 ? " (missed)" : ""), (work != "" ? "   processor time " work " " unit : "") }'
    local changed
    changed=$(jq --arg what "$1" --argjson value "$2" --arg unit "$3" --argjson goal "$4" \
        --argjson work "${5:-null}" \
        '.results += [{what: $what, value: $value, unit: $unit, goal: $goal, processor_time: $work}]' "$results")
    echo "$changed" >"$results"
}

# against WHAT LIST LIST GOAL: prints the ratio beside its goal, and that of processor times, which a busy
# machine changes less
against() {
    local work_ratio=''
    [ ! -e "$work/$2.work.times" ] || work_ratio=$(ratio "$2.work" "$3.work")
    result "$1" "$(ratio "$2" "$3")" x "$4" "$work_ratio"
}
