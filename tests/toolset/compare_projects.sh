#!/bin/bash
# Compares what lltcov says of each project with gcov, by the project's own options and without
# optimisation; one line for each. Without names: all sample projects.
# usage: compare_projects.sh PROGRAMS [NAME...]
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
programs=$1
shift
if [ $# = 0 ]; then
    # shellcheck source=examples/projects.sh
    . "$here/../../examples/projects.sh"
    mapfile -t names < <(projects | cut -d ' ' -f 1)
    set -- "${names[@]}"
fi
failed=0
for project; do
    for flags in '' '-O0 -g'; do
        "$here/compare_gcov.sh" "$programs" "$project" ${flags:+"$flags"} | tee /dev/stderr | tail -n 1
        status=${PIPESTATUS[0]}
        # 77: it cannot be fetched.
        [ "$status" = 0 ] || [ "$status" = 77 ] || failed=1
    done
done
exit $failed
