#!/bin/sh
# Leaves in the project's temporary area what an instrumenting compiler driver records for one
# source: its table, compile command, INI file and object.
# usage: record.sh SYMBOL POINTS      (of SYMBOL.c, compiled to SYMBOL.o, here)
set -eu

symbol=$1
points=$2
area=${qmr_current_prj_path:?source TUSK_INIT.SH first}/LLTTEMP/codemeasure
mkdir -p "$area/db/db$symbol" "$area/ini" "$area/obj/before" "$area/obj/after"

zeros() { head -c "$1" /dev/zero; }

# One record of 280 bytes: number, name (256 bytes), size, time, start, points (a byte here), flags.
{
    zeros 4
    printf '%s.c' "$symbol"
    zeros $((256 - ${#symbol} - 2 + 12))
    # shellcheck disable=SC2059 # an octal escape in the format is the byte
    printf "\\$(printf %o "$points")"
    zeros 7
} >"$area/db/db$symbol/.tab"
printf 'gcc' >"$area/db/db$symbol/CompileCmd.txt"
printf '[StubFiles]\nStubFilePath1=%s\nObjFilePath=%s\n' \
    "$PWD/$symbol.c" "$PWD/$symbol.o" >"$area/ini/$symbol.ini"
cp "$symbol.o" "$area/obj/before/$symbol"
