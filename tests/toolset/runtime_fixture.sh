# shellcheck shell=bash
# Programs that count, and what their dump files add up to. To be sourced.
# shellcheck source=tests/common.sh
. "$(dirname "$0")/../common.sh"
sources=$root/toolset/runtime
export binaries=$programs/lib/lltcov here=$root/tests/toolset

build() { # build OUTPUT OPTION...
    output=$1
    shift
    $compiler -std=gnu99 -O1 -Wall -Wextra -Wno-unused-parameter -I"$sources" \
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

# shellcheck disable=SC2120 # arguments are optional
files() { # files [PATTERN]
    find root -type f -name "${1:-*.lltcov}" | wc -l
}
