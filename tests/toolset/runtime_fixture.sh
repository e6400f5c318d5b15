# shellcheck shell=bash
# Programs that count, and what their dump files add up to. $1 and $2 are the folders of the
# runtime's sources and libraries; what follows happens in a fresh directory.
sources=$1
export binaries=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
cd "$work" || exit 2
passed=0 failed=0

build() { # build OUTPUT OPTION...
    output=$1
    shift
    ${CC:-cc} -std=gnu99 -O1 -Wall -Wextra -Wno-unused-parameter -I"$sources" \
        "$here/runtime_program.c" "$@" -o "$output" || exit 2
}
export exec_part=$here/runtime_exec.c

# The counts of a file, one a line, the number of processes first; nothing of a file whose size
# does not fit its header.
words() {
    local size
    size=$(sed -n '/^counts /{s///p;q}' "$1")
    [ "$(stat -c %s "$1")" = $(($(sed '/^counts /q' "$1" | wc -c) + ${size:-1})) ] || return
    tail -c "$size" "$1" | od -An -v -w8 -tu8 --endian="$(sed -n '/^order /{s///p;q}' "$1")"
}

# "COUNTER=SUM ..." of first.c over all dump files of the module, and the number of processes; a file
# that is not whole makes it "torn"
sums() {
    for file in root/"$1".*.lltcov; do
        [ ! -s "$file" ] || echo new "$(words "$file" | tr '\n' ' ')"
    done | awk '{ torn += NF != 49; runs += $2; for (i = 3; i < 43; ++i) sum[i - 3] += $i }
        END { if (torn) printf "torn "
            for (i = 0; i < 40; ++i) if (sum[i] > 0) printf "%d=%d ", i, sum[i]
            print "of " runs + 0 }'
}

files() { # files [PATTERN]
    find root -type f -name "${1:-*.lltcov}" | wc -l
}

expect() { # expect WHAT EXPECTED ACTUAL
    if [ "$2" = "$3" ]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        printf 'FAILED %s\n  expected: %s\n  actual:   %s\n' "$1" "$2" "$3"
    fi
}

finish() {
    printf '%d passed, %d failed\n' "$passed" "$failed"
    exit $((failed > 0))
}
