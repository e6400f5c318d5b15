#!/bin/bash
# Shows that lltwrapper itself changes nothing: with drivers that only pass the command on, a build
# of zlib through it makes the same files, byte by byte, as a build without it.
# usage: unchanged.sh      (a step of ./dev check)

# shellcheck source=examples/build_twice.sh
. "$(dirname "${BASH_SOURCE[0]}")/build_twice.sh"

fetch_or_hello zlib "$root/build/unchanged"
prepare "$name" "$root/build/unchanged/$name"
build_and_test plain
rm -rf "$place/plain"
mv "$place/tree" "$place/plain"
wrapper_environment "$root/examples/pass_through"
build_and_test wrapped
compare_builds

files=0 objects=0
while read -r file; do
    case $file in
        *.o | *.lo) objects=$((objects + 1)) ;;
        *.a) ar --help | grep 'zero for timestamps.*(default)' >/dev/null || continue ;;
    esac
    files=$((files + 1))
    cmp "$place/plain/$file" "$place/tree/$file" || die "$name: $file differs"
done <"$work/plain.built"
# This says something only when every object came through lltwrapper.
compiles=$(grep -c 'lltcc cmd:' "$place/project/.lltcov/LLTTEMP/build.log" || true)
if [ "$objects" -eq 0 ] || [ "$compiles" -lt "$objects" ]; then
    die "$name: $objects objects, but $compiles compiles through lltwrapper (log: $place/project/.lltcov/LLTTEMP/build.log)"
fi
say "$name: all $files files that the build made, $objects of them objects, are equal without lltwrapper"
