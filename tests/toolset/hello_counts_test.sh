#!/bin/bash
# Of the small project hello lltcov says the same as gcov, at each level of optimisation.
# Other projects: compare_gcov.sh PROGRAMS PROJECT [FLAGS].
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
needs jq
said=$work/said
for flags in '-O0 -g' '-O2 -g' -O3; do
    "$root/tests/toolset/compare_gcov.sh" "$programs" hello "$flags" >"$said" 2>&1
    expect "$flags" 0 $?
done
finish
