#!/bin/bash
# Runs benchmarks, prints each ratio beside its goal and writes build/bench/*.json; all of them takes an hour.
# usage: all.sh [NAME [ARGUMENT...]]
#     NAME: cores, command, archive, link, large, run or a sample project, with the arguments of the script
#     of that name here (of build_time.sh for a project); or quick: all with small numbers, but for what
#     runs sample projects
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cores() { # cores [SECONDS]: for each of the cores
    mkdir -p build/bench
    cmake --preset release >build/bench/cores.log
    cmake --build --preset release --target bench_cores >>build/bench/cores.log ||
        { tail build/bench/cores.log >&2 && return 1; }
    build/release/bench_cores --benchmark_min_time="${1:-0.5}" --benchmark_out=build/bench/cores.json
}

case ${1:-all} in
    all)
        cores
        bench/command.sh
        bench/archive.sh
        bench/link.sh
        bench/build_time.sh zlib
        bench/build_time.sh lz4
        bench/build_time.sh jsoncpp 5 0.95
        bench/run_time.sh
        bench/large.sh
        ;;
    quick)
        cores 0.01
        bench/command.sh 1
        bench/archive.sh 3 20
        bench/link.sh 1 5
        bench/build_time.sh hello 1
        bench/large.sh 100 200
        ;;
    cores) "$@" ;;
    command | archive | link | large) "bench/$1.sh" "${@:2}" ;;
    run) bench/run_time.sh "${@:2}" ;;
    *) bench/build_time.sh "$@" ;;
esac
