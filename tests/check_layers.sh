#!/bin/bash
# Fails when a room includes from one that it must not know, or when files include each other in a
# circle; names file and line. What is a room and what it may look into:
# usage: check_layers.sh [SOURCE_DIR]
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

# ROOM: the rooms that it may include from, beside itself.
rooms() {
    cat <<'END'
commonfunc:
contract: commonfunc
lltld: contract commonfunc
lltwrapper: lltld contract commonfunc
lltcov/common: contract commonfunc
lltcov/report: lltcov/common contract commonfunc
lltcov/explain: lltcov/common lltwrapper lltld contract commonfunc
lltcov/shims: lltcov/common contract commonfunc
lltcov/run: lltcov/shims lltcov/report lltcov/common contract commonfunc
lltcov/doctor: lltcov/shims lltcov/report lltcov/common lltwrapper lltld contract commonfunc
toolset/common: contract commonfunc
toolset/counters: contract commonfunc
toolset/lltcc: toolset/counters toolset/common contract commonfunc
toolset/linkdriver: toolset/counters toolset/common lltld contract commonfunc
toolset/runtime: contract
END
}

# includes: "FILE:LINE ROOM INCLUDED", for each include of a file of the project; headers of the
# file's own directory may stand without it
includes() {
    grep -rnE --include='*.c' --include='*.cpp' --include='*.h' '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' \
        commonfunc contract lltld lltwrapper lltcov toolset |
        awk -F: '{
            room = $1; sub(/\/[^\/]*$/, "", room)
            split($3, part, "\""); to = part[2]
            if (to !~ /\//) to = room "/" to
            print $1 ":" $2, room, to
        }'
}

violations=0
while IFS=: read -r room allowed; do
    compgen -G "$room/*.[ch]*" >/dev/null ||
        { echo "check_layers: $room/ in $PWD holds no sources: nothing to check" >&2 && exit 2; }
done < <(rooms)

while read -r place room to; do
    allowed=$(rooms | awk -F: -v room="$room" '$1 == room { print $1, $2; found = 1 } END { exit !found }') ||
        { [ "$room" = lltcov ] && continue; }
    for other in $allowed; do
        [ "${to%/*}" = "$other" ] && continue 2
    done
    echo "$place: $room/ must not include \"$to\"" >&2
    violations=1
done < <(includes)

# A unit is a header and the source of its name: what either includes, both depend on.
circle=$(includes | awk '{ sub(/:.*/, "", $1); sub(/\.[^.]*$/, "", $1); sub(/\.[^.]*$/, "", $3)
    if ($1 != $3) print $1, $3 }' | tsort 2>&1 >/dev/null | sed 's/^tsort: //') || true
if [ -n "$circle" ]; then
    printf 'check_layers: these include each other in a circle:\n%s\n' "$circle" >&2
    violations=1
fi
exit $violations
