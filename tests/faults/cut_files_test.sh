#!/bin/bash
# A file that an archive step reads is cut at each byte: the step ends, by no signal, says so or makes
# what it makes undisturbed, and removes nothing but its own.
# usage: cut_files_test.sh PROGRAMS
# shellcheck source=tests/faults/scenarios.sh
. "$(dirname "$0")/scenarios.sh"

# kept: what no step may change, from a list of the tree; data of the changed m1.c may go
kept() { grep -E '(^| )\./(m[0-9]\..*|main\..*|LLTTEMP/.*)' "$1" | grep -v m1_c_; }

cut_file() { # cut_file FILE
    local n size what
    size=$(stat -c %s "../start/$1")
    for ((n = first % 41; n < size; n += stride)); do
        begin
        truncate -s "$n" "$1"
        tree >../cut
        "${step[@]}" >../log 2>../err
        status=$?
        what="$1 cut to $n of $size bytes"
        [ "$status" -le 125 ] || expect "$what" 'no crash' "$status $(cat ../err)"
        tree >../left
        expect "$what: others' files" "$(kept ../cut)" "$(kept ../left)"
        # The archiver takes any file as a member, and an INI file does not say where it ends.
        if [ "$status" = 0 ] && [ ! -s ../err ] && [[ $1 != *.o && $1 != *.ini ]]; then
            expect "$what: silent, status 0" "$(grep -v "$1" ../undisturbed)" "$(grep -v "$1" ../left)"
        fi
        runs=$((runs + 1))
    done
}

prepare again_3
before=$failures runs=0
symbol=$(basename LLTTEMP/codemeasure/ini/m1_c_*.ini .ini)
for file in libx/codemeasure/{db/tuple.db,.prj,db/.tab,CompileCmd.txt} m2.o \
    "LLTTEMP/codemeasure/"{ini/"$symbol".ini,db/db"$symbol"/.tab,db/db"$symbol"/CompileCmd.txt}; do
    cut_file "$file"
done
echo "each file cut at each byte: $runs runs, $((failures - before)) failed"
finish
