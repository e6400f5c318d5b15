#!/bin/bash
# Steps under conditions that a build brings about by itself: settings of any text and length, limits,
# full and read-only disks, missing parts of the system, files that change while they are read. No
# step crashes, what fails is said, others' files stay, and a step after it leaves what it always leaves.
# usage: conditions_test.sh PROGRAMS
# shellcheck disable=SC2016 # commands of the rows are evaluated under their conditions
# shellcheck source=tests/faults/scenarios.sh
. "$(dirname "$0")/scenarios.sh"

others() { grep -E '(^| )\./(m[0-9]\..*|main\..*|LLTTEMP/.*)' "$1"; }

# condition STATUS SAID COMMAND: STATUS is a pattern of what the command ends with (a shell's number),
# SAID one of the program's own first line on standard error, empty for none
condition() {
    local what=$3 status said
    begin
    tree >../before
    timeout 60 bash -c "${3//'$command'/$command}" >../out 2>../err
    status=$?
    said=$(grep -m 1 '^lltwrapper: ' ../err)
    # shellcheck disable=SC2254 # patterns
    case $status in $1) ;; *) expect "$what" "status $1" "$status $(tail -n 5 ../err)" ;; esac
    # shellcheck disable=SC2053 # a pattern
    [[ $said = $2 ]] || expect "$what" "$2" "$said"
    tree >../left
    expect "others' files after $what" "$(others ../before)" "$(others ../left)"
    unset LLTWRAPPER_LOG
    recovers "a step after $what"
}

# in_namespace CONDITION COMMAND: the command where mounts are its own, where that may be
in_namespace() {
    unshare -m true 2>/dev/null || return 0
    condition "$1" "$2" "unshare -m bash -c '$3'"
}

prepare archive_3
command=$(printf '%q ' "${step[@]}") arguments=$(printf '%q ' "${step[@]:1}")

# --- limits and signals
condition 0 '' 'ulimit -s 64; $command'
condition '[01]' '?*' 'ulimit -n 4; $command'
condition '[01]' '?*' 'ulimit -n 5; $command'
condition '[01]' '?*' 'ulimit -n 6; $command'
condition '[01]' '?*' 'ulimit -n 8; $command'
condition '[01]' '?*' 'ulimit -f 1; $command'
condition 0 '' 'env --block-signal --ignore-signal=CHLD --ignore-signal=PIPE $command'
condition 0 '' 'exec 3<m1.c 4<m2.c; $command && read -r line <&3 && [ -n "$line" ]'
condition 0 '' 'setsid nice nohup $command'
condition 0 '' '$command & sleep 0.01; for i in {1..50}; do kill -STOP $!; kill -CONT $!; done 2>/dev/null; wait $!'

# --- members, areas
condition '[01]' '?*' 'ulimit -v 20000; $command'
# The archiver may meet a moment without the member, and fails as it would by itself.
condition 0 '?(*: exit status 0 although the command failed*)' 'cp m1.o other.o; until [ -e stop ]; do cp main.o x; mv x m1.o; : >m1.o; cp other.o m1.o; done 2>/dev/null & $command; s=$?;
    : >stop; wait $!; rm stop other.o; exit $s'
condition 0 '' 'mkdir -p real; ln -s real libx; $command; s=$?; rm -rf real libx; exit $s'
condition '[01]' '?*' 'ln -s none libx; $command; s=$?; rm libx; exit $s'
condition '[01]' '?*' 'ln -s libx libx; $command; s=$?; rm libx; exit $s'
condition '[01]' '?*' 'mkdir -p libx/codemeasure; : >libx/codemeasure/db; $command; s=$?; rm libx/codemeasure/db; exit $s'
condition '[01]' '?*' 'mkdir -p libx/codemeasure; : >libx/codemeasure/obj; $command; s=$?; rm libx/codemeasure/obj; exit $s'
condition 0 '' 'mkdir -p libx/codemeasure/obj/before; (cd libx/codemeasure/obj/before && seq 40000 | xargs touch); $command'

# --- project paths about the sizes of buffers; the steps of one are given another one's objects
for length in 231 235 247 252 254 255 256 257 259 260 261 262 511 512 1024 3900; do
    long=$work/long
    while [ $((${#long} + 101)) -lt $length ]; do long=$long/$(printf '%0100d' 0); done
    long=$long/$(printf "%0$((length - ${#long} - 1))d" 0)
    mkdir -p "$long"
    condition '[01]' '?*' "qmr_current_prj_path=$long \$command"
done

# --- names of libraries about the sizes of buffers and of what a system takes
for length in 200 230 251 253 254 255 256 262 263 4000; do
    stem=$(printf "%0${length}d" 0)
    wanted='?*'
    [ "$length" -gt 200 ] || wanted=''
    condition '[01]' "$wanted" "${command/libx.a/$stem.a}; s=\$?; rm -rf 0*; exit \$s"
done

# --- places of the program: with a bracket, longer than a buffer, gone while it runs
deep=$work/$(printf '%0250d' 1)/$(printf '%0250d' 2)/$(printf '%0250d' 3)
for place in "$work/a (1)" "$work/(x" "$deep"; do
    mkdir -p "$place" && cp "${step[0]}" "$place/"
    condition 0 '' "$(printf %q "$place")/lltwrapper $arguments"
done
condition 0 '' "cp $(printf %q "${step[0]}") gone; exec 9<gone; rm gone; exec /proc/self/fd/9 $arguments"

mkdir "$work/b (1)" && cp -a "$programs"/lltcc{,.d} "$work/b (1)/"
expect 'a compile by a program in such a place' '' "$("$work/b (1)/lltcc" -qmr_current_prj_path "$PWD" \
    -projectname LLTTEMP -qmr_coverage_stub_mold 1 gcc -c m1.c 2>&1)"

# --- disks, and what a system lacks
for size in 16 64 256; do
    [ $size = 256 ] && wanted='' || wanted='?*'
    in_namespace '[01]' "$wanted" "mkdir libx; mount -t tmpfs -o size=${size}k none libx; \$command; s=\$?; umount libx; exit \$s"
    in_namespace 0 '' "mkdir t; mount -t tmpfs -o size=${size}k none t; TMPDIR=\$PWD/t \$command; s=\$?; umount t; rmdir t; exit \$s"
done
in_namespace '[01]' '?*' 'mount --bind . . && mount -o remount,ro,bind . && cd . && $command; exit $?'
in_namespace 0 '' 'umount -l /proc; $command'
in_namespace '[01]' '?*' 'mount --bind /dev/null /bin/sh; $command'
condition '[01]' '?*' 'cd "$(mktemp -d)" && rmdir "$PWD" && $command'
finish
