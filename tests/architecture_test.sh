#!/bin/bash
# Holds the table of ARCHITECTURE.md against the files: fails for a row that names no file, and for
# a unit (a source and the header of its name) that no row covers. A row that names a directory covers
# all that is in it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# places: what the rows of the table name, a path from the root in each line. A name without a slash
# stands in the directory of the path before it.
places() {
    sed -n '/^| where |/,/^$/ { /^| `/p }' ARCHITECTURE.md | cut -d '|' -f 2 |
        awk -F '`' '{
            for (i = 2; i < NF; i += 2) {
                if ($i ~ /\//) { directory = $i; sub(/\/?[^\/]*\/?$/, "", directory) }
                else if (directory != "") $i = directory "/" $i
                sub(/\/$/, "", $i); print $i
            }
        }'
}

units() {
    find . -name '.?*' -prune -o -path ./build -prune -o \( -name '*.c' -o -name '*.cpp' -o -name '*.h' \) -print |
        sed 's/^\.\///; s/\.[a-z]*$//' | sort -u
}

# covers PLACE UNIT: the place is the unit, a pattern for it, or a directory above it
covers() {
    # shellcheck disable=SC2254 # a place may be a pattern
    case $2 in ${1%.[ch]*} | $1/*) return 0 ;; esac
    return 1
}

mapfile -t places < <(places)
mapfile -t units < <(units)
[ "${#places[@]}" -gt 0 ] || { echo "ARCHITECTURE.md has no table of places" >&2 && exit 1; }

failures=0
for place in "${places[@]}"; do
    compgen -G "$place" >/dev/null || compgen -G "$place.[ch]*" >/dev/null && continue
    echo "ARCHITECTURE.md: the table names '$place', which is not there" >&2
    failures=1
done
for unit in "${units[@]}"; do
    for place in "${places[@]}"; do
        covers "$place" "$unit" && continue 2
    done
    echo "ARCHITECTURE.md: no row of the table covers $unit" >&2
    failures=1
done
exit $failures
